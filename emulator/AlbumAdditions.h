#pragma once

#include "emulator/MediaItems.h"

namespace quorvane::emulator {

/// `POST /v1/albums/ID:batchAddMediaItems`: all of at most 50 items of the library, or none. The
/// bearer token has been checked before. Throws `Refusal`.
Answer addToAlbum(const Call& call, Albums& albums, const MediaItems& items,
                  const Behaviour& behaviour);

} // namespace quorvane::emulator
