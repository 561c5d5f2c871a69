#include "emulator/Uploads.h"

#include "emulator/MediaFormat.h"
#include "emulator/Tokens.h"

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr std::chrono::days tokenLifetime{1};

Answer badHeader(const QString& name) {
    return invalidArgument(u"Missing or invalid header: "_s + name);
}

bool isMediaType(const QByteArray& value) {
    const qsizetype slash = value.indexOf('/');
    return slash > 0 && slash < value.size() - 1;
}

} // namespace

Answer Uploads::receive(const Call& call, Date now) {
    const RecordedRequest& request = call.request;
    if (call.contentType() != "application/octet-stream")
        return badHeader(u"Content-Type"_s);
    if (request.header("X-Goog-Upload-Protocol") != "raw")
        return badHeader(u"X-Goog-Upload-Protocol"_s);
    const QByteArray claimedType = request.header("X-Goog-Upload-Content-Type").toLower();
    if (!isMediaType(claimedType))
        return badHeader(u"X-Goog-Upload-Content-Type"_s);
    if (request.bodySize == 0)
        return invalidArgument(u"The upload has no content."_s);

    std::erase_if(uploads_, [&](const auto& entry) { return entry.second.expiry <= now; });
    const QString token = u"CAIS"_s + opaqueText(96);
    uploads_.insert_or_assign(token,
                              Upload{.sha256 = request.bodySha256,
                                     .size = request.bodySize,
                                     .filename = call.uploadFilename(),
                                     .claimedType = QString::fromLatin1(claimedType),
                                     .format = mediaFormatOf(call.uploadStart).value_or(QString()),
                                     .expiry = now + tokenLifetime});
    return textAnswer(token.toLatin1());
}

const Upload* Uploads::find(const QString& token, Date now) const {
    const auto found = uploads_.find(token);
    return found == uploads_.end() || found->second.expiry <= now ? nullptr : &found->second;
}

void Uploads::use(const QString& token) {
    uploads_.erase(token);
}

QJsonObject Uploads::toJson() const {
    QJsonObject object;
    for (const auto& [token, upload] : uploads_)
        object.insert(token, QJsonObject{{u"sha256"_s, QString::fromLatin1(upload.sha256)},
                                         {u"size"_s, static_cast<qint64>(upload.size)},
                                         {u"filename"_s, upload.filename},
                                         {u"claimedType"_s, upload.claimedType},
                                         {u"format"_s, upload.format},
                                         {u"expiry"_s, unixSeconds(upload.expiry)}});
    return object;
}

Uploads Uploads::fromJson(const QJsonObject& object) {
    Uploads uploads;
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        uploads.uploads_.insert_or_assign(
            it.key(),
            Upload{.sha256 = entry[u"sha256"_s].toString().toLatin1(),
                   .size = entry[u"size"_s].toInteger(),
                   .filename = entry[u"filename"_s].toString(),
                   .claimedType = entry[u"claimedType"_s].toString(),
                   .format = entry[u"format"_s].toString(),
                   .expiry = dateFromUnixSeconds(entry[u"expiry"_s].toDouble()).value_or(Date{})});
    }
    return uploads;
}

} // namespace quorvane::emulator
