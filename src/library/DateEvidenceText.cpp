#include "library/DateEvidence.h"

#include "metadata/LocalCalendar.h"

#include <QDateTime>
#include <QLocale>

#include <array>

namespace quorvane {

namespace {

struct Name {
    EvidenceKind kind;
    const char16_t* word;
    const char16_t* text;
};

constexpr std::array names{
    Name{EvidenceKind::partner, u"partner", u"Live Photo eşi"},
    Name{EvidenceKind::sameName, u"same-name", u"aynı adlı dosya"},
    Name{EvidenceKind::neighbours, u"neighbours", u"komşu dosyalar"},
    Name{EvidenceKind::album, u"album", u"albümdeki öteki öğeler"},
    Name{EvidenceKind::text, u"text", u"dosyadaki metin"},
    Name{EvidenceKind::folder, u"folder", u"klasör adı"},
    Name{EvidenceKind::fileTime, u"file-time", u"dosyanın saati"},
};

QDate localDay(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count()).date();
}

} // namespace

QString rawValue(EvidenceKind kind) {
    return QString::fromUtf16(names.at(static_cast<std::size_t>(kind)).word);
}

QString kindText(EvidenceKind kind) {
    return QString::fromUtf16(names.at(static_cast<std::size_t>(kind)).text);
}

Date DateEvidence::date() const {
    const Date middle = span.from + (span.to - span.from) / 2;
    if (span.to - span.from < std::chrono::days(1))
        return middle;
    const QDate day = localDay(middle);
    return localDate(day.year(), day.month(), day.day(), 12, 0, 0).value_or(middle);
}

QString DateEvidence::spanText() const {
    const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    const QDate first = localDay(span.from);
    const QDate last = localDay(span.to);
    const auto text = [&](QDate date, const QString& format) {
        return turkish.toString(date, format);
    };
    const QString whole = QStringLiteral("d MMMM yyyy");
    if (first == last)
        return text(first, whole);
    if (first.year() != last.year())
        return text(first, whole) + QStringLiteral(" – ") + text(last, whole);
    const bool isWholeMonth = first.day() == 1 && last.day() == last.daysInMonth();
    if (first.month() == last.month())
        return isWholeMonth ? text(first, QStringLiteral("MMMM yyyy"))
                            : QString::number(first.day()) + u'–' + text(last, whole);
    if (isWholeMonth && first.month() == 1 && last.month() == 12)
        return QString::number(first.year());
    return text(first, QStringLiteral("d MMMM")) + QStringLiteral(" – ") + text(last, whole);
}

QString DateEvidence::sourceText() const {
    const QString text = kindText(kind);
    return witnesses.isEmpty()
               ? text
               : QStringLiteral("%1 (%2)").arg(text, witnesses.join(QStringLiteral(", ")));
}

} // namespace quorvane
