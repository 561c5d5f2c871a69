#include "app/cli/Command.h"

#include "foundation/File.h"

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane::cli {

namespace {

constexpr off_t shownTail = 32 << 10;
constexpr std::chrono::milliseconds followPeriod{250};

/// Prints what the file holds from its position on.
void printRest(int fd, Console& console) {
    QByteArray text;
    std::array<char, 1 << 16> chunk{};
    ssize_t length = 0;
    while ((length = ::read(fd, chunk.data(), chunk.size())) > 0)
        text.append(chunk.data(), length);
    while (text.endsWith('\n'))
        text.chop(1);
    if (!text.isEmpty())
        console.result(QString::fromUtf8(text));
}

/// Moves to the first whole line of the file's last part.
void seekToTail(int fd) {
    const off_t end = ::lseek(fd, 0, SEEK_END);
    ::lseek(fd, std::max<off_t>(0, end - shownTail), SEEK_SET);
    char byte = 0;
    while (end > shownTail && ::read(fd, &byte, 1) == 1 && byte != '\n') {
    }
}

int log(Invocation& invocation) {
    const auto file = invocation.folders.logs() / "quorvane.log";
    const FileDescriptor in = openFile(file, O_RDONLY);
    seekToTail(in.get());
    printRest(in.get(), invocation.console);
    SystemClock clock;
    if (invocation.arguments.has(QStringLiteral("follow")))
        while (clock.sleep(followPeriod, invocation.stop))
            printRest(in.get(), invocation.console);
    return done;
}

} // namespace

Command logCommand() {
    return {{QStringLiteral("log"),
             QStringLiteral("günlüğün son bölümünü gösterir"),
             {{QStringLiteral("follow"), {}, QStringLiteral("yeni satırları bekler ve yazar")}}},
            log};
}

} // namespace quorvane::cli
