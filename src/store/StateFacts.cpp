#include "store/StateFacts.h"

namespace quorvane {

namespace {

constexpr const char* libraryName = "library";
constexpr const char* userIDName = "account_user_id";
constexpr const char* emailName = "account_email";
constexpr const char* formName = "form";

} // namespace

QString StateFacts::library() const {
    return value(libraryName);
}

void StateFacts::bindLibrary(const QString& identity) {
    setIfAbsent(libraryName, identity);
}

AccountIdentity StateFacts::account() const {
    return {value(userIDName), value(emailName)};
}

void StateFacts::bindAccount(const AccountIdentity& account) {
    const AccountIdentity bound = this->account();
    if (!account.isKnown() || (bound.isKnown() && !bound.isSameAs(account)))
        return;
    if (bound.userID.isEmpty())
        setIfAbsent(userIDName, account.userID);
    if (bound.email.isEmpty())
        setIfAbsent(emailName, account.email);
}

QString StateFacts::form() const {
    const QString form = value(formName);
    return form.isEmpty() ? QStringLiteral("original") : form;
}

void StateFacts::setForm(const QString& form) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO state_facts VALUES (?, ?)");
        row.bind(1, QString::fromLatin1(formName));
        row.bind(2, form);
        row.step();
    });
}

QString StateFacts::value(const char* name) const {
    return db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT value FROM state_facts WHERE name = ?");
        row.bind(1, QString::fromLatin1(name));
        return row.step() ? row.text(0) : QString();
    });
}

void StateFacts::setIfAbsent(const char* name, const QString& value) {
    if (value.isEmpty())
        return;
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR IGNORE INTO state_facts VALUES (?, ?)");
        row.bind(1, QString::fromLatin1(name));
        row.bind(2, value);
        row.step();
    });
}

} // namespace quorvane
