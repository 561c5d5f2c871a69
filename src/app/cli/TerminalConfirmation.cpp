#include "app/cli/TerminalConfirmation.h"

#include "app/cli/SyncReport.h"
#include "app/cli/TextTable.h"
#include "foundation/File.h"

#include <array>

#include <poll.h>
#include <unistd.h>

namespace quorvane::cli {

namespace {

/// One line of standard input; empty at its end or when stopped.
QString readLine(const std::stop_token& stop) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0)
        return {};
    const FileDescriptor hangup(ends[0]);
    FileDescriptor held(ends[1]);
    const std::stop_callback onStop(stop, [&held] { held = FileDescriptor(); });
    std::array<pollfd, 2> watched{pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{hangup.get(), POLLIN, 0}};
    if (::poll(watched.data(), watched.size(), -1) <= 0 || watched[1].revents != 0)
        return {};
    std::array<char, 256> line{};
    const ssize_t length = ::read(STDIN_FILENO, line.data(), line.size());
    return length > 0 ? QString::fromUtf8(line.data(), length).trimmed() : QString();
}

/// " Dışarıda bırakılan 37: Bulutta doğrulanmadı (22), Düzenlenmiş (15)."
QString keptText(const DeletionQuestion& question) {
    int sum = 0;
    QStringList parts;
    for (const auto& [reason, count] : question.kept) {
        sum += count;
        parts += QStringLiteral("%1 (%2)").arg(textOf(reason).title, countText(count));
    }
    return QStringLiteral(" Dışarıda bırakılan %1: %2.")
        .arg(countText(sum), parts.join(QStringLiteral(", ")));
}

} // namespace

bool TerminalConfirmation::confirmDeletion(const DeletionQuestion& question) {
    QString text =
        QStringLiteral("Google Photos'ta doğrulanan %1 öğenin aslı (%2) Çöp'e taşınacak: "
                       "%3.")
            .arg(countText(question.count), byteText(question.bytes), question.place);
    if (!question.kept.empty())
        text += keptText(question);
    if (!question.warning.isEmpty())
        text += u' ' + question.warning;
    if (confirmedBeforehand_)
        console_.error(text);
    return confirm(text);
}

bool TerminalConfirmation::confirm(const QString& question) {
    if (confirmedBeforehand_)
        return true;
    if (::isatty(STDIN_FILENO) == 0)
        return false;
    console_.error(question + QStringLiteral(" Onaylıyorsanız \"evet\" yazın:"));
    return readLine(stop_).compare(u"evet", Qt::CaseInsensitive) == 0;
}

} // namespace quorvane::cli
