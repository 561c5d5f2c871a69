#include "emulator/CommandLine.h"

#include "foundation/CommandLine.h"
#include "foundation/File.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr std::int64_t largest = std::numeric_limits<int>::max();
constexpr std::int64_t largestBodyFile = 256 << 20;

std::int64_t number(const QString& text, std::int64_t least, std::int64_t most) {
    bool isNumber = false;
    const qint64 value = text.toLongLong(&isNumber);
    if (!isNumber || value < least || value > most)
        throw cli::UsageError(u"Geçersiz sayı: "_s + text);
    return value;
}

/// KIND:N:ACTION, N followed by "+" for every request from the N-th on.
Disturbance faultFrom(const QString& text) {
    const QString action = text.section(u':', 2);
    const std::optional<RequestKind> kind = requestKindFrom(text.section(u':', 0, 0));
    QString nth = text.section(u':', 1, 1);
    if (!kind || nth.isEmpty() || action.isEmpty())
        throw cli::UsageError(u"Geçersiz hata tanımı: "_s + text);
    Disturbance fault;
    fault.kind = *kind;
    if (nth.endsWith(u'+')) {
        fault.times = 0;
        nth.chop(1);
    }
    fault.nth = static_cast<int>(number(nth, 1, largest));

    const QString name = action.section(u'=', 0, 0);
    const QString value = action.section(u'=', 1);
    if (name == u"stall"_s)
        fault.stall = true;
    else if (name == u"drop"_s)
        fault.dropRequestAfter = number(value, 0, std::numeric_limits<qint64>::max());
    else if (name == u"cut"_s)
        fault.dropAnswerAfter = number(value, 0, std::numeric_limits<qint64>::max());
    else if (name == u"delay"_s)
        fault.delay = std::chrono::milliseconds(number(value, 0, largest));
    else
        fault.status = static_cast<int>(number(name, 200, 599));
    if (fault.status && !value.isEmpty())
        fault.body = readWholeFile(pathFrom(value), largestBodyFile);
    return fault;
}

void setLatency(CommandLine& line, const QString& text) {
    const std::optional<RequestKind> kind = requestKindFrom(text.section(u':', 0, 0));
    if (!kind)
        throw cli::UsageError(u"Geçersiz tür: "_s + text);
    line.options.behaviour.latencyOf[*kind] =
        std::chrono::milliseconds(number(text.section(u':', 1), 0, largest));
}

CommandLine::Outages outagesFrom(const QString& text) {
    return {.up = std::chrono::seconds(number(text.section(u':', 0, 0), 1, largest)),
            .down = std::chrono::seconds(number(text.section(u':', 1), 1, largest))};
}

CommandLine::Seed seedFrom(const QString& text) {
    const qsizetype colon = text.lastIndexOf(u':');
    if (colon < 1)
        throw cli::UsageError(u"Geçersiz albüm tanımı: "_s + text);
    return {.title = text.first(colon), .count = number(text.sliced(colon + 1), 0, largest)};
}

Person personFrom(const QString& text) {
    Person person{.id = text.section(u':', 0, 0), .email = text.section(u':', 1)};
    if (person.id.isEmpty() || person.email.isEmpty())
        throw cli::UsageError(u"Geçersiz hesap tanımı: "_s + text);
    return person;
}

struct Option {
    cli::OptionSpec spec;
    void (*apply)(CommandLine& line, const QString& value);
};

