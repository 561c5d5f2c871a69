#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace quorvane::emulator {

/// The kinds of request that the service tells apart; `other` is everything it does not know.
enum class RequestKind {
    auth,
    token,
    revoke,
    userinfo,
    upload,
    batchCreate,
    batchGet,
    albumsList,
    albumsCreate,
    albumsGet,
    albumsAdd,
    sharedAlbums,
    report,
    other,
};

/// The most items that a request may name.
inline constexpr qsizetype largestBatch = 50;

inline constexpr std::array allRequestKinds{
    RequestKind::auth,      RequestKind::token,      RequestKind::revoke,
    RequestKind::userinfo,  RequestKind::upload,     RequestKind::batchCreate,
    RequestKind::batchGet,  RequestKind::albumsList, RequestKind::albumsCreate,
    RequestKind::albumsGet, RequestKind::albumsAdd,  RequestKind::sharedAlbums,
    RequestKind::report,    RequestKind::other,
};

/// The kind's name as on the command line and in the report: "batchCreate".
QString nameOf(RequestKind kind);
std::optional<RequestKind> requestKindFrom(const QString& name);

/// Of the Photos Library API: what its daily quota counts.
bool isLibraryRequest(RequestKind kind);

/// An account of the service, as it tells its clients.
struct Person {
    QString id = QStringLiteral("100000000000000000001"); ///< never changes, unlike the address
    QString email = QStringLiteral("kullanici@example.com");
};

/// What the service may be told to do at any time.
struct Behaviour {
    std::chrono::milliseconds latency{0};                            ///< before every answer
    std::map<RequestKind, std::chrono::milliseconds> latencyOf = {}; ///< instead, for some kinds
    int failingPercent = 0;                ///< of the library's requests: 429, 500 and 503 in turn
    std::int64_t uploadBytesPerSecond = 0; ///< 0: as fast as it comes
    std::chrono::seconds tokenLifetime{3599}; ///< of access tokens; may be negative
    std::chrono::seconds tokenShortfall{0};   ///< access tokens end so much sooner than is told
    std::chrono::seconds sessionLifetime{0};  ///< of refresh tokens; 0: without end
    std::chrono::seconds clockAhead{0};       ///< what the service's clock is wrong by
    std::int64_t albumCapacity = 20'000;      ///< media items in one album
    std::chrono::seconds dateShift{0};        ///< what is read wrongly of capture times
    std::int64_t storageBytes = -1;           ///< room for media items; negative: without end
    std::int64_t dailyRequests = 0;           ///< to the library, a day; 0: as many as come
    std::chrono::seconds uploadTokenLifetime = std::chrono::days(1);
    bool listingForbidden = false;      ///< no reading permission: 403
    bool duplicatesRefused = false;     ///< bytes that the library has get code 6
    bool sharedListingForbidden = true; ///< of shared albums; Google refuses everybody
    bool consentDenied = false;         ///< the person refuses the sign-in
    Person person = {};                 ///< who signs in from now on
    QString declinedScopes;             ///< boxes that the person leaves unticked
    QString clientSecret;               ///< asked for at /token when not empty
};

struct EmulatorOptions {
    int port = 0; ///< 0: any free one
    Behaviour behaviour = {};
    std::filesystem::path storeFolder = {}; ///< keeps the uploaded files when not empty
    std::filesystem::path stateFile = {};   ///< keeps the account's state when not empty
    std::int64_t recordedBytes = 64 << 20;  ///< oldest requests are forgotten; 0: none kept
    std::int64_t keptUploadBytes = 0;       ///< of each upload's start, in its record
};

/// One request and its answer as they went over the wire.
struct RecordedRequest {
    using Headers = std::vector<std::pair<QByteArray, QByteArray>>;

    RequestKind kind = RequestKind::other;
    int connection = 0; ///< counted from 1: requests of one connection share the number
    QByteArray method;
    QByteArray path;
    QByteArray query;          ///< still percent-encoded, without the "?"
    Headers headers;           ///< in order and spelled as received
    QByteArray body;           ///< of an upload only the first `keptUploadBytes`
    std::int64_t bodySize = 0; ///< bytes received
    QByteArray bodySha256;     ///< lower-case hexadecimal; uploads only
    int status = 0;            ///< 0: no answer was given
    QByteArray answer;         ///< the answer's body, as far as it was to be sent

    /// The first header of that name in any case; empty when absent.
    QByteArray header(QByteArrayView name) const;
};

struct StoredMediaItem {
    QString id;
    QString filename;
    QString description;
    QString mimeType;
    QByteArray sha256; ///< lower-case hexadecimal
    std::int64_t size = 0;
    QString creationTime; ///< ISO 8601, UTC, of the capture; empty when the file was not kept
    QStringList albumIds = {};
};

struct StoredAlbum {
    QString id;
    QString title;
    std::int64_t itemCount = 0;
    bool isShared = false;
    bool isAppCreated = true; ///< else only listed without `excludeNonAppCreatedData`
};

struct TokenPair {
    QString accessToken;
    QString refreshToken;
};

} // namespace quorvane::emulator
