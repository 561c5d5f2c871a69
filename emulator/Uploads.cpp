#include "emulator/Uploads.h"

#include "emulator/MediaFormat.h"
#include "emulator/Tokens.h"
#include "emulator/UploadSession.h"
#include "metadata/ImageMetadata.h"
#include "metadata/movie/MovieDates.h"

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

Answer badHeader(const QString& name) {
    return invalidArgument(u"Missing or invalid header: "_s + name);
}

/// What Google reads of the file; the time of its upload where it states none.
std::optional<Date> captureTime(const std::filesystem::path& file, const QString& format,
                                const Behaviour& behaviour, Date now) {
    if (file.empty())
        return std::nullopt;
    const auto stated =
        format.startsWith(u"video/"_s) ? readExistingVideoDate(file) : readExistingImageDate(file);
    return stated.value_or(now) + behaviour.dateShift;
}

bool isMediaType(const QByteArray& value) {
    const qsizetype slash = value.indexOf('/');
    return slash > 0 && slash < value.size() - 1;
}

} // namespace

Answer Uploads::receive(const Call& call, const Behaviour& behaviour, Date now) {
    const RecordedRequest& request = call.request;
    if (!call.sessionID().isEmpty())
        return goOn(call, behaviour, now);
    const bool isStart = call.commands("start");
    if (request.header("X-Goog-Upload-Protocol") != (isStart ? "resumable" : "raw"))
        return badHeader(u"X-Goog-Upload-Protocol"_s);
    if (!isMediaType(request.header("X-Goog-Upload-Content-Type")))
        return badHeader(u"X-Goog-Upload-Content-Type"_s);
    if (isStart)
        return start(call);
    if (call.contentType() != "application/octet-stream")
        return badHeader(u"Content-Type"_s);
    return take(call, behaviour, now);
}

Answer Uploads::start(const Call& call) {
    const RecordedRequest& request = call.request;
    bool isNumber = false;
    const qint64 size = request.header("X-Goog-Upload-Raw-Size").toLongLong(&isNumber);
    if (request.bodySize != 0 || (isNumber && size <= 0))
        return badHeader(u"X-Goog-Upload-Raw-Size"_s);
    const QString id = opaqueText(48);
    sessions_.insert_or_assign(
        id, std::make_shared<UploadSession>(call, isNumber ? std::optional<std::int64_t>(size)
                                                           : std::nullopt));
    Answer answer;
    answer.headers = {
        {"X-Goog-Upload-URL", "http://" + request.header("Host") + "/v1/uploads?upload_id=" +
                                  id.toLatin1() + "&upload_protocol=resumable"},
        {"X-Goog-Upload-Chunk-Granularity", QByteArray::number(qint64(UploadSession::granularity))},
        {"X-Goog-Upload-Status", "active"}};
    return answer;
}

Answer Uploads::goOn(const Call& call, const Behaviour& behaviour, Date now) {
    if (!call.session || session(call.sessionID()) != call.session)
        return apiError(404, u"Requested entity was not found."_s);
    UploadSession& session = *call.session;
    if (call.commands("upload") && !session.isAtItsPlace())
        return invalidArgument(u"The upload offset does not match."_s);
    if (call.commands("finalize")) {
        if (!session.isComplete())
            return invalidArgument(u"The upload is not complete."_s);
        Answer answer = take(session.finish(), behaviour, now);
        sessions_.erase(call.sessionID());
        return answer;
    }
    if (call.commands("upload") && session.received() % UploadSession::granularity != 0)
        return invalidArgument(u"The size of the piece does not match the granularity."_s);
    Answer answer;
    answer.headers = {
        {"X-Goog-Upload-Status", "active"},
        {"X-Goog-Upload-Size-Received", QByteArray::number(qint64(session.received()))}};
    return answer;
}

/// The bytes are here as a whole.
Answer Uploads::take(const Call& call, const Behaviour& behaviour, Date now) {
    const RecordedRequest& request = call.request;
    if (request.bodySize == 0)
        return invalidArgument(u"The upload has no content."_s);
    std::erase_if(uploads_, [&](const auto& entry) { return entry.second.expiry <= now; });
    const QString token = u"CAIS"_s + opaqueText(96);
    const QByteArray claimedType = request.header("X-Goog-Upload-Content-Type").toLower();
    const QString format = mediaFormatOf(call.uploadStart).value_or(QString());
    uploads_.insert_or_assign(
        token, Upload{.sha256 = request.bodySha256,
                      .size = request.bodySize,
                      .filename = call.uploadFilename(),
                      .claimedType = QString::fromLatin1(claimedType),
                      .format = format,
                      .captured = captureTime(call.upload->keep(call), format, behaviour, now),
                      .expiry = now + behaviour.uploadTokenLifetime});
    Answer answer = textAnswer(token.toLatin1());
    answer.headers = {{"X-Goog-Upload-Status", "final"}};
    return answer;
}

std::shared_ptr<UploadSession> Uploads::session(const QString& id) const {
    const auto found = sessions_.find(id);
    return found == sessions_.end() ? nullptr : found->second;
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
