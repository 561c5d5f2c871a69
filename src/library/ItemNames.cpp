#include "library/ItemNames.h"

#include <QRegularExpression>

namespace quorvane {

QString plainStemOf(const QString& name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    return (dot > 0 ? name.left(dot) : name).toLower();
}

QString stemOf(const QString& name) {
    static const QRegularExpression addition(QStringLiteral(
        "(?: ?\\([0-9]{1,3}\\)|~[0-9]{1,3}|[ _-](?:copy|kopya|kopyası|edit|edited|düzenlendi)"
        "(?: ?[0-9]{1,3})?)$"));
    static const QRegularExpression edit(QStringLiteral("^img_e([0-9]{4})$"));
    QString stem = plainStemOf(name);
    for (int i = 0; i < 2; ++i)
        if (const auto match = addition.match(stem); match.capturedStart() > 0)
            stem.truncate(match.capturedStart());
    return stem.replace(edit, QStringLiteral("img_\\1"));
}

bool isTelling(const QString& stem) {
    static const QRegularExpression digit(QStringLiteral("[0-9]"));
    constexpr qsizetype shortest = 5;
    return stem.size() >= shortest && stem.contains(digit);
}

std::optional<Counter> counterOf(const QString& name) {
    static const QRegularExpression pattern(QStringLiteral("^(.*?)([0-9]{3,6})$"));
    const auto match = pattern.match(stemOf(name));
    if (!match.hasMatch() || match.captured(1).endsWith(u'.'))
        return std::nullopt;
    const QString series = match.captured(1);
    if (!series.isEmpty() && series.back().isDigit())
        return std::nullopt;
    return Counter{series, match.captured(2).toInt()};
}

} // namespace quorvane
