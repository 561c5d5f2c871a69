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

/// What the product says, one line per field; what differs from run to run has a name instead, and
/// what is said again in the same words is counted.
class Transcript {
  public:
    Transcript(std::vector<RecordedRequest> requests, const std::filesystem::path& pictures,
               const std::vector<StoredAlbum>& albums)
        : requests_(std::move(requests)), pictures_(pictures) {
        for (const StoredAlbum& album : albums)
            names_[album.id] = u"<%1>"_s.arg(album.title);
        // Uploads run side by side, with the first batches among them: their files' names put
        // them in order.
        const auto isUpload = [](const RecordedRequest& request) {
            return request.kind == RequestKind::upload;
        };
        const auto first = std::ranges::find_if(requests_, isUpload);
        const auto last = std::stable_partition(first, requests_.end(), isUpload);
        std::sort(first, last, [](const RecordedRequest& a, const RecordedRequest& b) {
            return a.header("X-Goog-Upload-File-Name") < b.header("X-Goog-Upload-File-Name");
        });
        int tokens = 0;
        for (const RecordedRequest& request : requests_) {
            const QJsonObject answer = QJsonDocument::fromJson(request.answer).object();
            if (const QString token = answer[u"access_token"_s].toString(); !token.isEmpty())
                names_[token] = u"<access token %1>"_s.arg(++tokens);
            if (const QString token = answer[u"refresh_token"_s].toString(); !token.isEmpty())
                names_[token] = u"<refresh token>"_s;
            if (isUpload(request))
                names_[QString::fromUtf8(request.answer)] =
                    u"<token of %1>"_s.arg(fileNameOf(request));
        }
    }

    QString text() {
        QStringList said;
        for (const RecordedRequest& request : requests_) {
            text_.clear();
            add(request);
            said += text_;
        }
        return counted(said, {});
    }

  private:
    static QString fileNameOf(const RecordedRequest& request) {
        return QString::fromUtf8(request.header("X-Goog-Upload-File-Name"));
    }

    /// The texts behind each other, with the number of equal neighbours in front of their first.
    static QString counted(const QStringList& texts, const QString& indent) {
        QString result;
        for (auto at = texts.begin(); at != texts.end();) {
            const auto next =
                std::find_if(at, texts.end(), [&](const QString& t) { return t != *at; });
            const auto times = next - at;
            result +=
                times == 1 ? *at : indent + u"%1 times "_s.arg(times) + at->sliced(indent.size());
            at = next;
        }
        return result;
    }

    void add(const RecordedRequest& request) {
        line(QString::fromUtf8(request.method + ' ' + request.path));
        addFields(u"?"_s, request.query);
        for (const auto& [name, content] : request.headers)
            if (name == "Authorization" || name == "Content-Type" ||
                name.startsWith("X-Goog-Upload-"))
                line(u"  "_s + QString::fromUtf8(name + ": " + content));
        if (request.kind == RequestKind::upload)
            addUpload(request);
        else if (request.header("Content-Type") == "application/json")
            addJson(u"  "_s, QJsonDocument::fromJson(request.body).object());
        else
            addFields(u"="_s, request.body);
    }

    /// The name is to be the next picture's, and the length that picture's.
    void addUpload(const RecordedRequest& request) {
        const QString name = u"IMG_%1.jpg"_s.arg(uploads_++, 6, 10, QChar(u'0'));
        text_.replace(name, u"<name>"_s);
        const bool whole = static_cast<std::uintmax_t>(request.bodySize) ==
                           std::filesystem::file_size(pictures_ / name.toStdString());
        line(whole ? u"  <the file>"_s : u"  %1 bytes"_s.arg(request.bodySize));
    }

