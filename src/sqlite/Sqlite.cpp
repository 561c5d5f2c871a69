#include "sqlite/Sqlite.h"

#include <sqlite3.h>

namespace quorvane::sqlite {

namespace {

constexpr int largestForeignValue = 1 << 20;    // bytes
constexpr int largestForeignProgram = 100'000;  // instructions; ours have a few hundred
constexpr int stepsAtOnce = 10'000;             // between two looks at the bounds
constexpr std::int64_t leastSteps = 20'000'000; // instructions, about half a second
constexpr std::int64_t stepsOfByte = 8;         // a real database takes about two
constexpr std::int64_t leastBytes = 16 << 20;
constexpr std::int64_t timesRead = 4; // a row joined to several is read as often
const QString tooMuch = QStringLiteral("veritabanı kendi boyuna sığmayacak kadar çok şey içeriyor");

QString messageOf(sqlite3* handle) {
    return QString::fromUtf8(sqlite3_errmsg(handle));
}

} // namespace

/// What one statement on a foreign file may do, and what it did.
struct Connection::Bounds {
    std::int64_t steps; ///< instructions of SQLite's machine
    std::int64_t bytes; ///< of text and blobs that it yields
    std::int64_t stepsDone = 0;
    std::int64_t bytesDone = 0;
    std::stop_token stop = {};

    /// SQLite's progress handler: not 0 ends the statement with SQLITE_INTERRUPT.
    static int goOn(void* bounds) {
        auto& b = *static_cast<Bounds*>(bounds);
        b.stepsDone += stepsAtOnce;
        return b.stop.stop_requested() || b.stepsDone > b.steps ? 1 : 0;
    }
};

void Connection::Close::operator()(sqlite3* handle) const {
    sqlite3_close_v2(handle);
}

Connection::Connection(const std::filesystem::path& file, Mode mode) {
    const int flags = mode == Mode::readWriteCreate ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                                    : SQLITE_OPEN_READONLY;
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &handle, flags, nullptr);
    handle_.reset(handle); // SQLite hands out a handle even when opening failed
    if (result != SQLITE_OK)
        throw SqliteError(messageOf(handle));
    if (mode == Mode::foreign)
        bound(file);
}

Connection::Connection(Connection&&) noexcept = default;
Connection& Connection::operator=(Connection&&) noexcept = default;
Connection::~Connection() = default;

void Connection::bound(const std::filesystem::path& file) {
    std::error_code absent;
    const auto log = std::filesystem::file_size(file.native() + "-wal", absent);
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file) +
                                                 (absent ? 0 : log)); // without both: throws
    bounds_ = std::make_unique<Bounds>(
        Bounds{.steps = leastSteps + bytes * stepsOfByte, .bytes = leastBytes + bytes * timesRead});
    sqlite3_limit(handle_.get(), SQLITE_LIMIT_LENGTH, largestForeignValue);
    sqlite3_limit(handle_.get(), SQLITE_LIMIT_VDBE_OP, largestForeignProgram);
    sqlite3_progress_handler(handle_.get(), stepsAtOnce, Bounds::goOn, bounds_.get());
    execute("PRAGMA trusted_schema = OFF");
}

void Connection::stopOn(std::stop_token stop) {
    bounds_->stop = std::move(stop);
}

/// Adds to what the statement at hand yielded.
void Connection::countBytes(std::int64_t bytes) {
    if (bounds_ && (bounds_->bytesDone += bytes) > bounds_->bytes)
        throw SqliteError(tooMuch);
}

void Connection::setBusyTimeout(int milliseconds) {
    sqlite3_busy_timeout(handle_.get(), milliseconds);
}

void Connection::execute(const char* sql) {
    if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw SqliteError(errorMessage());
}

bool Connection::isInTransaction() const {
    return sqlite3_get_autocommit(handle_.get()) == 0;
}

int Connection::changedRows() const {
    return sqlite3_changes(handle_.get());
}

QString Connection::errorMessage() const {
    return messageOf(handle_.get());
}

Transaction::Transaction(Connection& connection)
    : connection_(connection), isOpen_(!connection.isInTransaction()) {
    if (!isOpen_)
        return;
    try {
        connection_.execute("BEGIN IMMEDIATE TRANSACTION;");
    } catch (const SqliteError& error) {
        isOpen_ = false;
        throw SqliteError(QStringLiteral("BEGIN failed: ") + error.localizedDescription());
    }
}

Transaction::~Transaction() {
    // SQLite may have rolled back by itself (a full disk does that).
    if (isOpen_ && connection_.isInTransaction())
        sqlite3_exec(connection_.handle(), "ROLLBACK;", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
    if (!isOpen_)
        return;
    try {
        connection_.execute("COMMIT;");
    } catch (const SqliteError& error) {
        throw SqliteError(QStringLiteral("COMMIT failed: ") + error.localizedDescription());
    }
    isOpen_ = false;
}

void Connection::Finalize::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Connection::Compiled Connection::compile(const char* sql) {
    if (bounds_)
        bounds_->stepsDone = bounds_->bytesDone = 0;
    if (const auto idle = idle_.find(std::string_view(sql)); idle != idle_.end())
        return std::move(idle_.extract(idle).mapped());
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle_.get(), sql, -1, &statement, nullptr) != SQLITE_OK)
        throw SqliteError(errorMessage());
    return Compiled(statement);
}

Statement::Statement(Connection& connection, const char* sql)
    : connection_(connection), sql_(sql), statement_(connection.compile(sql)) {}

Statement::~Statement() {
    reset();
    connection_.idle_.emplace(std::move(sql_), std::move(statement_));
}

Statement::Statement(Connection& connection, const QString& sql)
    : Statement(connection, sql.toUtf8().constData()) {}

void Statement::bind(int index, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(statement_.get(), index, utf8.constData(), static_cast<int>(utf8.size()),
                      SQLITE_TRANSIENT); // NOLINT: SQLite's own macro casts
}

void Statement::bind(int index, std::int64_t number) {
    sqlite3_bind_int64(statement_.get(), index, number);
}

void Statement::bind(int index, const QByteArray& bytes) {
    sqlite3_bind_blob(statement_.get(), index, bytes.constData(), static_cast<int>(bytes.size()),
                      SQLITE_TRANSIENT); // NOLINT: SQLite's own macro casts
}

void Statement::bindNull(int index) {
    sqlite3_bind_null(statement_.get(), index);
}

bool Statement::step() {
    switch (sqlite3_step(statement_.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    case SQLITE_INTERRUPT:
        if (connection_.bounds_->stop.stop_requested())
            throw Cancelled();
        throw SqliteError(tooMuch);
    default:
        throw SqliteError(connection_.errorMessage());
    }
}

void Statement::reset() {
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

QString Statement::text(int column) const {
    const std::string_view utf8 = view(column);
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string_view Statement::view(int column) const {
    const void* bytes = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    connection_.countBytes(size);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

std::optional<QString> Statement::optionalText(int column) const {
    return isNull(column) ? std::nullopt : std::optional(text(column));
}

QByteArray Statement::bytes(int column) const {
    const void* data = sqlite3_column_blob(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    connection_.countBytes(size);
    return {static_cast<const char*>(data), size};
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

} // namespace quorvane::sqlite
