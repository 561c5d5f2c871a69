#pragma once

#include "emulator/Answer.h"
#include "emulator/Call.h"
#include "foundation/Date.h"

#include <QJsonObject>

#include <map>

namespace quorvane::emulator {

/// The bytes behind an upload token.
struct Upload {
    QByteArray sha256; ///< lower-case hexadecimal
    std::int64_t size = 0;
    QString filename; ///< of the upload request; often empty
    QString claimedType;
    QString format; ///< the MIME type by the bytes themselves; empty when they are no media
    std::optional<Date> captured = {}; ///< as the file itself says; known for kept files
    Date expiry;
};

/// `POST /v1/uploads`, raw and resumable protocol, and the tokens it answers: each good for one
/// media item within a day. Sessions of the resumable one last as long as the program. Not shared
/// between threads.
class Uploads {
  public:
    /// The bearer token has been checked before.
    Answer receive(const Call& call, const Behaviour& behaviour, Date now);

    /// None when the session is unknown.
    std::shared_ptr<UploadSession> session(const QString& id) const;

    /// None when the token is unknown, used or expired.
    const Upload* find(const QString& token, Date now) const;
    void use(const QString& token);

    QJsonObject toJson() const;
    static Uploads fromJson(const QJsonObject& object);

  private:
    Answer start(const Call& call);
    Answer goOn(const Call& call, const Behaviour& behaviour, Date now);
    Answer take(const Call& call, const Behaviour& behaviour, Date now);

    std::map<QString, Upload> uploads_;
    std::map<QString, std::shared_ptr<UploadSession>> sessions_;
};

} // namespace quorvane::emulator
