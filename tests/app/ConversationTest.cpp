#include "CliWorld.h"

#include "foundation/Crypto.h"

#include <QJsonArray>
#include <QUrlQuery>

#include <algorithm>
#include <utility>

namespace quorvane::test {

namespace {

QByteArray base64url(const QByteArray& bytes) {
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QString value(const QByteArray& form, const QString& key) {
    return QUrlQuery(QString::fromLatin1(form)).queryItemValue(key, QUrl::FullyDecoded);
}

/// What the product says, one line per field; what differs from run to run has a name instead.
class Transcript {
  public:
    Transcript(std::vector<RecordedRequest> requests, const QString& album)
        : requests_(std::move(requests)), names_{{album, u"<album>"_s}} {
        // Uploads run side by side: their files' names put them in order.
        std::ranges::stable_sort(requests_, {}, [](const RecordedRequest& request) {
            return std::pair(request.kind == RequestKind::upload        ? 1
                             : request.kind == RequestKind::batchCreate ? 2
                                                                        : 0,
                             request.header("X-Goog-Upload-File-Name"));
        });
        int uploads = 0;
        for (const RecordedRequest& request : requests_) {
            const QJsonObject answer = QJsonDocument::fromJson(request.answer).object();
            if (request.kind == RequestKind::token)
                names_[answer[u"access_token"_s].toString()] = u"<access token>"_s;
            if (request.kind == RequestKind::upload)
                names_[QString::fromUtf8(request.answer)] = u"<upload token %1>"_s.arg(++uploads);
        }
    }

    QString text() {
        for (const RecordedRequest& request : requests_)
            add(request);
        return text_;
    }

  private:
    void add(const RecordedRequest& request) {
        line(QString::fromUtf8(request.method + ' ' + request.path));
        addFields(u"?"_s, request.query);
        for (const auto& [name, content] : request.headers)
            if (name == "Authorization" || name == "Content-Type" ||
                name.startsWith("X-Goog-Upload-"))
                line(u"  "_s + QString::fromUtf8(name + ": " + content));
        if (request.kind == RequestKind::upload)
            line(u"  %1 bytes"_s.arg(request.bodySize));
        else if (request.header("Content-Type") == "application/json")
            addJson(u"  "_s, QJsonDocument::fromJson(request.body).object());
        else
            addFields(u"="_s, request.body);
    }

    void addFields(const QString& mark, const QByteArray& form) {
        static const QStringList changing{u"code"_s, u"code_challenge"_s, u"code_verifier"_s,
                                          u"state"_s};
        for (const auto& [key, content] :
             QUrlQuery(QString::fromUtf8(form)).queryItems(QUrl::FullyDecoded))
            line(u"  %1 %2: "_s.arg(mark, key) +
                 (changing.contains(key) ? u'<' + key + u'>' : content));
    }

    void addJson(const QString& indent, const QJsonValue& json) {
        const auto member = [&](const QString& label, const QJsonValue& inner) {
            const bool nested = inner.isObject() || inner.isArray();
            line(indent + label + (nested ? QString() : u' ' + inner.toString()));
            if (nested)
                addJson(indent + u"  "_s, inner);
        };
        QStringList elements; // in the order of their texts: uploads end in any order
        for (const QJsonValue& each : json.toArray()) {
            const QString before = std::exchange(text_, QString());
            member(u"-"_s, each);
            elements += std::exchange(text_, before);
        }
        elements.sort();
        text_ += elements.join(QString());
        const QJsonObject object = json.toObject();
        for (auto each = object.begin(); each != object.end(); ++each)
            member(each.key() + u':', each.value());
    }

    void line(QString content) {
        for (auto name = names_.begin(); name != names_.end(); ++name)
            if (!name.key().isEmpty())
                content.replace(name.key(), name.value());
        text_ += content + u'\n';
    }

    std::vector<RecordedRequest> requests_;
    QMap<QString, QString> names_;
    QString text_;
};

const QString expected = uR"(GET /o/oauth2/v2/auth
  ? client_id: 123-abc.apps.googleusercontent.com
  ? redirect_uri: com.googleusercontent.apps.123-abc:/oauth2redirect
  ? response_type: code
  ? scope: https://www.googleapis.com/auth/photoslibrary.appendonly https://www.googleapis.com/auth/photoslibrary.readonly https://www.googleapis.com/auth/photoslibrary.readonly.appcreateddata https://www.googleapis.com/auth/userinfo.email
  ? code_challenge: <code_challenge>
  ? code_challenge_method: S256
  ? state: <state>
  ? access_type: offline
  ? prompt: consent
POST /token
  Content-Type: application/x-www-form-urlencoded
  = client_id: 123-abc.apps.googleusercontent.com
  = redirect_uri: com.googleusercontent.apps.123-abc:/oauth2redirect
  = grant_type: authorization_code
  = code: <code>
  = code_verifier: <code_verifier>
GET /oauth2/v2/userinfo
  Authorization: Bearer <access token>
GET /v1/albums
  ? pageSize: 50
  ? excludeNonAppCreatedData: true
  Authorization: Bearer <access token>
GET /v1/sharedAlbums
  ? pageSize: 50
  ? excludeNonAppCreatedData: true
  Authorization: Bearer <access token>
POST /v1/uploads
  Authorization: Bearer <access token>
  Content-Type: application/octet-stream
  X-Goog-Upload-Content-Type: image/jpeg
  X-Goog-Upload-Protocol: raw
  X-Goog-Upload-File-Name: IMG_000000.jpg
  726 bytes
POST /v1/uploads
  Authorization: Bearer <access token>
  Content-Type: application/octet-stream
  X-Goog-Upload-Content-Type: image/jpeg
  X-Goog-Upload-Protocol: raw
  X-Goog-Upload-File-Name: IMG_000001.jpg
  727 bytes
POST /v1/uploads
  Authorization: Bearer <access token>
  Content-Type: application/octet-stream
  X-Goog-Upload-Content-Type: image/jpeg
  X-Goog-Upload-Protocol: raw
  X-Goog-Upload-File-Name: IMG_000002.jpg
  727 bytes
POST /v1/mediaItems:batchCreate
  Authorization: Bearer <access token>
  Content-Type: application/json
  albumId: <album>
  newMediaItems:
    -
      simpleMediaItem:
        fileName: IMG_000000.jpg
        uploadToken: <upload token 1>
    -
      simpleMediaItem:
        fileName: IMG_000001.jpg
        uploadToken: <upload token 2>
    -
      simpleMediaItem:
        fileName: IMG_000002.jpg
        uploadToken: <upload token 3>
)"_s;

using ConversationTest = CliWorld;

TEST_F(ConversationTest, aSignInAndABackupSayThisAndNothingMore) {
    environment.insert(u"GOOGLE_CLIENT_ID"_s, u"123-abc.apps.googleusercontent.com"_s);
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 3);
    const QString album = emulator.addAlbum(u"Aile"_s);
    ASSERT_EQ(run(sync({u"--target-album"_s, u"Aile"_s})).code, 0);
    ASSERT_EQ(run(sync()).code, 0);

    const QString said = Transcript(emulator.requests(), album).text();
    EXPECT_EQ(said, expected) << said.toStdString();
    const QByteArray verifier =
        value(emulator.requests(RequestKind::token).at(0).body, u"code_verifier"_s).toLatin1();
    EXPECT_GE(verifier.size(), 43);
    EXPECT_EQ(value(emulator.requests(RequestKind::auth).at(0).query, u"code_challenge"_s),
              QString::fromLatin1(base64url(Sha256::digest(verifier))));
}

} // namespace

} // namespace quorvane::test
