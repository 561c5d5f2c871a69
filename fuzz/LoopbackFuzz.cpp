#include "platform/linux/LoopbackListener.h"

#include <cstdlib>

using namespace quorvane;

/// Whatever comes as a request leads nowhere but to this computer's own address.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray head(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto url = requestedURL(head, QStringLiteral("http://127.0.0.1:4711"));
    if (url && (url->host() != u"127.0.0.1" || url->port() != 4711))
        std::abort();
    return 0;
}
