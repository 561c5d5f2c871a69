#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/SyncReport.h"
#include "app/cli/TextTable.h"
#include "library/UndatedReview.h"
#include "metadata/LocalCalendar.h"
#include "metadata/NameCalendar.h"

#include <QDateTime>
#include <QJsonArray>

#include <algorithm>

namespace quorvane::cli {

namespace {

using Items = std::vector<UndatedItem>;

const QString acceptAll = QStringLiteral("accept-all");

QString isoText(Date date) {
    return utcText(date, u"yyyy-MM-dd'T'HH:mm:ss'Z'");
}

QString minuteText(Date date) {
    return QLocale(QLocale::Turkish, QLocale::Turkey)
        .toString(QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count()),
                  QStringLiteral("d MMMM yyyy HH:mm"));
}

QString pathOf(const UndatedItem& item) {
    return item.folder.isEmpty() ? item.name : item.folder + u'/' + item.name;
}

QJsonObject json(const UndatedItem& item) {
    QJsonArray evidence;
    for (const DateEvidence& one : item.evidence)
        evidence +=
            QJsonObject{{QStringLiteral("kind"), rawValue(one.kind)},
                        {QStringLiteral("from"), isoText(one.span.from)},
                        {QStringLiteral("to"), isoText(one.span.to)},
                        {QStringLiteral("date"), isoText(one.date())},
                        {QStringLiteral("witnesses"), QJsonArray::fromStringList(one.witnesses)}};
    return {{QStringLiteral("id"), item.record.assetLocalIdentifier},
            {QStringLiteral("name"), item.name},
            {QStringLiteral("folder"), item.folder},
            {QStringLiteral("reason"), item.record.lastError.value_or(QString())},
            {QStringLiteral("undatable"), item.isUndatable},
            {QStringLiteral("evidence"), evidence}};
}

QString text(const UndatedItem& item) {
    QString lines =
        QStringLiteral("%1  [%2]\n").arg(pathOf(item), item.record.assetLocalIdentifier);
    if (item.isUndatable)
        lines += QStringLiteral("    tarih yazılamayan biçim\n");
    else if (item.evidence.empty())
        lines += QStringLiteral("    ipucu bulunamadı\n");
    for (const DateEvidence& one : item.evidence)
        lines += QStringLiteral("    %1, %2\n").arg(one.spanText(), one.sourceText());
    return lines;
}

/// How many items each kind of evidence would give a date to, and how to agree.
QString summary(const Items& items) {
    std::map<EvidenceKind, int> strongest;
    int undatable = 0;
    for (const UndatedItem& item : items)
        if (!item.evidence.empty())
            ++strongest[item.evidence.front().kind];
        else
            undatable += item.isUndatable;
    QString text =
        QStringLiteral("%1 öğe tarihsiz bekliyor.\n").arg(countText(qint64(items.size())));
    for (const auto& [kind, count] : strongest)
        text += countRow(rawValue(kind), count);
    if (!strongest.empty())
        text += QStringLiteral("En güçlü ipucunu kabul etmek için: quorvane-cli undated "
                               "--accept ÖĞE | --accept-all TÜR\n");
    text += QStringLiteral("Tarihi siz vermek için: quorvane-cli undated --set TARİH ÖĞE\n");
    if (undatable > 0)
        text += undatableAdvice() + u'\n';
    return text;
}

void list(Console& console, const Items& items, bool asJson) {
    if (asJson) {
        for (const UndatedItem& item : items)
            printJson(console, json(item));
        return;
    }
    if (items.empty()) {
        console.result(QStringLiteral("Tarihsiz bekleyen öğe yok."));
        return;
    }
    QString all;
    for (const UndatedItem& item : items)
        all += text(item);
    console.result((all + summary(items)).chopped(1));
}

/// The one item of that identifier, path or name.
const UndatedItem& findItem(const Items& items, const QString& wanted) {
    const UndatedItem* found = nullptr;
    for (const UndatedItem& item : items) {
        if (item.record.assetLocalIdentifier == wanted || pathOf(item) == wanted)
            return item;
        if (item.name != wanted)
            continue;
        if (found != nullptr)
            throw Error(QStringLiteral("Bu adda birden çok öğe var, kimliğini verin: ") + wanted);
        found = &item;
    }
    if (found == nullptr)
        throw Error(QStringLiteral("Tarihsiz bekleyenler arasında böyle bir öğe yok: ") + wanted);
    return *found;
}

const DateEvidence& evidenceOf(const UndatedItem& item, const std::optional<QString>& kind) {
    const auto found = std::ranges::find_if(item.evidence, [&](const DateEvidence& one) {
        return !kind || rawValue(one.kind) == *kind;
    });
    if (found == item.evidence.end())
        throw Error(QStringLiteral("%1 için böyle bir ipucu yok.").arg(item.name));
    return *found;
}

/// A day alone means its noon. Throws `UsageError`.
Date typedDate(const QString& text, Date now) {
    auto date = parseTypedDate(text);
    if (!date)
        date = writtenDate(text, now);
    const auto first = localDate(1826, 1, 1, 0, 0, 0); // no photograph is older
    if (!date || *date < first || *date > now + std::chrono::days(1))
        throw UsageError(
            QStringLiteral("undated: anlaşılmayan veya olanaksız tarih: %1 (örnek: "
                           "2019-05-03, \"2019-05-03 14:30\", 2019-05-03T14:30:00+03:00)")
                .arg(text));
    return *date;
}

void choose(RecordLife& life, const UndatedItem& item, Date date, Console& console) {
    if (item.isUndatable)
        throw Error(QStringLiteral("%1: bu dosyaya tarih yazılamaz. ").arg(item.name) +
                    undatableAdvice());
    if (!life.dateChosen(item.record, date))
        throw Error(QStringLiteral("%1 artık tarihsiz bekleyenler arasında değil.").arg(item.name));
    console.result(QStringLiteral("%1: %2, sıraya eklendi.").arg(item.name, minuteText(date)));
}

int acceptKind(RecordLife& life, const Items& items, const QString& kind) {
    int accepted = 0;
    for (const UndatedItem& item : items)
        if (!item.evidence.empty() && rawValue(item.evidence.front().kind) == kind)
            accepted += life.dateChosen(item.record, item.evidence.front().date());
    return accepted;
}

int undated(Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    const auto typed = arguments.value(QStringLiteral("set"));
    if (typed.has_value() == arguments.operand().isEmpty())
        throw UsageError(QStringLiteral("undated: --set bir tarih ve bir öğe bekler"));
    invocation.console.setChannel(Console::Channel::silent);
    Program program(invocation);
    CoreServices& core = program.core;
    const auto path = chooseLibrary(arguments.value(QStringLiteral("library")), core);
    const AccountIdentity account = program.google.account();
    LibraryAt at(core, path);
    const auto place = core.states.find(at.identity(), account);
    SourceServices source(core, account, std::move(at), place, SourceServices::Use::look);
    requireReadable(*source.library, path);
    const Items items =
        reviewUndated({source.state.db, *source.library, source.metadata, source.path, core.clock},
                      invocation.stop);

    RecordLife& life = source.state.life;
    if (typed)
        choose(life, findItem(items, arguments.operand()), typedDate(*typed, core.clock.now()),
               core.console);
    else if (const auto wanted = arguments.value(QStringLiteral("accept"))) {
        const UndatedItem& item = findItem(items, *wanted);
        choose(life, item, evidenceOf(item, arguments.value(QStringLiteral("by"))).date(),
               core.console);
    } else if (const auto kind = arguments.value(acceptAll))
        core.console.result(QStringLiteral("%1 öğe sıraya eklendi.")
                                .arg(countText(acceptKind(life, items, *kind))));
    else
        list(core.console, items, arguments.has(QStringLiteral("json")));
    return done;
}

} // namespace

