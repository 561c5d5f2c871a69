#include "app/cli/FigureRows.h"

#include "app/cli/TextTable.h"

#include <QLocale>

namespace quorvane::cli {

QString rowsOf(const std::vector<Figure>& figures) {
    const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    QString text;
    for (const Figure& figure : figures)
        if (figure.count != 0 || figure.evenIfNone)
            text += tableRow(figure.label, turkish.toString(figure.count));
    return text;
}

QJsonObject jsonOf(const std::vector<Figure>& figures) {
    QJsonObject object;
    for (const Figure& figure : figures)
        object[QLatin1String(figure.key)] = figure.count;
    return object;
}

} // namespace quorvane::cli
