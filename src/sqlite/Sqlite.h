#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

/// A thin owner layer over SQLite 3: what is opened is closed, what is prepared is finalized, what
/// is begun is rolled back unless committed. One connection is used from one thread at a time.
namespace quorvane::sqlite {

/// Carries SQLite's own message text.
class SqliteError : public Error {
  public:
    using Error::Error;
};

class Connection {
  public:
    enum class Mode {
        readOnly,        ///< the file must exist
        readWriteCreate, ///< created when absent
        /// The file must exist, and was written by somebody else: nothing in its schema is trusted,
        /// a value is at most a MiB, and what a statement does and yields is in proportion to the
        /// size of the file. `SqliteError` for more.
        foreign,
    };

    /// Throws `SqliteError` when the file cannot be opened.
    Connection(const std::filesystem::path& file, Mode mode);
    Connection(Connection&&) noexcept;
    Connection& operator=(Connection&&) noexcept;
    ~Connection();

    /// Statements on a foreign file end with `Cancelled` when it is requested, from now on.
    void stopOn(std::stop_token stop);

    /// How long a statement waits for another connection's lock.
    void setBusyTimeout(int milliseconds);

    /// Runs all statements of `sql`, ignoring rows. Throws `SqliteError`.
    void execute(const char* sql);

    /// True between a BEGIN and its end.
    bool isInTransaction() const;

    /// How many rows the last INSERT, UPDATE or DELETE touched.
    int changedRows() const;

    QString errorMessage() const;
    sqlite3* handle() const { return handle_.get(); }

  private:
    friend class Statement;
    struct Bounds;

    struct Close {
        void operator()(sqlite3* handle) const;
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Compiled = std::unique_ptr<sqlite3_stmt, Finalize>;

    Compiled compile(const char* sql);
    void bound(const std::filesystem::path& file);
    void countBytes(std::int64_t bytes);

    std::unique_ptr<Bounds> bounds_; ///< of a foreign file; before `handle_`, which calls it
    std::unique_ptr<sqlite3, Close> handle_;
    /// Statements that are not in use, by the text that they were compiled from: compiling costs
    /// more than most of them do.
    std::multimap<std::string, Compiled, std::less<>> idle_;
};

/// Keeps every other writer out from its making on; rolls back at its end unless it was committed.
/// Inside another one it is a part of that.
class Transaction {
  public:
    /// Throws `SqliteError`: "BEGIN failed: " and SQLite's message.
    explicit Transaction(Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Throws `SqliteError`: "COMMIT failed: " and SQLite's message.
    void commit();

  private:
    Connection& connection_;
    bool isOpen_;
};

/// Parameters are numbered from 1, columns from 0. What was compiled is kept by the connection for
/// the next statement of the same text.
class Statement {
  public:
    /// Throws `SqliteError` when the text does not compile.
    Statement(Connection& connection, const char* sql);
    Statement(Connection& connection, const QString& sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    void bind(int index, const QString& text);
    void bind(int index, std::int64_t number);
    void bind(int index, int number) { bind(index, static_cast<std::int64_t>(number)); }
    void bind(int index, const QByteArray& bytes);
    void bindNull(int index);
    template <typename Value>
    void bind(int index, const std::optional<Value>& value) {
        value ? bind(index, *value) : bindNull(index);
    }

    /// True when a row is there, false when the statement is done. Throws `SqliteError`.
    bool step();

    /// Makes the statement ready to run again, without bindings.
    void reset();

    bool isNull(int column) const;
    QString text(int column) const;
    /// The same as UTF-8; good until the next step.
    std::string_view view(int column) const;
    std::optional<QString> optionalText(int column) const;
    QByteArray bytes(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;

  private:
    Connection& connection_;
    std::string sql_;
    Connection::Compiled statement_;
};

} // namespace quorvane::sqlite
