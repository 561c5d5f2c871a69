#include "app/cli/Remainders.h"

#include "app/cli/TextTable.h"

namespace quorvane::cli {

namespace {

struct Row {
    QString label;
    const char* name;
    int count;
};

std::vector<Row> rowsOf(const RemainderCounts& counts) {
    return {{QStringLiteral("Düzenlemesi yüklenmeyen"), "edits", counts.edits},
            {QStringLiteral("Filmi yüklenmeyen Live"), "liveMovies", counts.movies},
            {QStringLiteral("RAW eşi yüklenmeyen"), "raws", counts.raws},
            {QStringLiteral("Özgün hali yüklenmeyen"), "originals", counts.originals},
            {QStringLiteral("Aynı içerikten kopya"), "duplicates", counts.duplicates}};
}

} // namespace

QString remainderRows(const RemainderCounts& counts) {
    QString text;
    for (const Row& row : rowsOf(counts))
        if (row.count > 0)
            text += tableRow(row.label, QString::number(row.count));
    return text;
}

QJsonObject remainderJson(const RemainderCounts& counts) {
    QJsonObject object;
    for (const Row& row : rowsOf(counts))
        object[QLatin1String(row.name)] = row.count;
    return object;
}

} // namespace quorvane::cli
