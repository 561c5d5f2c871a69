#pragma once

#include "emulator/Account.h"
#include "emulator/RequestLog.h"

namespace quorvane::emulator {

/// {"requests": {kind: count}, "mediaItems": [{"id", "filename", "mimeType", "sha256", "size",
/// "albumIds"}], "albums": [{"id", "title", "itemCount", "isShared"}]}
QJsonObject reportOf(const RequestLog& log, const Account& account);

} // namespace quorvane::emulator
