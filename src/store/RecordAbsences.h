#pragma once

#include "store/DatabaseManager.h"

#include <map>

namespace quorvane {

/// Which assets were left out because their original is not on this machine, and why. Written by
/// `RecordLife` alone. Any thread. Throws `DBError`.
class RecordAbsences {
  public:
    /// What is stored; a person is shown the record's reason.
    static inline const QString onlyInCloud = QStringLiteral("only_in_cloud");
    static inline const QString elsewhere = QStringLiteral("elsewhere");

    explicit RecordAbsences(DatabaseManager& database) : db_(database) {}

    /// The codes by asset.
    std::map<QString, QString> all() const;
    /// How many there are of each code.
    std::map<QString, int> counts() const;
    /// The reasons, one line each, at most `limit`.
    QStringList reasons(int limit) const;

  private:
    friend class RecordLife;
    void set(const QString& identifier, const QString& code);
    void remove(const QString& identifier);

    DatabaseManager& db_;
};

} // namespace quorvane
