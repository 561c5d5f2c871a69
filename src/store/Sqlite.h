#pragma once

#include "foundation/Error.h"

#include <QString>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

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
    };

    /// Throws `SqliteError` when the file cannot be opened.
    Connection(const std::filesystem::path& file, Mode mode);

    /// How long a statement waits for another connection's lock.
    void setBusyTimeout(int milliseconds);

    /// Runs all statements of `sql`, ignoring rows. Throws `SqliteError`.
    void execute(const char* sql);

    QString errorMessage() const;
    sqlite3* handle() const { return handle_.get(); }

  private:
    struct Close {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, Close> handle_;
};

/// Parameters are numbered from 1, columns from 0.
class Statement {
  public:
    /// Throws `SqliteError` when the text does not compile.
    Statement(Connection& connection, const char* sql);
    Statement(Connection& connection, const QString& sql);

    void bind(int index, const QString& text);
    void bind(int index, std::int64_t number);
    void bind(int index, int number) { bind(index, static_cast<std::int64_t>(number)); }
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
    std::optional<QString> optionalText(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    Connection& connection_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

} // namespace quorvane::sqlite
