#include "app/AppLogger.h"

#include "foundation/MainThread.h"
#include "foundation/PlainText.h"

#include <QDateTime>
#include <QTimeZone>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr size_t memoryBufferSize = 100;

QString iso8601(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), QTimeZone::utc())
        .toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'"));
}

} // namespace

AppLogger::AppLogger(const std::filesystem::path& folder, Console& console, Clock& clock,
                     SystemLog* systemLog)
    : console_(console), clock_(clock), systemLog_(systemLog), logFile_(folder / "quorvane.log") {
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure)
        console_.notice(QStringLiteral("[AppLogger] ❌ Dizin oluşturulamadı: ") +
                        QString::fromStdString(failure.message()));
    try {
        file_ = openFile(logFile_, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK);
    } catch (const FileError&) { // NOLINT(bugprone-empty-catch)
        // File output stays off for the rest of the run.
    }
    notices_ = console_.notices.subscribe([this](const Console::Notice& notice) {
        const QString line = plainText(notice.line, Lines::one);
        remember({QUuid::createUuid(), clock_.now(), line, levelOf(line), notice.about});
    });
    const QString rule(42, u'=');
    log(rule);
    log(QStringLiteral("🚀 Quorvane Başlatıldı (PID: %1)").arg(::getpid()));
    log(QStringLiteral("📁 Log Dosyası: ") + pathText(logFile_));
    log(rule);
}

void AppLogger::log(const QString& text, const QString& about) {
    const QString message = plainText(text, Lines::one);
    const QString time = iso8601(clock_.now());
    const QString tag = isMainThread() ? QStringLiteral("Main") : QStringLiteral("Bg");
    const QByteArray fileLine =
        QStringLiteral("[%1] [%2] ").arg(time, tag).append(message).append(u'\n').toUtf8();
    if (systemLog_)
        systemLog_->log(message);
    const LogEntry entry{QUuid::createUuid(), clock_.now(), message, levelOf(message), about};
    const QString consoleLine = QStringLiteral("[%1] ").arg(tag) + message;
    if (entry.level == LogLevel::warning || entry.level == LogLevel::error)
        console_.noticeOfLog(consoleLine);
    else
        console_.print(consoleLine);

    if (file_.isOpen()) {
        // One write per line: appends of several threads and processes never interleave within it.
        [[maybe_unused]] const auto written =
            ::write(file_.get(), fileLine.constData(), static_cast<size_t>(fileLine.size()));
    }
    remember(entry);
}

void AppLogger::remember(const LogEntry& entry) {
    {
        const auto buffer = memoryBuffer_.lock();
        buffer->push_back(entry);
        if (buffer->size() > memoryBufferSize)
            buffer->pop_front();
    }
    publisher_.send(entry);
}

std::vector<LogEntry> AppLogger::memoryBuffer() const {
    const auto buffer = memoryBuffer_.lock();
    return {buffer->begin(), buffer->end()};
}

} // namespace quorvane
