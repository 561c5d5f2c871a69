#pragma once

#include "foundation/Fault.h"
#include "google/HttpClient.h"

#include <QJsonObject>

namespace quorvane {

/// Whose fault it is that Google refused, from its status and what its body says (the error model
/// of Google's APIs: `error` with `code`, `status`, `message` and `details`). `intoAlbum`: items
/// were to go into an album. An answer that is none of Google's APIs counts as a busy service.
Fault faultIn(const HttpResponse& response, bool intoAlbum = false);

/// The same for one item of a batch that was answered; `status` is its google.rpc.Status.
Fault itemFaultIn(const QJsonObject& status);

/// The same for the token endpoint (RFC 6749, section 5.2).
Fault tokenFaultIn(const HttpResponse& response);

/// Of an answer with a good status that is not what was asked for: somebody between us and Google.
Fault foreignAnswer();

} // namespace quorvane
