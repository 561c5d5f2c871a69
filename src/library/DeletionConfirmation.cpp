#include "library/DeletionConfirmation.h"

namespace quorvane {

KeptText textOf(KeptReason reason) {
    switch (reason) {
    case KeptReason::notVerified:
        return {QStringLiteral("Bulutta doğrulanmadı"),
                QStringLiteral("Google kopyası henüz denetlenmedi")};
    case KeptReason::edited:
        return {QStringLiteral("Düzenlenmiş"), QStringLiteral("Yalnızca özgün sürüm yüklendi")};
    case KeptReason::partlySent:
        return {QStringLiteral("Yalnızca bir parçası yüklendi"),
                QStringLiteral("Canlı fotoğrafın filmi veya RAW eşi yüklenmedi")};
    case KeptReason::changed:
        return {QStringLiteral("Eşitlemeden sonra değişti"),
                QStringLiteral("Yeni hâli yüklenmeyi bekliyor")};
    case KeptReason::unproven:
        return {QStringLiteral("Hangi özgünden yüklendiği bilinmiyor"),
                QStringLiteral("Google kopyasıyla karşılaştırılamıyor")};
    case KeptReason::notHere:
        return {QStringLiteral("Özgünü bu bilgisayarda yok"),
                QStringLiteral("Dosya yalnızca iCloud'da duruyor")};
    case KeptReason::noTrash:
        return {QStringLiteral("Diskinde Çöp yok"),
                QStringLiteral("Geri alınamayacağı için taşınmaz")};
    }
    return {};
}

} // namespace quorvane