Command undatedCommand() {
    QStringList kinds;
    for (const auto kind :
         {EvidenceKind::partner, EvidenceKind::sameName, EvidenceKind::neighbours,
          EvidenceKind::album, EvidenceKind::text, EvidenceKind::folder, EvidenceKind::fileTime})
        kinds += rawValue(kind);
    const QString kind = QStringLiteral("TÜR");
    return {{QStringLiteral("undated"),
             QStringLiteral("tarihsiz bekleyen öğeleri ve tarih ipuçlarını gösterir"),
             {{QStringLiteral("accept"), QStringLiteral("ÖĞE"),
               QStringLiteral("öğenin en güçlü ipucunu kabul eder (ad, yol veya kimlik)")},
              {QStringLiteral("by"), kind,
               QStringLiteral("--accept ile: en güçlü ipucu yerine bu türden olanı"), kinds},
              {acceptAll, kind, QStringLiteral("en güçlü ipucu bu türden olan bütün öğeler için"),
               kinds},
              {QStringLiteral("set"), QStringLiteral("TARİH"),
               QStringLiteral("öğenin tarihini siz verirsiniz; saat ve dilim isteğe bağlıdır")},
              {QStringLiteral("library"), QStringLiteral("YOL"),
               QStringLiteral("Fotoğraflar arşivi veya resim klasörü")},
              {QStringLiteral("json"), {}, QStringLiteral("öğe başına bir JSON nesnesi yazar")}},
             QStringLiteral("[ÖĞE]")},
            undated};
}

} // namespace quorvane::cli
