#include "app/cli/Absences.h"

#include "app/cli/TextTable.h"

namespace quorvane::cli {

QString AbsenceCounts::rows() const {
    QString text;
    if (onlyInCloud > 0)
        text += countRow(QStringLiteral("Yalnızca iCloud'da"), onlyInCloud) +
                QStringLiteral("  Yedeklemek için Fotoğraflar uygulamasının iCloud ayarlarında "
                               "özgün dosyaların bu Mac'e indirilmesini seçin; indikçe sıraya "
                               "alınırlar.\n");
    if (elsewhere > 0)
        text += countRow(QStringLiteral("Dışarıda, bulunamayan"), elsewhere) +
                QStringLiteral("  Diski takıp yerini bildirin: --originals "
                               "/Volumes/AD=/buradaki/yeri\n");
    return text;
}

QJsonObject AbsenceCounts::json() const {
    return {{QStringLiteral("onlyInCloud"), onlyInCloud}, {QStringLiteral("elsewhere"), elsewhere}};
}

} // namespace quorvane::cli
