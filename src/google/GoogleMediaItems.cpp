#include "google/GoogleMediaItems.h"

#include "google/GoogleErrors.h"
#include "google/GoogleFaults.h"

#include <QDateTime>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextBoundaryFinder>
#include <QUrlQuery>

namespace quorvane {

namespace {

constexpr qint64 notFoundCode = 5; // google.rpc.Code

/// As much of a description as Google takes. What a reader takes for one character is not cut in
/// two.
QString fitting(const QString& description) {
    constexpr qsizetype longest = 1000;
    if (description.size() <= longest)
        return description;
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, description);
    boundaries.setPosition(longest);
    if (!boundaries.isAtBoundary())
        boundaries.toPreviousBoundary();
    return description.left(boundaries.position());
}

QByteArray creationBody(const std::vector<NewMediaItem>& items,
                        const std::optional<QString>& albumID) {
    QJsonArray newItems;
    for (const NewMediaItem& item : items) {
        QJsonObject simple{{QStringLiteral("uploadToken"), item.uploadToken}};
        if (!item.fileName.isEmpty())
            simple.insert(QStringLiteral("fileName"), item.fileName);
        QJsonObject newItem{{QStringLiteral("simpleMediaItem"), simple}};
        if (const QString description = fitting(item.description); !description.isEmpty())
            newItem.insert(QStringLiteral("description"), description);
        newItems.append(newItem);
    }
    QJsonObject body{{QStringLiteral("newMediaItems"), newItems}};
    if (albumID)
        body.insert(QStringLiteral("albumId"), *albumID);
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QJsonArray resultsIn(const HttpResponse& response, const QString& member) {
    const QJsonValue results = QJsonDocument::fromJson(response.body).object().value(member);
    if (!results.isArray())
        throw GoogleError::invalidResponse(GoogleError::Area::batch);
    return results.toArray();
}

QString uploadTokenOf(const QJsonValue& result) {
    return result[QStringLiteral("uploadToken")].toString();
}

qint64 codeOf(const QJsonValue& result) {
    return result[QStringLiteral("status")][QStringLiteral("code")].toInteger();
}

QString mediaItemIDOf(const QJsonValue& result) {
    return result[QStringLiteral("mediaItem")][QStringLiteral("id")].toString();
}

/// RFC 3339, with or without a fraction of a second.
std::optional<Date> creationTimeOf(const QJsonValue& result) {
    const QString text = result[QStringLiteral("mediaItem")][QStringLiteral("mediaMetadata")]
                               [QStringLiteral("creationTime")]
                                   .toString();
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    return time.isValid() ? std::optional(Date(std::chrono::milliseconds(time.toMSecsSinceEpoch())))
                          : std::nullopt;
}

/// For each item the result that speaks of it: the one that names its upload token, where result
/// and item are the only ones with that token, else the one at its place unless that names another
/// item. An original must never be taken for saved by what was said about another one.
std::vector<QJsonValue> paired(const std::vector<NewMediaItem>& items, const QJsonArray& results) {
    QHash<QString, int> itemsWith;
    for (const NewMediaItem& item : items)
        ++itemsWith[item.uploadToken];
    QMultiHash<QString, qsizetype> naming;
    for (qsizetype i = 0; i < results.size(); ++i)
        naming.insert(uploadTokenOf(results[i]), i);
    std::vector<QJsonValue> pairs;
    for (qsizetype i = 0; i < std::ssize(items); ++i) {
        const QString& token = items[static_cast<std::size_t>(i)].uploadToken;
        const QJsonValue atPlace = results.at(i);
        const QString named = uploadTokenOf(atPlace);
        if (itemsWith[token] == 1 && naming.count(token) == 1)
            pairs.push_back(results[naming.value(token)]);
        else if (named == token || !itemsWith.contains(named))
            pairs.push_back(atPlace);
        else
            pairs.emplace_back(QJsonValue::Undefined);
    }
    return pairs;
}

NewMediaItemResult resultFrom(const QJsonValue& value) {
    if (!value.isObject())
        return {};
    NewMediaItemResult result;
    result.isAnswered = true;
    result.id = mediaItemIDOf(value);
    result.creationTime = creationTimeOf(value);
    result.code = codeOf(value);
    const QJsonValue status = value[QStringLiteral("status")];
    if (result.code != 0 || result.id.isEmpty())
        result.fault = itemFaultIn(status.toObject());
    if (status.isObject())
        result.statusText =
            QString::fromUtf8(QJsonDocument(status.toObject()).toJson(QJsonDocument::Compact));
    return result;
}

} // namespace

std::vector<NewMediaItemResult>
GoogleMediaItems::batchCreate(const std::vector<NewMediaItem>& items,
                              const std::optional<QString>& albumID, const std::stop_token& stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = api_.at(QStringLiteral("/v1/mediaItems:batchCreate"));
    request.isCreation = true;
    request.headers = {{"Content-Type", "application/json"}};
    request.body = creationBody(items, albumID);
    const HttpResponse response = api_.send(std::move(request), stop);
    if (response.status != 200 && response.status != 207) // 207: some items failed
        throw GoogleError::http(GoogleError::Area::batch, response, albumID.has_value());
    std::vector<NewMediaItemResult> results;
    for (const QJsonValue& value :
         paired(items, resultsIn(response, QStringLiteral("newMediaItemResults"))))
        results.push_back(resultFrom(value));
    return results;
}

std::optional<std::set<QString>> GoogleMediaItems::batchGet(const QStringList& ids,
                                                            const std::stop_token& stop) {
    if (ids.isEmpty())
        return std::set<QString>();
    const std::set<QString> asked(ids.begin(), ids.end()); // Google refuses repeated ones
    QUrlQuery query;
    for (const QString& id : asked)
        query.addQueryItem(QStringLiteral("mediaItemIds"),
                           QString::fromLatin1(QUrl::toPercentEncoding(id)));
    HttpRequest request;
    request.url = api_.at(QStringLiteral("/v1/mediaItems:batchGet"));
    request.url.setQuery(query);
    const HttpResponse response = api_.send(std::move(request), stop);
    if (response.status == 403)
        return std::nullopt;
    if (response.status != 200)
        throw GoogleError::http(GoogleError::Area::batch, response);
    std::set<QString> existing;
    std::size_t gone = 0;
    for (const auto& value : resultsIn(response, QStringLiteral("mediaItemResults"))) {
        const qint64 code = codeOf(value);
        const QString id = mediaItemIDOf(value);
        if (code == 0 && asked.contains(id))
            existing.insert(id);
        else if (code == notFoundCode)
            ++gone;
        else
            throw GoogleError::invalidResponse(GoogleError::Area::batch);
    }
    if (existing.size() + gone != asked.size())
        throw GoogleError::invalidResponse(GoogleError::Area::batch);
    return existing;
}

} // namespace quorvane
