#include "metadata/TextDates.h"

#include "metadata/FolderNameDates.h"
#include "metadata/LocalCalendar.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

QByteArray packet(const QByteArray& attributes, const QByteArray& elements = {}) {
    return "....<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='r' xmlns:xmp='x' "
           "xmlns:photoshop='p'><rdf:Description " +
           attributes + ">" + elements + "</rdf:Description></rdf:RDF></x:xmpmeta>....";
}

QByteArray dataset(char number, const QByteArray& text) {
    return QByteArray("\x1C\x02") + number + '\0' + static_cast<char>(text.size()) + text;
}

QByteArray chunk(const QByteArray& content) {
    QByteArray size(4, '\0');
    size[3] = static_cast<char>(content.size() - 4);
    return "\x89PNG" + size + content + "crc!";
}

} // namespace

TEST(TextDates, AreFoundInWhateverBytes) {
    const auto local = localDate(2019, 5, 3, 14, 22, 10);
    const auto noon = localDate(2019, 5, 3, 12, 0, 0);
    const auto zoned = utcDate(2019, 5, 3, 11, 22, 10);
    const QByteArray created("tEXtCreation Time\0", 18);
    const struct {
        const char* form;
        QByteArray bytes;
        std::optional<Date> date;
    } rows[] = {
        {"XMP", packet("xmp:CreateDate='2019-05-03T14:22:10+03:00'"), zoned},
        {"XMP", packet("xmp:CreateDate='2020-01-01' photoshop:DateCreated='2019-05-03'"), noon},
        {"XMP", packet({}, "<xmp:CreateDate>2019-05-03T14:22:10</xmp:CreateDate>"), local},
        {"XMP", packet("xmp:CreateDate='2019-05-03T14:22+03:00'"),
         *zoned - std::chrono::seconds(10)},
        {"XMP", packet("xmp:ModifyDate='2019-05-03'"), {}},
        {"XMP", packet("xmp:CreateDate='2019-05-03'").chopped(20), {}},
        {"XMP", "<x:xmpmeta><a b=></x:xmpmeta>", {}},
        {"IPTC", ".." + dataset('\x37', "20190503") + dataset('\x3C', "142210+0300"), zoned},
        {"IPTC", dataset('\x37', "20190503"), noon},
        {"IPTC", dataset('\x37', "00000000"), {}},
        {"IPTC", dataset('\x37', "20190503").chopped(4), {}},
        {"PNG", chunk(created + "2019:05:03 14:22:10"), local},
        {"PNG", chunk(created + "Fri, 03 May 2019 14:22:10 +0300"), zoned},
        {"PNG", chunk(created + "yesterday"), {}},
        {"PNG", created + "2019-05-03", {}},
        {"-", {}, {}},
    };
    for (const auto& row : rows) {
        std::vector<TextDate> expected;
        if (row.date)
            expected.push_back({*row.date, QString::fromLatin1(row.form)});
        EXPECT_EQ(textDatesIn(viewOf(row.bytes)), expected) << row.bytes.toStdString();
    }
}

TEST(FolderNameDates, AreTheInnermost) {
    const auto day = [](int year, int month, int date) {
        return localDate(year, month, date, 12, 0, 0).value();
    };
    const auto begin = [](int year, int month) {
        return localDate(year, month, 1, 0, 0, 0).value();
    };
    const std::chrono::seconds second(1);
    const DateSpan may{begin(2019, 5), begin(2019, 6) - second};
    const DateSpan may3{day(2019, 5, 3), day(2019, 5, 3)};
    const DateSpan year{begin(2019, 1), begin(2020, 1) - second};
    const struct {
        QString path;
        std::optional<DateSpan> span;
    } rows[] = {
        {u"2019-05-03 Bodrum"_s, may3},
        {u"Tatil/2019/05/03"_s, may3},
        {u"2019/05 Bodrum"_s, may},
        {u"Mayıs 2019"_s, may},
        {u"2019 May"_s, may},
        {u"2019-05"_s, may},
        {u"Resimler/2019"_s, year},
        {u"2019/Bodrum"_s, year},
        {u"2018/Yaz 2019/Secme"_s, year},
        {u"Tatil"_s, {}},
        {u"IMG_12019"_s, {}},
        {u"2035"_s, {}},
        {{}, {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(dateOfFolder(row.path, day(2024, 1, 1)), row.span) << row.path.toStdString();
}

} // namespace quorvane
