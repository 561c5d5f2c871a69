#include "app/cli/CommandLine.h"

#include <algorithm>

namespace quorvane::cli {

namespace {

const QString exitCodes =
    QStringLiteral("Çıkış kodları:\n"
                   "  0    tamamlandı\n"
                   "  1    çalıştırılamadı\n"
                   "  2    kullanım hatası\n"
                   "  3    oturum açılmamış\n"
                   "  4    bitti, ama bazı öğeler yüklenemedi veya bekletiliyor\n"
                   "  5    başka bir eşitleme çalışıyor\n"
                   "  6    ara verildi: Google veya ağ beklemek istiyor; her şey saklandı, "
                   "yeniden çalıştırın\n"
                   "  130  durduruldu (SIGINT/SIGTERM/SIGHUP)");

QString left(const OptionSpec& option) {
    return QStringLiteral("--") + option.name +
           (option.valueName.isEmpty() ? QString() : u' ' + option.valueName);
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

const OptionSpec& find(const CommandSpec& command, const QString& name) {
    const auto found = std::ranges::find(command.options, name, &OptionSpec::name);
    if (found == command.options.end())
        throw UsageError(QStringLiteral("%1: bilinmeyen seçenek: --%2").arg(command.name, name));
    return *found;
}

} // namespace

std::optional<QString> Arguments::value(const QString& option) const {
    return has(option) ? std::optional(values_.value(option)) : std::nullopt;
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
            arguments.values_[name] = QString();
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
        arguments.values_[name] = value;
    }
    return arguments;
}

QString overview(const std::vector<CommandSpec>& commands) {
    QString text =
        QStringLiteral("Quorvane %1: Apple Fotoğraflar arşivini veya bir resim klasörünü "
                       "Google Photos'a yedekler.\n\n"
                       "Kullanım: quorvane-cli KOMUT [seçenekler]\n\n")
            .arg(QStringLiteral(QUORVANE_VERSION));
    for (const CommandSpec& command : commands)
        if (!command.hidden)
            text +=
                QStringLiteral("  %1  %2\n").arg(command.name.leftJustified(8), command.summary);
    return text + QStringLiteral("\nBir komutun seçenekleri: quorvane-cli KOMUT --help\n\n") +
           exitCodes;
}

QString helpOf(const CommandSpec& command) {
    const QString operand = command.operand.isEmpty() ? QString() : u' ' + command.operand;
    return QStringLiteral("Kullanım: quorvane-cli %1%2 [seçenekler]\n\n%3\n\n%4\n%5")
        .arg(command.name, operand, command.summary, optionTable(command.options), exitCodes);
}

} // namespace quorvane::cli
