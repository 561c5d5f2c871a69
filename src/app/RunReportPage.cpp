#include "app/RunReport.h"

#include "metadata/MetadataTypes.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>
#include <map>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

const QLocale turkish(QLocale::Turkish, QLocale::Turkey);

/// Readable in any browser, on paper, and where nothing but text is shown.
const QString style = uR"(
:root { color-scheme: light dark; --ink: #1d1d1f; --quiet: #6e6e73; --line: #d2d2d7; --back: #fff;
        --pictures: #2f6fde; --movies: #8e5bd0; --bad: #c9342b; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #f5f5f7; --quiet: #a1a1a6; --line: #424245; --back: #1d1d1f; } }
body { font: 15px/1.5 system-ui, sans-serif; color: var(--ink); background: var(--back);
       max-width: 52rem; margin: 2rem auto; padding: 0 1rem; }
h1 { font-size: 1.6rem; margin-bottom: 0; } h2 { font-size: 1.1rem; margin-top: 2rem; }
p.about, .note { color: var(--quiet); }
table { border-collapse: collapse; width: 100%; } td { padding: .2rem .6rem .2rem 0;
       border-bottom: 1px solid var(--line); vertical-align: top; overflow-wrap: anywhere; }
td.count { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.bar { display: grid; grid-template-columns: 13rem 1fr 5rem; gap: .6rem; align-items: center; }
.bar i { display: inline-block; height: .8rem; vertical-align: middle; }
.bar b { font-weight: normal; text-align: right; font-variant-numeric: tabular-nums; }
summary.bar { cursor: pointer; list-style: none; } summary.bar span:first-child::before {
       content: "▸ "; } details[open] summary.bar span:first-child::before { content: "▾ "; }
details div span:first-child { padding-left: 1.2rem; }
.pictures { background: var(--pictures); } .movies { background: var(--movies); }
.bad { color: var(--bad); }
)"_s;

/// What is at the destination, of one month.
struct Month {
    int pictures = 0;
    int movies = 0;
};

QString counted(int count) {
    return turkish.toString(count);
}

QString row(const QString& label, const QString& value) {
    return u"<tr><td>%1</td><td class=\"count\">%2</td></tr>\n"_s.arg(label.toHtmlEscaped(),
                                                                      value.toHtmlEscaped());
}

QString section(const QString& title, const QString& content) {
    return content.isEmpty()
               ? QString()
               : u"<h2>%1</h2>\n<table>\n%2</table>\n"_s.arg(title.toHtmlEscaped(), content);
}

/// Two parts of a bar, in hundredths of the longest one; the content of an element `bar`.
QString bar(const QString& label, const Month& count, int longest) {
    const auto part = [longest](const QString& kind, int number) {
        return number == 0 ? QString()
                           : u"<i class=\"%1\" style=\"width:%2%\"></i>"_s.arg(kind).arg(
                                 100.0 * number / longest, 0, 'f', 2);
    };
    return u"<span>%1</span><span>%2%3</span><b>%4</b>"_s.arg(
        label.toHtmlEscaped(), part(u"pictures"_s, count.pictures), part(u"movies"_s, count.movies),
        counted(count.pictures + count.movies));
}

QString barRow(const QString& label, const Month& count, int longest) {
    return u"<div class=\"bar\">%1</div>\n"_s.arg(bar(label, count, longest));
}

int sumOf(const Month& month) {
    return month.pictures + month.movies;
}

/// A bar for each year, and behind it one for each month.
QString years(const std::vector<DatedItems>& dated) {
    std::map<QString, Month> months;
    for (const DatedItems& items : dated) {
        Month& month = months[items.month];
        (items.areMovies ? month.movies : month.pictures) += items.count;
    }
    std::map<QString, Month> sums;
    int longestYear = 1;
    int longestMonth = 1;
    for (const auto& [name, month] : months) {
        Month& year = sums[name.left(4)];
        year.pictures += month.pictures;
        year.movies += month.movies;
        longestYear = std::max(longestYear, sumOf(year));
        longestMonth = std::max(longestMonth, sumOf(month));
    }
    QString text;
    for (const auto& [year, sum] : sums) {
        text +=
            u"<details><summary class=\"bar\">%1</summary>\n"_s.arg(bar(year, sum, longestYear));
        for (auto month = months.lower_bound(year);
             month != months.end() && month->first.startsWith(year); ++month)
            text += barRow(turkish.standaloneMonthName(month->first.mid(5).toInt()), month->second,
                           longestMonth);
        text += u"</details>\n"_s;
    }
    return text.isEmpty() ? text
                          : u"<h2>Yedekteki öğeler, çekildikleri aya göre</h2>\n"
                            "<p class=\"note\"><span class=\"pictures\">&emsp;</span> fotoğraf "
                            "<span class=\"movies\">&emsp;</span> video. Aylar için bir yıla "
                            "tıklayın.</p>\n"_s +
                                text;
}

QString sources(const std::vector<DatedItems>& dated) {
    std::map<QString, int> counts;
    for (const DatedItems& items : dated)
        counts[items.source] += items.count;
    int longest = 1;
    for (const auto& [name, count] : counts)
        longest = std::max(longest, count);
    QString text;
    for (const auto& [name, count] : counts)
        text += barRow(sourceText(dateSourceFrom(name).value_or(DateSource::embedded)),
                       {.pictures = count}, longest);
    return text.isEmpty() ? text : u"<h2>Tarihlerin kaynağı</h2>\n"_s + text;
}

QString items(const QString& title, const QString& advice, const std::vector<RunReport::Item>& list,
              int all) {
    if (list.empty())
        return {};
    QString text = u"<h2>%1: %2</h2>\n<p class=\"note\">%3</p>\n<table>\n"_s.arg(
        title.toHtmlEscaped(), counted(all), advice.toHtmlEscaped());
    for (const RunReport::Item& item : list)
        text += u"<tr><td>%1</td><td>%2</td></tr>\n"_s.arg(item.name.toHtmlEscaped(),
                                                           item.reason.toHtmlEscaped());
    if (all > std::ssize(list))
        text += row(u"… ve ötekiler"_s, counted(all - static_cast<int>(list.size())));
    return text + u"</table>\n"_s;
}

QString leftOutItems(const std::vector<DeletionSummary::LeftOut>& list) {
    std::vector<RunReport::Item> kept;
    kept.reserve(list.size());
    for (const DeletionSummary::LeftOut& item : list)
        kept.push_back({item.name, SyncStatus::verified, item.reason});
    return items(u"Silinmeyen asıllar"_s,
                 u"Bunların güvende olduğu kanıtlanamadı; yerlerinde duruyorlar."_s, kept,
                 static_cast<int>(kept.size()));
}

/// A row for each figure that is told.
QString rows(const std::vector<Figure>& figures) {
    QString text;
    for (const Figure& figure : figures)
        if (figure.count != 0 || figure.evenIfNone)
            text += row(figure.label, counted(figure.count));
    return text;
}

QString numbers(const RunReport& report) {
    const SyncRunOutcome& run = report.run;
    QString text = rows(report.figures());
    text += rows({{u"Çöp'e taşınan"_s, nullptr, run.deletion.deleted}});
    const auto sized = [](std::int64_t bytes) {
        return turkish.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
    };
    text += row(u"Aktarılan"_s, sized(run.uploadedBytes));
    text += row(u"Süre"_s, turkish.toString(report.seconds, 'f', 1) + u" sn"_s);
    if (report.seconds > 0)
        text += row(u"Ortalama hız"_s,
                    sized(std::llround(static_cast<double>(run.uploadedBytes) / report.seconds)) +
                        u"/sn"_s);
    return section(u"Sayılar"_s, text);
}

QString staysBehind(const RunReport& report) {
    return section(
        u"Geride kalanlar"_s,
        rows({{u"Yalnızca iCloud'da"_s, nullptr, report.now.onlyInCloud},
              {u"Aslı arşivin dışında ve yerinde değil"_s, nullptr, report.now.elsewhere}}) +
            rows(figuresOf(report.behind)) + rows(figuresOf(report.run.leftOut)));
}

/// Of these the failed ones, or those that were held back.
std::vector<RunReport::Item> only(SyncStatus status, const std::vector<RunReport::Item>& all) {
    std::vector<RunReport::Item> some;
    std::ranges::copy_if(all, std::back_inserter(some),
                         [&](const RunReport::Item& item) { return item.status == status; });
    return some;
}

} // namespace

