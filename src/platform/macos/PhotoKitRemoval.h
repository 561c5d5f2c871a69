#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <stop_token>

/// The two things that PhotoKit does towards a removal. Any thread.
namespace quorvane::photokit {

/// Why PhotoKit would not remove just this asset; empty when it would.
QString obstacleToRemoval(const QString& localIdentifier);

/// One change request, before which the system asks the person. Blocks. Returns the reason of a
/// refusal, empty when all went; none when stopped while the question is open.
std::optional<QString> remove(const QStringList& localIdentifiers, const std::stop_token& stop);

} // namespace quorvane::photokit
