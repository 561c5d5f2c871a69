#pragma once

#include "metadata/heif/HeifMetadata.h"

#include <QByteArray>

#include <optional>

namespace quorvane::heif {

/// The file with `payload` in a media data box of its own behind `meta`, as the payload of `item`,
/// or of a new item of this kind that describes the primary image when there is none. Everything in
/// the file that tells an offset is corrected. Throws `ContainerError` when something cannot be.
Rewrite relocate(const Picture& picture, const std::optional<MetadataItem>& item,
                 const ItemKind& kind, QByteArray payload, const Limits& limits);

} // namespace quorvane::heif