QString RunReport::html() const {
    const QString when = turkish.toString(
        QDateTime::fromMSecsSinceEpoch(end.time_since_epoch().count()), u"d MMMM yyyy HH:mm"_s);
    const QString title = u"Quorvane yedek raporu"_s;
    QString about = u"%1 · %2"_s.arg(when, library);
    if (!account.isEmpty())
        about += u" · "_s + account;
    const bool wantsPerson = run.error || run.fault || now.failed + now.undated > 0;
    QString page =
        u"<!DOCTYPE html>\n<html lang=\"tr\"><head><meta charset=\"utf-8\">\n<meta "
        "name=\"viewport\" content=\"width=device-width\">\n<title>%1, %2</title>\n"
        "<style>%3</style></head>\n<body>\n<h1>%1</h1>\n<p class=\"about\">%4</p>\n"_s.arg(
            title, when, style, about.toHtmlEscaped());
    page += u"<p%1>%2</p>\n"_s.arg(wantsPerson ? u" class=\"bad\""_s : QString(),
                                   run.state().text().toHtmlEscaped());
    page += numbers(*this);
    page += items(u"Başarısız olanlar"_s, u"Yeniden denemek için: quorvane-cli retry"_s,
                  only(SyncStatus::failed, unfinished), now.failed);
    page += items(u"Tarihi bilinmeyenler"_s,
                  u"Tarih ipuçları için: quorvane-cli undated; penceredeki inceleme de gösterir."_s,
                  only(SyncStatus::dateUnresolved, unfinished), now.undated);
    page += items(u"Google'da başka tarihte duranlar"_s,
                  u"Google Fotoğraflar'da tarihlerini elle düzeltebilirsiniz."_s, misdated,
                  now.misdated);
    page += leftOutItems(run.deletion.leftOut);
    page += staysBehind(*this);
    page += years(dated);
    page += sources(dated);
    return page + u"</body></html>\n"_s;
}

} // namespace quorvane
