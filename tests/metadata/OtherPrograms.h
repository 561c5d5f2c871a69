#pragma once

#include "foundation/File.h"

#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace quorvane::test {

/// What an installed program prints; none when it fails. Each "%" of the command is the next file.
inline std::optional<QByteArray> outputOf(const char* command,
                                          const std::vector<std::filesystem::path>& files) {
    QStringList words = QString::fromLatin1(command).split(u' ');
    for (const std::filesystem::path& file : files)
        words[words.indexOf(QStringLiteral("%"))] = pathText(file);
    QProcess process;
    process.start(words.takeFirst(), words);
    if (!process.waitForFinished(120'000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}

} // namespace quorvane::test

/// Skips the running test, loudly, where a program is absent.
#define REQUIRE_PROGRAM(name)                                                                      \
    if (QStandardPaths::findExecutable(QStringLiteral(name)).isEmpty())                            \
    GTEST_SKIP() << name " is not installed"
