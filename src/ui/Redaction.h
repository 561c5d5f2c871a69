#pragma once

#include <QStringList>

#include <filesystem>

namespace quorvane {

/// What of a text may be shown to a stranger.
enum class Names {
    hidden, ///< neither files nor albums nor folders
    kept,
};

/// `text` without what nobody else is to know: tokens and e-mail addresses always; the names of
/// files, albums and folders, and what follows the home folder, unless they are kept. `known` are
/// names that are hidden wherever they stand. Of a line in doubt too much is hidden rather than too
/// little. Pure.
QString redacted(const QString& text, const std::filesystem::path& home, Names names,
                 const QStringList& known = {});

} // namespace quorvane
