#include "app/Diagnosis.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

using State = Finding::State;

constexpr std::chrono::seconds largestClockError{60};
constexpr std::chrono::hours soon{24};
/// Files are staged one after the other; two are under way at a time.
constexpr std::int64_t stagedAtATime = 2;

const QString signInAgain = u"Yeniden giriş yapın"_s;

Finding fine(const QString& id, const QString& title, const QString& what) {
    return {id, title, State::fine, what, {}};
}
Finding faulty(const QString& id, const QString& title, const QString& what, const QString& advice,
               Finding::Remedy remedy = Finding::Remedy::none) {
    return {id, title, State::faulty, what, advice, remedy};
}
Finding warning(const QString& id, const QString& title, const QString& what, const QString& advice,
                Finding::Remedy remedy = Finding::Remedy::none) {
    return {id, title, State::warning, what, advice, remedy};
}
Finding unknown(const QString& id, const QString& title, const QString& what,
                const QString& advice = {}) {
    return {id, title, State::unknown, what, advice};
}

QString sizeText(std::int64_t bytes) {
    return QLocale(QLocale::Turkish)
        .formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString countText(int count) {
    return QLocale(QLocale::Turkish).toString(count);
}

QString durationText(std::chrono::seconds duration) {
    const auto hours = std::chrono::duration_cast<std::chrono::hours>(duration).count();
    return hours >= 48  ? u"%1 gün"_s.arg(hours / 24)
           : hours >= 1 ? u"%1 saat"_s.arg(hours)
                        : u"%1 dakika"_s.arg(std::max<qint64>(duration.count() / 60, 0));
}

/// Google took the session.
bool isAlive(const GoogleFacts& google) {
    return google.tokenStatus == 200;
}

} // namespace

Finding clientFinding(const ClientFacts& client) {
    const QString id = u"client"_s, title = u"İstemci"_s;
    static const QRegularExpression form(
        u"\\A[0-9]+-[a-z0-9]+\\.apps\\.googleusercontent\\.com\\z"_s);
    if (client.isLocalService)
        return fine(id, title, u"bu bilgisayardaki hizmet her istemciyi kabul eder"_s);
    const QString advice = u"docs/GOOGLE.md'deki adımlarla bir istemci oluşturun ve kimliğini "
                           "GOOGLE_CLIENT_ID olarak .env dosyasına yazın"_s;
    if (!client.isConfigured)
        return faulty(id, title, u"tanımlanmamış, yerleşik kimlik yalnızca bir yer tutucudur"_s,
                      advice);
    if (!form.match(client.id).hasMatch())
        return faulty(id, title, u"kimlik Google'ın biçiminde değil: "_s + client.id, advice);
    return fine(id, title, client.id);
}

Finding clientKindFinding(const ClientFacts& client) {
    const QString id = u"clientKind"_s, title = u"İstemci türü"_s;
    if (!client.redirect.isEmpty() && client.redirect != u"loopback")
        return faulty(id, title, u"GOOGLE_REDIRECT anlaşılmadı: "_s + client.redirect,
                      u"GOOGLE_REDIRECT yalnızca loopback olabilir; satırı silin ya da düzeltin"_s);
    if (client.hasSecret)
        return fine(id, title, u"masaüstü (giriş bu bilgisayarın bir adresine döner)"_s);
    if (!client.redirect.isEmpty() && !client.isLocalService)
        return faulty(id, title, u"masaüstü, ama istemci gizlisi yok"_s,
                      u"İstemcinin gizlisini GOOGLE_CLIENT_SECRET olarak .env dosyasına yazın"_s);
    if (!client.redirect.isEmpty())
        return fine(id, title, u"masaüstü, gizlisiz"_s);
    return fine(id, title, u"iOS (giriş ters çevrilmiş bir adres düzenine döner)"_s);
}

