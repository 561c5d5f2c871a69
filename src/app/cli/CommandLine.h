#pragma once

#include "foundation/Error.h"

#include <QMap>
#include <QStringList>

#include <vector>

/// The command line's grammar: a command, then its options. Pure.
namespace quorvane::cli {

struct OptionSpec {
    QString name;      ///< without the dashes
    QString valueName; ///< empty: the option takes no value
    QString help;
    QStringList allowed = {}; ///< empty: any value
};

struct CommandSpec {
    QString name;
    QString summary;
    std::vector<OptionSpec> options;
    QString operand = {}; ///< name of the one operand the command takes; empty: none
    bool hidden = false;  ///< not listed; for other programs
};

/// Words that do not fit the grammar.
class UsageError : public Error {
  public:
    using Error::Error;
};

/// The options of one call.
class Arguments {
  public:
    bool has(const QString& option) const { return values_.contains(option); }
    std::optional<QString> value(const QString& option) const;
    const QString& operand() const { return operand_; }

  private:
    friend Arguments parse(const CommandSpec& command, const QStringList& words);
    QMap<QString, QString> values_;
    QString operand_;
};

/// `words` are those after the command. Both "--name value" and "--name=value" are understood.
/// Throws `UsageError`.
Arguments parse(const CommandSpec& command, const QStringList& words);

/// What `quorvane-cli --help` and `quorvane-cli COMMAND --help` print.
QString overview(const std::vector<CommandSpec>& commands);
QString helpOf(const CommandSpec& command);

} // namespace quorvane::cli
