#include "emulator/Exchange.h"

#include <algorithm>

namespace quorvane::emulator {

bool Exchange::readBody(const std::function<bool(QByteArrayView)>& receive) {
    if (!body_)
        return true;
    return (*body_)([&](const char* bytes, size_t size) {
        return receive(QByteArrayView(bytes, static_cast<qsizetype>(size)));
    });
}

void Exchange::drop() {
    connection_.end();
}

void Exchange::answer(const Answer& answer, std::optional<std::int64_t> bodyLimit) {
    response_.status = answer.status;
    if (!answer.location.isEmpty())
        response_.set_header("Location", answer.location.toStdString());
    if (!bodyLimit) {
        response_.set_content(answer.body.toStdString(), answer.contentType.toStdString());
        return;
    }
    const QByteArray part = answer.body.first(
        std::clamp<qsizetype>(static_cast<qsizetype>(*bodyLimit), 0, answer.body.size()));
    // One byte more is announced than there is, so that the end is never taken for a whole answer.
    response_.set_content_provider(
        static_cast<size_t>(answer.body.size()) + 1, answer.contentType.toStdString(),
        [part](size_t, size_t, httplib::DataSink& sink) {
            if (!part.isEmpty())
                sink.write(part.data(), static_cast<size_t>(part.size()));
            return false;
        });
}

} // namespace quorvane::emulator
