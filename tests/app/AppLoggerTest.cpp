#include "app/AppLogger.h"

#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

struct AppLoggerTest : testing::Test {
    QStringList fileLines() const {
        QStringList lines = QString::fromUtf8(readFile(logs / "quorvane.log")).split(u'\n');
        EXPECT_EQ(lines.takeLast(), QString()) << "the last line is whole";
        return lines;
    }

    TemporaryFolder folder;
    std::filesystem::path logs = folder / "Library/Logs/Quorvane";
    Console console{Console::Channel::silent};
    FakeClock clock{Date(std::chrono::milliseconds(1'740'837'909'999))};
};

TEST_F(AppLoggerTest, theFirstMatchingRuleGivesTheLevel) {
    const struct {
        QString message;
        LogLevel level;
    } cases[]{
        {u"HATA: ağ"_s, LogLevel::error},
        {u"[Sync] tamamlandı ❌"_s, LogLevel::error},
        {u"Engellendi"_s, LogLevel::error},
        {u"[Sync] yükleme BaşarısıZ"_s, LogLevel::error},
        {u"başarılı ama hata var"_s, LogLevel::error},
        {u"⚠️ giriş başarılı"_s, LogLevel::success},
        {u"Başarıyla bitti"_s, LogLevel::success},
        {u"[Upload] Eşitleme tamamlandı"_s, LogLevel::success},
        {u"[Sync] Kuyruk gecisi 2, uyarı"_s, LogLevel::network},
        {u"[Network] ⚠️"_s, LogLevel::network},
        {u"[Upload] bir"_s, LogLevel::network},
        {u"[sync] bir"_s, LogLevel::info},
        {u"UYARı"_s, LogLevel::warning},
        {u"⚠️ Photos yetkisi reddedilmiş"_s, LogLevel::warning},
        {u"⚠ without the variation selector"_s, LogLevel::info},
        {u"ENGELLENDI"_s, LogLevel::error},
        {u"ENGELLENDİ"_s, LogLevel::info}, // "İ" is no "i" in any locale
        {u"BAŞARILI"_s, LogLevel::info},   // nor is "I" an "ı"
        {u""_s, LogLevel::info},
    };
    for (const auto& each : cases)
        EXPECT_EQ(levelOf(each.message), each.level) << each.message.toStdString();
}

TEST_F(AppLoggerTest, theFileTellsTimeThreadAndMessageOfAllRuns) {
    const QString rule(42, u'=');
    {
        AppLogger logger(logs, console, clock);
        logger.log(u"ilk"_s);
        std::thread([&] { logger.log(QString()); }).join();
    }
    const AppLogger second(logs, console, clock);

    const QStringList lines = fileLines();
    ASSERT_EQ(lines.size(), 10);
    const QString main = u"[2025-03-01T14:05:09Z] [Main] "_s;
    EXPECT_EQ(lines[0], main + rule);
    EXPECT_EQ(lines[1], main + u"🚀 Quorvane Başlatıldı (PID: %1)"_s.arg(::getpid()));
    EXPECT_EQ(lines[2], main + u"📁 Log Dosyası: "_s + pathText(logs / "quorvane.log"));
    EXPECT_EQ(lines[3], main + rule);
    EXPECT_EQ(lines[4], main + u"ilk"_s);
    EXPECT_EQ(lines[5], u"[2025-03-01T14:05:09Z] [Bg] ");
    EXPECT_EQ(lines.mid(6), lines.mid(0, 4));
}

TEST_F(AppLoggerTest, theRingKeepsTheLatestHundred) {
    AppLogger logger(logs, console, clock);
    for (int i = 1; i <= 101; ++i)
        logger.log(QString::number(i));
    const auto entries = logger.memoryBuffer();
    ASSERT_EQ(entries.size(), 100U);
    EXPECT_EQ(entries.front().message, u"2");
    EXPECT_EQ(entries.back().message, u"101");
    EXPECT_EQ(entries.back().timestamp, clock.now());
    std::set<QUuid> ids;
    for (const LogEntry& entry : entries)
        ids.insert(entry.id);
    EXPECT_EQ(ids.size(), 100U);
}

TEST_F(AppLoggerTest, aFolderThatCannotBeMadeOnlyTurnsTheFileOff) {
    folder.write("Library", "a file where the folder should be");
    AppLogger logger(logs, console, clock);
    logger.log(u"sürüyor"_s);
    EXPECT_EQ(logger.memoryBuffer().size(), 5U);
    EXPECT_EQ(logger.memoryBuffer().back().message, u"sürüyor");
}

TEST_F(AppLoggerTest, aSubscriberMayLog) {
    AppLogger logger(logs, console, clock);
    QStringList received;
    const Subscription subscription = logger.logPublisher().subscribe([&](const LogEntry& entry) {
        received += entry.message;
        if (received.size() == 1)
            logger.log(u"yankı"_s);
    });
    logger.log(u"ses"_s);
    EXPECT_EQ(received, (QStringList{u"ses"_s, u"yankı"_s}));
}

TEST_F(AppLoggerTest, threadsWriteWholeLines) {
    AppLogger logger(logs, console, clock);
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&logger, thread] {
                for (int i = 0; i < 200; ++i)
                    logger.log(u"%1:%2 %3"_s.arg(thread).arg(i).arg(QString(300, u'ş')));
            });
    }
    static const QRegularExpression form(
        u"^\\[2025-03-01T14:05:09Z\\] \\[Bg\\] (\\d:\\d+) ş{300}$"_s);
    std::set<QString> seen;
    for (const QString& line : fileLines().mid(4))
        seen.insert(form.match(line).captured(1));
    EXPECT_EQ(seen.size(), 800U);
    EXPECT_FALSE(seen.contains(QString()));
}

} // namespace

} // namespace quorvane::test
