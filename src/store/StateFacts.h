#pragma once

#include "store/RecordLife.h"

namespace quorvane {

/// Whose state a store is: of which library, and of which account. Any thread. Throws `DBError`.
class StateFacts {
  public:
    explicit StateFacts(DatabaseManager& database) : db_(database) {}

    /// What tells the library from every other; empty while the state belongs to none.
    QString library() const;
    void bindLibrary(const QString& identity);

    /// Unknown while nothing of it is at the destination.
    AccountIdentity account() const;
    /// Only the first account that is known binds; its user id may come later.
    void bindAccount(const AccountIdentity& account);

    /// How files are made of assets; "original" unless said otherwise.
    QString form() const;
    void setForm(const QString& form);

  private:
    QString value(const char* name) const;
    void setIfAbsent(const char* name, const QString& value);

    DatabaseManager& db_;
};

} // namespace quorvane
