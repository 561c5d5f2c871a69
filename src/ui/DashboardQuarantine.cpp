#include "ui/Dashboard.h"

#include <QLocale>

#include <array>
#include <map>

namespace quorvane {

namespace {

constexpr int firstShown = 2;
constexpr int shownMore = 20;

struct Choice {
    DateFallbackMode mode;
    const char16_t* title;
};

constexpr std::array choices{
    Choice{DateFallbackMode::fileSaveDate,
           u"Mac'e Kayıt Tarihini Kullan (Önerilen - Kronoloji Korunur)"},
    Choice{DateFallbackMode::today, u"Bugünün Tarihini Kullan"},
    Choice{DateFallbackMode::strictNone, u"Karantinada Bırak (Yükleme)"},
};

QString grouped(qint64 number) {
    return QLocale().toString(number);
}

QVariantMap row(const QString& title, const QString& text, const QString& symbol, int count,
                bool isUndated) {
    return {{QStringLiteral("title"), title},         {QStringLiteral("text"), text},
            {QStringLiteral("symbol"), symbol},       {QStringLiteral("count"), grouped(count)},
            {QStringLiteral("isUndated"), isUndated}, {QStringLiteral("listsItems"), false}};
}

QVariantMap itemRow(const UndatedItem& item) {
    const bool hasEvidence = !item.evidence.empty();
    const QString name = item.name;
    return {
        {QStringLiteral("identifier"), item.record.assetLocalIdentifier},
        {QStringLiteral("name"), name},
        {QStringLiteral("symbol"), item.record.mediaType == MediaType::video
                                       ? QStringLiteral("film")
                                       : QStringLiteral("photo")},
        {QStringLiteral("evidence"), hasEvidence ? item.evidence.front().spanText() +
                                                       QStringLiteral(" · ") +
                                                       item.evidence.front().sourceText()
                                                 : QStringLiteral("İpucu bulunamadı")},
        {QStringLiteral("acceptName"),
         hasEvidence
             ? QStringLiteral("%1 tarihini kullan: %2").arg(item.evidence.front().spanText(), name)
             : QString()}};
}

/// How many items each kind of evidence gives a date to, where it is more than one.
QVariantList kindRows(const std::vector<UndatedItem>& items) {
    std::map<EvidenceKind, int> counts;
    for (const UndatedItem& item : items)
        if (!item.evidence.empty())
            ++counts[item.evidence.front().kind];
    QVariantList rows;
    for (const auto& [kind, count] : counts)
        if (count > 1)
            rows.append(QVariantMap{
                {QStringLiteral("kind"), rawValue(kind)},
                {QStringLiteral("title"),
                 QStringLiteral("Hepsini kullan: %1 (%2)").arg(kindText(kind), grouped(count))}});
    return rows;
}

} // namespace

void Dashboard::resetReview() {
    chosenFallback_.clear();
    sendsUndatable_ = false;
    shownUndated_ = firstShown;
}

QString Dashboard::dateFallback() const {
    return chosenFallback_.isEmpty() ? model_.dateFallbackMode() : chosenFallback_;
}

int Dashboard::retryCount() const {
    const bool leavesUndated = dateFallback() == rawValue(DateFallbackMode::strictNone);
    return model_.failedCount() +
           (leavesUndated ? 0 : model_.dateUnresolvedCount() - model_.undatableCount()) +
           (sendsUndatable_ ? model_.undatableCount() : 0);
}

QuarantineView Dashboard::quarantine() const {
    QuarantineView view;
    for (const FailedCategorySummary& summary : model_.failedCategorySummaries())
        view.rows.append(row(summary.categoryName, summary.explanation, summary.systemImage,
                             summary.count, false));
    const int undatable = model_.undatableCount();
    if (const int undated = model_.dateUnresolvedCount() - undatable; undated > 0) {
        QVariantMap held = row(QStringLiteral("Tarih Eksik"),
                               QStringLiteral("Çekim tarihi tespit edilemeyen öğeler"),
                               QStringLiteral("calendar.badge.exclamationmark"), undated, true);
        held[QStringLiteral("listsItems")] = !model_.undatedItems().empty();
        view.rows.append(held);
        for (const Choice& choice : choices)
            view.choices.append(
                QVariantMap{{QStringLiteral("value"), rawValue(choice.mode)},
                            {QStringLiteral("title"), QString::fromUtf16(choice.title)}});
        const auto& items = model_.undatedItems();
        const auto shown = std::min(items.size(), static_cast<std::size_t>(shownUndated_));
        for (std::size_t i = 0; i < shown; ++i)
            view.items.append(itemRow(items[i]));
        if (items.size() > shown)
            view.moreTitle = QStringLiteral("%1 öğe daha göster")
                                 .arg(grouped(static_cast<qint64>(items.size() - shown)));
        view.kinds = kindRows(items);
    }
    if (undatable > 0) {
        view.rows.append(row(QStringLiteral("Tarih Yazılamayan Biçimler"),
                             QStringLiteral("Dosya biçiminde çekim tarihine yer yok"),
                             QStringLiteral("calendar.badge.xmark"), undatable, true));
        view.undatableTitle = QStringLiteral("Tarih yazılamayan biçimleri olduğu gibi yükle (%1)")
                                  .arg(grouped(undatable));
    }
    view.sendsUndatable = sendsUndatable_;
    view.chosen = dateFallback();
    view.retryTitle = QStringLiteral("Yeniden Sıraya Ekle (%1)").arg(grouped(retryCount()));
    view.canRetry = retryCount() > 0;
    return view;
}

void Dashboard::chooseDateFallback(const QString& value) {
    chosenFallback_ = value;
    Q_EMIT quarantineChanged();
}

void Dashboard::chooseUndatable(bool sends) {
    sendsUndatable_ = sends;
    Q_EMIT quarantineChanged();
}

void Dashboard::showMoreUndated() {
    shownUndated_ += shownMore;
    Q_EMIT quarantineChanged();
}

void Dashboard::retryQuarantined() {
    model_.retryQuarantinedItems(dateFallback(), sendsUndatable_);
    model_.setShowQuarantineSheet(false);
}

} // namespace quorvane