const std::vector<Option>& allOptions() {
    using L = CommandLine;
    static const std::vector<Option> options{
        {{u"port"_s, u"N"_s, u"dinlenecek kapı (0: boş bir kapı)"_s},
         [](L& l, const QString& v) { l.options.port = static_cast<int>(number(v, 0, 65535)); }},
        {{u"port-file"_s, u"DOSYA"_s, u"kapı numarasının yazılacağı dosya"_s},
         [](L& l, const QString& v) { l.portFile = pathFrom(v); }},
        {{u"store"_s, u"KLASÖR"_s, u"yüklenen dosyaların saklanacağı klasör"_s},
         [](L& l, const QString& v) { l.options.storeFolder = pathFrom(v); }},
        {{u"state"_s, u"DOSYA"_s, u"hesabın durumunun saklanacağı dosya"_s},
         [](L& l, const QString& v) { l.options.stateFile = pathFrom(v); }},
        {{u"latency"_s, u"MS"_s, u"her yanıttan önceki gecikme (milisaniye)"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.latency = std::chrono::milliseconds(number(v, 0, largest));
         }},
        {{u"latency-of"_s, u"TÜR:MS"_s, u"bu türün gecikmesi (birden çok kez verilebilir)"_s},
         [](L& l, const QString& v) { setLatency(l, v); }},
        {{u"failing"_s, u"YÜZDE"_s, u"kitaplık isteklerinin bu kadarı 429, 500 ya da 503 alır"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.failingPercent = static_cast<int>(number(v, 0, 100));
         }},
        {{u"outages"_s, u"AÇIK:KAPALI"_s,
          u"hizmet rastgele, ortalama bu kadar saniye açık ve kapalıdır"_s},
         [](L& l, const QString& v) { l.outages = outagesFrom(v); }},
        {{u"date-shift"_s, u"SANİYE"_s, u"saklanan dosyaların tarihi bu kadar yanlış okunur"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.dateShift = std::chrono::seconds(number(v, -largest, largest));
         }},
        {{u"storage"_s, u"BAYT"_s, u"hesapta öğelere ayrılan yer"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.storageBytes = number(v, 0, std::numeric_limits<qint64>::max());
         }},
        {{u"daily-requests"_s, u"N"_s, u"bir günde (Pasifik saati) kabul edilen kitaplık isteği"_s},
         [](L& l, const QString& v) { l.options.behaviour.dailyRequests = number(v, 1, largest); }},
        {{u"upload-token-lifetime"_s, u"N"_s, u"yükleme belirtecinin ömrü (saniye)"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.uploadTokenLifetime = std::chrono::seconds(number(v, 0, largest));
         }},
        {{u"bandwidth"_s, u"BAYT"_s, u"yükleme hızı sınırı (bayt/saniye)"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.uploadBytesPerSecond =
                 number(v, 1, std::numeric_limits<qint64>::max());
         }},
        {{u"token-lifetime"_s, u"SANİYE"_s, u"erişim belirtecinin ömrü (eksi olabilir)"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.tokenLifetime = std::chrono::seconds(number(v, -largest, largest));
         }},
        {{u"token-shortfall"_s, u"SANİYE"_s,
          u"erişim belirteci söylenenden bu kadar önce geçersiz olur"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.tokenShortfall = std::chrono::seconds(number(v, 0, largest));
         }},
        {{u"session-lifetime"_s, u"SANİYE"_s,
          u"oturumun ömrü, deneme durumundaki istemcide olduğu "
          "gibi"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.sessionLifetime = std::chrono::seconds(number(v, 1, largest));
         }},
        {{u"clock-ahead"_s, u"SANİYE"_s, u"hizmetin saati bu kadar ileridir (eksi olabilir)"_s},
         [](L& l, const QString& v) {
             l.options.behaviour.clockAhead = std::chrono::seconds(number(v, -largest, largest));
         }},
        {{u"album-capacity"_s, u"N"_s, u"bir albümün alabileceği öğe sayısı"_s},
         [](L& l, const QString& v) { l.options.behaviour.albumCapacity = number(v, 0, largest); }},
        {{u"forbid-listing"_s, {}, u"okuma izni yoktur: listeler ve batchGet 403 ile yanıtlanır"_s},
         [](L& l, const QString&) { l.options.behaviour.listingForbidden = true; }},
        {{u"user"_s, u"NO:E-POSTA"_s, u"oturum açacak hesap"_s},
         [](L& l, const QString& v) { l.options.behaviour.person = personFrom(v); }},
        {{u"refuse-duplicates"_s, {}, u"arşivde olan dosyalar 6 koduyla geri çevrilir"_s},
         [](L& l, const QString&) { l.options.behaviour.duplicatesRefused = true; }},
        {{u"client-secret"_s, u"GİZLİ"_s, u"istemci masaüstü türündendir ve bu gizlisi vardır"_s},
         [](L& l, const QString& v) { l.options.behaviour.clientSecret = v; }},
        {{u"deny-consent"_s, {}, u"kullanıcı girişe izin vermez"_s},
         [](L& l, const QString&) { l.options.behaviour.consentDenied = true; }},
        {{u"decline"_s, u"KAPSAM"_s, u"kullanıcının işaretlemediği izinler (boşlukla ayrılır)"_s},
         [](L& l, const QString& v) { l.options.behaviour.declinedScopes = v; }},
        {{u"fault"_s, u"TÜR:N:EYLEM"_s, u"N. istekte hata (birden çok kez verilebilir)"_s},
         [](L& l, const QString& v) { l.faults.push_back(faultFrom(v)); }},
        {{u"seed-album"_s, u"BAŞLIK:SAYI"_s,
          u"baştan var olan albüm (birden çok kez verilebilir)"_s},
         [](L& l, const QString& v) { l.seeds.push_back(seedFrom(v)); }},
        {{u"report"_s, u"DOSYA"_s, u"kapanırken yazılacak JSON raporu"_s},
         [](L& l, const QString& v) { l.reportFile = pathFrom(v); }},
    };
    return options;
}

std::vector<cli::OptionSpec> allSpecs() {
    std::vector<cli::OptionSpec> specs;
    for (const Option& option : allOptions())
        specs.push_back(option.spec);
    return specs;
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments) {
    CommandLine line;
    line.wantsHelp = arguments.contains(u"--help"_s);
    if (line.wantsHelp)
        return line;
    const cli::CommandSpec grammar{
        .name = u"quorvane-emulator"_s, .summary = {}, .options = allSpecs()};
    const cli::Arguments given = cli::parse(grammar, arguments);
    for (const auto& [name, value] : given.given())
        std::ranges::find(allOptions(), name, [](const Option& option) {
            return option.spec.name;
        })->apply(line, value);
    return line;
}

QString usage() {
    QString text = u"Kullanım: quorvane-emulator [SEÇENEK]...\n"
                   "Bu bilgisayarda çalışan bir Google Fotoğraflar hizmeti. Adresi standart "
                   "çıktının ilk satırındadır;\ndurumu GET /_quorvane/report ile okunur.\n\n"_s +
                   cli::optionTable(allSpecs());
    QStringList kinds;
    for (const RequestKind kind : allRequestKinds)
        kinds.append(nameOf(kind));
    return text + u"\nTÜR: "_s + kinds.join(u", "_s) +
           u"\nN: isteğin sırası; N+ o istekten sonrakilerin hepsi\n"
           "EYLEM: DURUM (ör. 503) | DURUM=DOSYA (yanıtın gövdesi) | drop=BAYT (istek gövdesinin "
           "ortasında kapat) |\n       cut=BAYT (yanıtın ortasında kapat) | stall (hiç yanıtlama) "
           "| delay=MS\n"_s;
}

} // namespace quorvane::emulator
