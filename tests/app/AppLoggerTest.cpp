#include "app/AppLogger.h"

#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

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

} // namespace

} // namespace quorvane::test
