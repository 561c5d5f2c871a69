#include "google/OAuthMessages.h"

#include <cstdlib>

using namespace quorvane;

/// Any address carries no code or one; one with a code is an answer, and a code goes into a form
/// without adding a field to it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QUrl url(
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    const std::optional<QString> code = oauth::authCode(url);
    const bool isAnswer = oauth::isAnswer(url);
    if (!code)
        return 0;
    const QByteArray form = oauth::formBody({{"code", *code}});
    if (code->isEmpty() || !isAnswer || form.count('=') != 1 || form.contains('&'))
        std::abort();
    return 0;
}
