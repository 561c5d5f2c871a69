#pragma once

#include "store/AssetIdentifier.h"

/// Local identifiers have PhotoKit's form: an upper-case UUID and a tail that says what it names.
namespace quorvane::localIdentifier {

inline const QString& assetTail = AssetIdentifier::tail;
inline const QString folderTail = QStringLiteral("/L0/020");
inline const QString albumTail = QStringLiteral("/L0/040");

/// The UUID in front of the tail; empty when the identifier has another tail.
inline QString uuidOf(const QString& identifier, const QString& tail) {
    return identifier.endsWith(tail) ? identifier.chopped(tail.size()) : QString();
}

} // namespace quorvane::localIdentifier
