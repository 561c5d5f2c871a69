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

Console::Console(Channel channel) : state_({.channel = channel}) {}

Console::~Console() {
    setLiveLine(QString());
}

void Console::setChannel(Channel channel) {
    state_.lock()->channel = channel;
}

void Console::setCalm(bool calm) {
    const auto state = state_.lock();
    state->isCalm = calm;
    state->notices = 0;
}

void Console::print(const QString& line) {
    const auto state = state_.lock();
    if (state->channel != Channel::silent && !writesCalmly(*state))
        write(*state, descriptorOf(state->channel), line + u'\n');
}

void Console::notice(const QString& line, const QString& about) {
    noticeOfLog(line);
    notices.send({line, about});
}

void Console::noticeOfLog(const QString& line) {
    const auto state = state_.lock();
    if (state->channel == Channel::silent)
        return;
    const int already = state->notices++;
    if (!writesCalmly(*state) || already < calmNotices)
        write(*state, descriptorOf(state->channel), line + u'\n');
    else if (already == calmNotices)
        write(*state, descriptorOf(state->channel),
              QStringLiteral("Bunun gibi başka satırlar da var: günlükte ve sondaki özette\n"));
}

void Console::result(const QString& text) {
    write(*state_.lock(), STDOUT_FILENO, text + u'\n');
}

void Console::error(const QString& line) {
    write(*state_.lock(), STDERR_FILENO, line + u'\n');
}

void Console::setLiveLine(const QString& text) {
    const auto state = state_.lock();
    const int fd = descriptorOf(state->channel);
    if (state->channel == Channel::silent || !::isatty(fd) || text == state->liveLine)
        return;
    state->liveLine = plainText(text, Lines::one);
    writeBytes(fd, "\r\x1b[K" + fitted(state->liveLine, fd).toUtf8());
}

bool Console::isTerminal() const {
    const auto state = state_.lock();
    return state->channel != Channel::silent && ::isatty(descriptorOf(state->channel)) != 0;
}

bool Console::writesCalmly(const State& state) {
    return state.isCalm && ::isatty(descriptorOf(state.channel)) != 0;
}

/// The live line is on the terminal's last row: clear, write, draw it again.
void Console::write(const State& state, int fd, const QString& text) {
    const QByteArray line = plainText(text, Lines::several).toUtf8();
    if (state.liveLine.isEmpty()) {
        writeBytes(fd, line);
        return;
    }
    const int liveFd = descriptorOf(state.channel);
    writeBytes(liveFd, "\r\x1b[K");
    writeBytes(fd, line);
    writeBytes(liveFd, fitted(state.liveLine, liveFd).toUtf8());
}

} // namespace quorvane
