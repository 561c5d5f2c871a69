#pragma once

#include "emulator/EmulatorTypes.h"

#include <QUrlQuery>

#include <memory>

namespace quorvane::emulator {

class UploadBody;
class UploadSession;

/// One request, received whole. An upload's bytes are only summed up in it.
struct Call {
    RecordedRequest request;
    QByteArray uploadStart = {}; ///< the first bytes of an upload, enough to tell its format
    std::shared_ptr<UploadBody> upload = {};     ///< set for uploads
    std::shared_ptr<UploadSession> session = {}; ///< set for what goes on with one

    /// A query item, decoded; empty when absent.
    QString queryItem(const QString& name) const;
    QUrlQuery query() const;

    /// The media type of the body in lower case, without parameters.
    QByteArray contentType() const;

    /// The name that an upload's header gives, decoded; empty when absent.
    QString uploadFilename() const;

    /// The upload session that the address names; empty when it names none.
    QString sessionID() const { return queryItem(QStringLiteral("upload_id")); }

    /// Whether `X-Goog-Upload-Command` holds that word.
    bool commands(const char* word) const;

    /// The token of the `Authorization` header (RFC 6750); empty when there is none.
    QString bearer() const;
};

/// Which kind of request this is; the path is still percent-encoded.
RequestKind kindOf(const QByteArray& method, const QByteArray& path);

/// The items of a form-encoded text: "+" and %XX are decoded.
QUrlQuery parseForm(const QByteArray& text);

/// The value of an item of `form`, decoded; empty when absent.
QString formItem(const QUrlQuery& form, const QString& name);

} // namespace quorvane::emulator
