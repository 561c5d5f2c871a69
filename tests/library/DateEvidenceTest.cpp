#include "library/DateEvidence.h"
#include "metadata/LocalCalendar.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

Date at(int year, int month, int day, int hour = 12) {
    return localDate(year, month, day, hour, 0, 0).value();
}

const Date now = at(2024, 6, 1);

/// "folder/name", its capture date, and the time of its file.
DatedItem item(const QString& path, std::optional<Date> date, std::optional<Date> fileTime = {}) {
    DatedItem made;
    made.identifier = path;
    made.name = path.section(u'/', -1);
    made.folder = path.contains(u'/') ? path.section(u'/', 0, -2) : QString();
    made.isMovie = path.endsWith(u".MOV");
    made.date = date;
    made.fileTime = fileTime;
    return made;
}

QStringList told(const std::vector<DateEvidence>& evidence) {
    QStringList lines;
    for (const DateEvidence& one : evidence)
        lines += one.spanText() + u", "_s + one.sourceText();
    return lines;
}

} // namespace

TEST(DateEvidence, TellsWhatSpeaksForADateTheStrongestFirst) {
    const auto none = std::nullopt;
    const Date may3 = at(2019, 5, 3, 10);
    const DateReasoning reasoning(
        {
            item(u"a/IMG_0040.JPG"_s, may3),
            item(u"a/IMG_0041.JPG"_s, none),
            item(u"a/IMG_0042.HEIC"_s, at(2019, 5, 3, 14)),
            item(u"live/IMG_7.HEIC"_s, none),
            item(u"live/IMG_7.MOV"_s, may3),
            item(u"x/DSC01234 (1).jpg"_s, none),
            item(u"y/DSC01234.jpg"_s, may3),
            item(u"2019-08 Bodrum/z.jpg"_s, none),
            item(u"Tatil/plain.jpg"_s, none),
            item(u"Tatil/b.jpg"_s, at(2019, 5, 3)),
            item(u"Tatil/c.jpg"_s, at(2019, 5, 9)),
            // The counter began anew between them, or they are of two cameras.
            item(u"wrap/IMG_0100.JPG"_s, at(2021, 1, 1)),
            item(u"wrap/IMG_0101.JPG"_s, none),
            item(u"wrap/IMG_0102.JPG"_s, at(2018, 1, 1)),
            item(u"far/IMG_0001.JPG"_s, may3),
            item(u"far/IMG_0050.JPG"_s, none),
            item(u"far/IMG_0099.JPG"_s, may3 + std::chrono::days(60)),
            // Of files of a folder like theirs the times are those of the pictures ...
            item(u"kept/d.jpg"_s, may3, may3),
            item(u"kept/e.jpg"_s, none, at(2019, 7, 7)),
            // ... and here those of the copying, as what is dated or came along shows.
            item(u"copy/f.jpg"_s, may3, at(2022, 2, 2)),
            item(u"copy/g.jpg"_s, none, at(2022, 2, 2)),
            item(u"bulk/h.jpg"_s, none, at(2022, 2, 2)),
            item(u"bulk/i.jpg"_s, none, at(2022, 2, 2)),
            item(u"bulk/j.jpg"_s, none, at(2022, 2, 2)),
            item(u"bulk/k.jpg"_s, none, at(2022, 2, 2)),
            item(u"alone/l.jpg"_s, none, at(2022, 2, 2)),
            item(u"alone/m.jpg"_s, none, now),
        },
        {{u"Yaz"_s, {u"alone/m.jpg"_s, u"a/IMG_0040.JPG"_s, u"Tatil/c.jpg"_s}}}, now);
    const std::vector<std::pair<QString, QStringList>> rows{
        {u"a/IMG_0041.JPG"_s,
         {u"3 Mayıs 2019, komşu dosyalar (IMG_0040.JPG, IMG_0042.HEIC)"_s,
          u"3 Mayıs 2019, albümdeki öteki öğeler (a)"_s}},
        {u"live/IMG_7.HEIC"_s,
         {u"3 Mayıs 2019, Live Photo eşi (IMG_7.MOV)"_s,
          u"3 Mayıs 2019, aynı adlı dosya (live/IMG_7.MOV)"_s}},
        {u"x/DSC01234 (1).jpg"_s, {u"3 Mayıs 2019, aynı adlı dosya (y/DSC01234.jpg)"_s}},
        {u"2019-08 Bodrum/z.jpg"_s, {u"Ağustos 2019, klasör adı (2019-08 Bodrum)"_s}},
        {u"Tatil/plain.jpg"_s, {u"3–9 Mayıs 2019, albümdeki öteki öğeler (Tatil)"_s}},
        {u"wrap/IMG_0101.JPG"_s, {}},
        {u"far/IMG_0050.JPG"_s, {}},
        {u"kept/e.jpg"_s, {u"7 Temmuz 2019, dosyanın saati"_s}},
        {u"copy/g.jpg"_s, {}},
        {u"bulk/h.jpg"_s, {}},
        {u"alone/l.jpg"_s, {u"2 Şubat 2022, dosyanın saati"_s}},
        {u"alone/m.jpg"_s, {u"3–9 Mayıs 2019, albümdeki öteki öğeler (Yaz)"_s}},
        {u"unknown"_s, {}},
    };
    for (const auto& [identifier, expected] : rows)
        EXPECT_EQ(told(reasoning.about(identifier, {})).join(u'\n').toStdString(),
                  expected.join(u'\n').toStdString())
            << identifier.toStdString();

    const auto evidence = reasoning.about(
        u"a/IMG_0041.JPG"_s, {{at(2011, 1, 1), u"XMP"_s}, {now + std::chrono::days(9), u"PNG"_s}});
    EXPECT_EQ(evidence.at(0).date(), at(2019, 5, 3, 12)) << "the middle is accepted";
    EXPECT_EQ(reasoning.about(u"2019-08 Bodrum/z.jpg"_s, {}).at(0).date(), at(2019, 8, 16));
    EXPECT_EQ(told(evidence).at(2), u"1 Ocak 2011, dosyadaki metin (XMP)"_s);
    EXPECT_EQ(evidence.size(), 3U) << "what is yet to come is none";
}

} // namespace quorvane
