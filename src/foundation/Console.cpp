#include "foundation/Console.h"

#include "foundation/PlainText.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr int calmNotices = 20;

int descriptorOf(Console::Channel channel) {
    return channel == Console::Channel::standardError ? STDERR_FILENO : STDOUT_FILENO;
}

void writeBytes(int fd, const QByteArray& bytes) {
    const char* data = bytes.constData();
    auto left = static_cast<size_t>(bytes.size());
    while (left > 0) {
        const ssize_t n = ::write(fd, data, left);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return; // a closed pipe must never stop a backup
        data += n;
        left -= static_cast<size_t>(n);
    }
}

QString fitted(const QString& text, int fd) {
    winsize size{};
    if (::ioctl(fd, TIOCGWINSZ, &size) != 0 || size.ws_col < 2)
        return text;
    return text.size() < size.ws_col ? text : text.left(size.ws_col - 2) + QChar(0x2026);
}

} // namespace

Console::Console(Channel channel) : channel_(channel) {}

Console::~Console() {
    setLiveLine(QString());
}

void Console::setChannel(Channel channel) {
    const std::lock_guard lock(mutex_);
    channel_ = channel;
}

void Console::setCalm(bool calm) {
    const std::lock_guard lock(mutex_);
    calm_ = calm;
    notices_ = 0;
}

void Console::print(const QString& line) {
    const std::lock_guard lock(mutex_);
    if (channel_ != Channel::silent && !writesCalmly())
        write(descriptorOf(channel_), line + u'\n');
}

void Console::notice(const QString& line, const QString& about) {
    noticeOfLog(line);
    notices.send({line, about});
}

void Console::noticeOfLog(const QString& line) {
    const std::lock_guard lock(mutex_);
    if (channel_ == Channel::silent)
        return;
    const int already = notices_++;
    if (!writesCalmly() || already < calmNotices)
        write(descriptorOf(channel_), line + u'\n');
    else if (already == calmNotices)
        write(descriptorOf(channel_),
              QStringLiteral("Bunun gibi başka satırlar da var: günlükte ve sondaki özette\n"));
}

void Console::result(const QString& text) {
    const std::lock_guard lock(mutex_);
    write(STDOUT_FILENO, text + u'\n');
}

void Console::error(const QString& line) {
    const std::lock_guard lock(mutex_);
    write(STDERR_FILENO, line + u'\n');
}

void Console::setLiveLine(const QString& text) {
    const std::lock_guard lock(mutex_);
    const int fd = descriptorOf(channel_);
    if (channel_ == Channel::silent || !::isatty(fd) || text == liveLine_)
        return;
    liveLine_ = plainText(text, Lines::one);
    writeBytes(fd, "\r\x1b[K" + fitted(liveLine_, fd).toUtf8());
}

bool Console::isTerminal() const {
    const std::lock_guard lock(mutex_);
    return channel_ != Channel::silent && ::isatty(descriptorOf(channel_)) != 0;
}

/// Caller holds the lock.
bool Console::writesCalmly() const {
    return calm_ && ::isatty(descriptorOf(channel_)) != 0;
}

/// Caller holds the lock. The live line is on the terminal's last row: clear, write, draw it again.
void Console::write(int fd, const QString& text) {
    const QByteArray line = plainText(text, Lines::several).toUtf8();
    if (liveLine_.isEmpty()) {
        writeBytes(fd, line);
        return;
    }
    const int liveFd = descriptorOf(channel_);
    writeBytes(liveFd, "\r\x1b[K");
    writeBytes(fd, line);
    writeBytes(liveFd, fitted(liveLine_, liveFd).toUtf8());
}

} // namespace quorvane
