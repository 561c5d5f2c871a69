#pragma once

#include "foundation/Error.h"

#include <QStringList>

#include <utility>
#include <vector>

/// The grammar of every program's command line: options, and where a program has commands, what
/// each takes. Pure.
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
    using Given = std::vector<std::pair<QString, QString>>;

    bool has(const QString& option) const { return value(option).has_value(); }
    /// The last one given; empty for an option without a value.
    std::optional<QString> value(const QString& option) const;
    /// Names and values in their order, each as often as it came.
    const Given& given() const { return given_; }
    const QString& operand() const { return operand_; }

  private:
    friend Arguments parse(const CommandSpec& command, const QStringList& words);
    Given given_;
    QString operand_;
};

/// `words` are those after the command. Both "--name value" and "--name=value" are understood.
/// Throws `UsageError`.
Arguments parse(const CommandSpec& command, const QStringList& words);

/// A line for each option, and one for --help, which is asked for before anything is parsed.
QString optionTable(std::vector<OptionSpec> options);

} // namespace quorvane::cli