    void addFields(const QString& mark, const QByteArray& form) {
        static const QStringList changing{u"code"_s, u"code_challenge"_s, u"code_verifier"_s,
                                          u"state"_s, u"pageToken"_s};
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
        static const QRegularExpression pair(
            u"fileName: (IMG_[0-9]+\\.jpg)\\n( +)uploadToken: <token of \\1>"_s);
        QStringList elements;
        for (const QJsonValue& each : json.toArray()) {
            const QString before = std::exchange(text_, QString());
            member(u"-"_s, each);
            text_.replace(pair, u"fileName: <name>\n\\2uploadToken: <its token>"_s);
            elements += std::exchange(text_, before);
        }
        text_ += counted(elements, indent);
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
    const std::filesystem::path pictures_;
    QMap<QString, QString> names_;
    int uploads_ = 0;
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
  Authorization: Bearer <access token 1>
POST /token
  Content-Type: application/x-www-form-urlencoded
  = client_id: 123-abc.apps.googleusercontent.com
  = grant_type: refresh_token
  = refresh_token: <refresh token>
GET /v1/albums
  ? pageSize: 50
  ? excludeNonAppCreatedData: true
  Authorization: Bearer <access token 2>
2 times GET /v1/albums
  ? pageSize: 50
  ? excludeNonAppCreatedData: true
  ? pageToken: <pageToken>
  Authorization: Bearer <access token 2>
GET /v1/sharedAlbums
  ? pageSize: 50
  ? excludeNonAppCreatedData: true
  Authorization: Bearer <access token 2>
60 times POST /v1/uploads
  Authorization: Bearer <access token 2>
  Content-Type: application/octet-stream
  X-Goog-Upload-Content-Type: image/jpeg
  X-Goog-Upload-Protocol: raw
  X-Goog-Upload-File-Name: <name>
  <the file>
2 times POST /v1/mediaItems:batchCreate
  Authorization: Bearer <access token 2>
  Content-Type: application/json
  albumId: <Aile>
  newMediaItems:
    25 times -
      simpleMediaItem:
        fileName: <name>
        uploadToken: <its token>
POST /v1/mediaItems:batchCreate
  Authorization: Bearer <access token 2>
  Content-Type: application/json
  albumId: <Aile>
  newMediaItems:
    10 times -
      simpleMediaItem:
        fileName: <name>
        uploadToken: <its token>
POST /v1/albums
  Authorization: Bearer <access token 2>
  Content-Type: application/json
  album:
    title: Aile - Parça 2
POST /v1/mediaItems:batchCreate
  Authorization: Bearer <access token 2>
  Content-Type: application/json
  albumId: <Aile - Parça 2>
  newMediaItems:
    10 times -
      simpleMediaItem:
        fileName: <name>
        uploadToken: <its token>
POST /revoke
  Content-Type: application/x-www-form-urlencoded
  = token: <access token 2>
)"_s;

using ConversationTest = CliWorld;

TEST_F(ConversationTest, aSignInABackupAndASignOutSayThisAndNothingMore) {
    environment.insert(u"GOOGLE_CLIENT_ID"_s, u"123-abc.apps.googleusercontent.com"_s);
    emulator.change([](Behaviour& behaviour) {
        behaviour.albumCapacity = 50;
        behaviour.tokenLifetime = std::chrono::seconds(0); // to be refreshed at once
    });
    ASSERT_EQ(signIn().code, 0);
    emulator.change([](Behaviour& behaviour) { behaviour.tokenLifetime = std::chrono::hours(1); });
    for (int i = 0; i < 120; ++i)
        emulator.addAlbum(u"Albüm %1"_s.arg(i));
    emulator.addAlbum(u"Aile"_s); // on the third page
    sample::writeManyPictures(library, 60);
    const QStringList command =
        sync({u"--target-album"_s, u"Aile"_s, u"--on-album-limit"_s, u"rollover"_s});
    ASSERT_EQ(run(command).code, 0);
    ASSERT_EQ(run(sync()).code, 0);
    ASSERT_EQ(run({u"logout"_s}).code, 0);

    const QString said = Transcript(emulator.requests(), library / "000", emulator.albums()).text();
    EXPECT_EQ(said, expected) << said.toStdString();
    const QByteArray verifier =
        value(emulator.requests(RequestKind::token).at(0).body, u"code_verifier"_s).toLatin1();
    EXPECT_GE(verifier.size(), 43);
    EXPECT_EQ(value(emulator.requests(RequestKind::auth).at(0).query, u"code_challenge"_s),
              QString::fromLatin1(base64url(Sha256::digest(verifier))));
}

} // namespace

} // namespace quorvane::test