Finding sessionFinding(const GoogleFacts& google) {
    const QString id = u"session"_s, title = u"Oturum"_s;
    if (!google.hasSession)
        return faulty(id, title, u"açılmamış"_s, u"Giriş yapın"_s, Finding::Remedy::signIn);
    if (!google.unreachable.isEmpty())
        return faulty(id, title, u"Google'a ulaşılamadı: "_s + google.unreachable,
                      u"İnternet bağlantısını denetleyin"_s);
    if (isAlive(google))
        return fine(id, title, u"açık, Google kabul ediyor"_s);
    if (google.tokenError == u"invalid_grant")
        return faulty(id, title, u"Google tarafından sonlandırılmış"_s,
                      signInAgain + u" (istemci yayımlanmamışsa oturum her yedi günde biter)"_s,
                      Finding::Remedy::signIn);
    if (google.tokenError == u"invalid_client" || google.tokenError == u"unauthorized_client")
        return faulty(id, title, u"Google istemciyi tanımadı ("_s + google.tokenError + u')',
                      u"GOOGLE_CLIENT_ID ile GOOGLE_CLIENT_SECRET'ı denetleyin, sonra yeniden "
                      "giriş yapın"_s,
                      Finding::Remedy::signIn);
    return faulty(
        id, title,
        u"Google yenilemedi: HTTP %1 %2"_s.arg(google.tokenStatus).arg(google.tokenError).trimmed(),
        google.tokenStatus >= 500 ? u"Biraz sonra yeniden deneyin"_s : signInAgain,
        google.tokenStatus >= 500 ? Finding::Remedy::none : Finding::Remedy::signIn);
}

Finding sessionEndFinding(const GoogleFacts& google) {
    const QString id = u"sessionEnd"_s, title = u"Oturumun bitişi"_s;
    if (!isAlive(google))
        return unknown(id, title, u"açık bir oturum gerekir"_s);
    if (!google.sessionLeft)
        return fine(id, title, u"Google bir bitiş bildirmiyor"_s);
    const QString left = u"deneme durumundaki istemcinin oturumu %1 sonra biter"_s.arg(
        durationText(*google.sessionLeft));
    if (*google.sessionLeft > soon)
        return fine(id, title, left);
    return warning(id, title, left,
                   u"Google Auth Platform → Audience'ta \"Publish app\" ile yayımlayın, sonra "
                   "yeniden giriş yapın"_s,
                   Finding::Remedy::signIn);
}

Finding permissionsFinding(const GoogleFacts& google) {
    const QString id = u"permissions"_s, title = u"İzinler"_s;
    if (!isAlive(google))
        return unknown(id, title, u"açık bir oturum gerekir"_s);
    if (!google.maySend)
        return faulty(id, title, u"yükleme izni (photoslibrary.appendonly) yok"_s,
                      signInAgain + u" ve izin sayfasında kutusunu işaretleyin"_s,
                      Finding::Remedy::signIn);
    if (!google.mayList)
        return warning(id, title,
                       u"yükleme var, albümleri görme izni "
                       "(photoslibrary.readonly.appcreateddata) yok"_s,
                       signInAgain + u" ve izin sayfasında kutusunu işaretleyin; yükleme onsuz da "
                                     "çalışır"_s,
                       Finding::Remedy::signIn);
    return fine(id, title, u"yükleme ve albümleri görme"_s);
}

Finding apiFinding(const GoogleFacts& google) {
    const QString id = u"api"_s, title = u"Photos Library API"_s;
    if (google.isApiDisabled)
        return faulty(id, title, u"istemcinin projesinde etkin değil"_s,
                      u"Google Cloud Console → APIs & Services → Library'de Photos Library "
                      "API'yi etkinleştirin, birkaç dakika bekleyin"_s);
    // Refused for its scopes, or for today: the project has it.
    if (google.listStatus == 200 || google.listStatus == 403 || google.listStatus == 429)
        return fine(id, title, u"etkin"_s);
    if (google.listStatus == 0)
        return unknown(id, title, u"açık bir oturum gerekir"_s);
    return faulty(id, title, u"beklenmeyen yanıt: HTTP %1"_s.arg(google.listStatus),
                  u"Biraz sonra yeniden deneyin"_s);
}

