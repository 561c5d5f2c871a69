#include "metadata/PhotosDateQuery.h"

#include "metadata/LocalCalendar.h"

namespace quorvane {

namespace {

using sqlite::Statement;

// A database that cannot be copied or read is left alone for a while: the question comes for every
// file, and the answer must not cost a copy each time.
constexpr std::chrono::seconds retryDelay(60);

Statement prepare(sqlite::Connection& connection) {
    try {
        return {connection, "SELECT ZDATECREATED, ZADDEDDATE FROM ZGENERICASSET \n"
                            "WHERE ZUUID = ? OR ZUUID = ? \nLIMIT 1;"};
    } catch (const sqlite::SqliteError& error) {
        if (!error.localizedDescription().contains(QStringLiteral("no such table")))
            throw;
        return {connection, "SELECT ZDATECREATED, ZADDEDDATE FROM ZASSET \n"
                            "WHERE ZUUID = ? OR ZUUID = ? \nLIMIT 1;"};
    }
}

/// The asset's own identifier, which stands first in a local identifier.
QString uuidOf(const QString& identifier) {
    for (const QChar separator : {u'/', u'_'})
        if (const qsizetype end = identifier.indexOf(separator); end >= 0)
            return identifier.left(end);
    return identifier;
}

std::optional<Date> dateOf(const Statement& row) {
    for (const int column : {0, 1})
        if (!row.isNull(column) && row.real(column) > 0)
            return writableDate(dateFromUnixSeconds(row.real(column) + referenceDateOffset));
    return std::nullopt;
}

std::optional<std::filesystem::path> findDatabase(const std::filesystem::path& pictures) {
    if (pictures.empty())
        return std::nullopt;
    const std::filesystem::path inside = "database/Photos.sqlite";
    std::error_code error;
    const std::filesystem::path usual = pictures / "Photos Library.photoslibrary" / inside;
    if (std::filesystem::exists(usual, error))
        return usual;
    std::filesystem::directory_iterator entry(pictures, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code absent;
        if (entry->path().native().ends_with(".photoslibrary") &&
            std::filesystem::exists(entry->path() / inside, absent))
            return entry->path() / inside;
    }
    return std::nullopt;
}

} // namespace

PhotosDateQuery::Session::Session(const std::filesystem::path& file)
    : connection(file, sqlite::Connection::Mode::foreign), statement(prepare(connection)) {}

std::optional<Date> PhotosDateQuery::queryDateFromPhotosSQLite(const QString& identifier) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        Session* const session = currentSession();
        if (!session)
            return std::nullopt;
        Statement& statement = session->statement;
        statement.reset();
        statement.bind(1, uuidOf(identifier));
        statement.bind(2, identifier);
        return statement.step() ? dateOf(statement) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

PhotosDateQuery::Session* PhotosDateQuery::currentSession() {
    if (!cachedPhotosDatabaseURL())
        return nullptr;
    if (!copy_)
        copy_.emplace(*cachedPhotosDatabaseURL(), std::filesystem::temp_directory_path());
    if (session_ && copy_->isCurrent())
        return &*session_;
    if (failedAt_ && clock_.monotonic() - *failedAt_ < retryDelay)
        return nullptr;
    failedAt_ = clock_.monotonic(); // until it went well
    session_.reset();
    if (copy_->refresh())
        session_.emplace(copy_->file());
    failedAt_.reset();
    return session_ ? &*session_ : nullptr;
}

const std::optional<std::filesystem::path>& PhotosDateQuery::cachedPhotosDatabaseURL() {
    if (!looked_)
        cachedPhotosDatabaseURL_ = findDatabase(picturesFolder_);
    looked_ = true;
    return cachedPhotosDatabaseURL_;
}

} // namespace quorvane
