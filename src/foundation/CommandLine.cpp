#include "foundation/CommandLine.h"

#include <algorithm>

namespace quorvane::cli {

namespace {

QString left(const OptionSpec& option) {
    return QStringLiteral("--") + option.name +
           (option.valueName.isEmpty() ? QString() : u' ' + option.valueName);
}

const OptionSpec& find(const CommandSpec& command, const QString& name) {
    const auto found = std::ranges::find(command.options, name, &OptionSpec::name);
    if (found == command.options.end())
        throw UsageError(QStringLiteral("%1: bilinmeyen seçenek: --%2").arg(command.name, name));
    return *found;
}

} // namespace

std::optional<QString> Arguments::value(const QString& option) const {
    const auto last = std::find_if(given_.rbegin(), given_.rend(),
                                   [&option](const auto& given) { return given.first == option; });
    return last == given_.rend() ? std::nullopt : std::optional(last->second);
}

Arguments parse(const CommandSpec& command, const QStringList& words) {
    Arguments arguments;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words[i];
        if (!word.startsWith(QStringLiteral("--"))) {
            if (command.operand.isEmpty() || !arguments.operand_.isEmpty())
                throw UsageError(
                    QStringLiteral("%1: beklenmeyen sözcük: %2").arg(command.name, word));
            arguments.operand_ = word;
            continue;
        }
        const qsizetype equals = word.indexOf(u'=');
        const QString name = word.mid(2, equals < 0 ? -1 : equals - 2);
        const OptionSpec& option = find(command, name);
        if (option.valueName.isEmpty()) {
            if (equals >= 0)
                throw UsageError(QStringLiteral("%1: --%2 değer almaz").arg(command.name, name));
            arguments.given_.emplace_back(name, QString());
            continue;
        }
        if (equals < 0 && i + 1 == words.size())
            throw UsageError(QStringLiteral("%1: --%2 bir değer bekler (%3)")
                                 .arg(command.name, name, option.valueName));
        const QString value = equals < 0 ? words[++i] : word.mid(equals + 1);
        if (!option.allowed.isEmpty() && !option.allowed.contains(value))
            throw UsageError(
                QStringLiteral("%1: --%2 için geçersiz değer: %3 (geçerli: %4)")
                    .arg(command.name, name, value, option.allowed.join(QStringLiteral(", "))));
        arguments.given_.emplace_back(name, value);
    }
    return arguments;
}

QString optionTable(std::vector<OptionSpec> options) {
    options.push_back({QStringLiteral("help"), {}, QStringLiteral("bu yardımı gösterir")});
    qsizetype width = 0;
    for (const OptionSpec& option : options)
        width = std::max(width, left(option).size());
    QString text;
    for (const OptionSpec& option : options) {
        text += QStringLiteral("  %1  %2\n").arg(left(option).leftJustified(width), option.help);
        if (!option.allowed.isEmpty())
            text += QString(width + 4, u' ') + option.allowed.join(QStringLiteral(" | ")) + u'\n';
    }
    return text;
}

} // namespace quorvane::cli