Finding quotaFinding(const GoogleFacts& google, const QuotaFacts& today) {
    const QString id = u"quota"_s, title = u"Günlük kota"_s;
    const QString renewal = durationText(today.untilNewDay) + u" sonra yenilenir"_s;
    if (google.isRateLimited)
        return faulty(id, title, u"Google şu anda daha az istek istiyor"_s,
                      u"Birkaç dakika sonra yeniden deneyin"_s);
    if (google.isQuotaSpent || today.left == 0)
        return faulty(id, title, u"projenin bugünkü istek hakkı bitti, "_s + renewal,
                      u"Bekleyin: hak her gün Pasifik saatiyle gece yarısı yenilenir; Google'ın "
                      "yükselttiği bir kota GOOGLE_DAILY_REQUESTS ile söylenir"_s);
    return fine(id, title,
                u"bu bilgisayardan bugün %1 istek yapıldı, %2 istek kaldı; %3"_s.arg(
                    countText(today.used), countText(today.left), renewal));
}

Finding storageFinding(const std::optional<QString>& refusal) {
    const QString id = u"storage"_s, title = u"Depolama alanı"_s;
    if (refusal)
        return faulty(id, title, u"Google yer yokluğundan geri çevirdi: "_s + *refusal,
                      u"Hesapta yer açın ya da alanı büyütün: https://one.google.com/storage"_s);
    return unknown(id, title, u"Google bu izinlerle bildirmez"_s,
                   u"Kalan yer: https://one.google.com/storage"_s);
}

Finding keyringFinding(const KeyringFacts& keyring) {
    const QString id = u"keyring"_s, title = u"Anahtarlık"_s;
    if (!keyring.hasTokens)
        return unknown(id, title, u"saklanan bir oturum yok"_s);
    if (keyring.isKept)
        return fine(id, title, u"oturum anahtarlıkta"_s);
    return warning(id, title, u"yok ya da kilitli: oturum yalnızca ayar dosyasında (0600)"_s,
                   u"Bir anahtarlık hizmeti (gnome-keyring, KWallet) kurup açın, sonra yeniden "
                   "giriş yapın; dosya da iş görür"_s);
}

Finding clockFinding(const GoogleFacts& google) {
    const QString id = u"clock"_s, title = u"Saat"_s;
    if (!google.clockAhead)
        return unknown(id, title, u"Google'ın saati öğrenilemedi"_s);
    const auto off = std::chrono::abs(*google.clockAhead);
    if (off <= largestClockError)
        return fine(id, title, u"Google'ınkiyle aynı"_s);
    return warning(id, title,
                   u"Google'ınkinden %1 %2"_s.arg(
                       durationText(off), google.clockAhead->count() > 0 ? u"ileri"_s : u"geri"_s),
                   u"Bilgisayarın saatini ağdan ayarlayın (timedatectl set-ntp true)"_s);
}

Finding libraryFinding(const QString& path, const std::optional<QString>& failure) {
    const QString id = u"library"_s, title = u"Arşiv"_s;
    if (!failure)
        return fine(id, title, path);
    return faulty(id, title, *failure,
                  u"Arşivin diskini bağlayın, okuma iznini verin ya da başka bir arşiv seçin"_s,
                  Finding::Remedy::chooseLibrary);
}

Finding stagingFinding(const std::optional<StagingFacts>& staging) {
    const QString id = u"staging"_s, title = u"Hazırlama alanı"_s;
    if (!staging)
        return unknown(id, title, u"okunabilir bir arşiv gerekir"_s);
    const QString what = u"%1 boş, bekleyenler %2, en büyüğü %3"_s.arg(
        sizeText(staging->freeBytes), sizeText(staging->pendingBytes),
        sizeText(staging->largestBytes));
    const std::int64_t needed =
        std::min(staging->pendingBytes, stagedAtATime * staging->largestBytes);
    if (staging->freeBytes > needed)
        return fine(id, title, what);
    return faulty(id, title, what,
                  u"Ev klasörünün diskinde en az %1 yer açın"_s.arg(sizeText(needed)));
}

Finding lockFinding(const std::optional<QString>& holder) {
    const QString id = u"runLock"_s, title = u"Çalışma kilidi"_s;
    if (!holder)
        return fine(id, title, u"serbest"_s);
    return warning(id, title, u"başka bir eşitleme çalışıyor: "_s + *holder,
                   u"Bitmesini bekleyin ya da o programı kapatın"_s);
}

bool areFine(const std::vector<Finding>& findings) {
    return std::ranges::none_of(findings, [](const Finding& finding) {
        return finding.state == State::faulty || finding.state == State::warning;
    });
}

} // namespace quorvane
