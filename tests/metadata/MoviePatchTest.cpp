#include "metadata/movie/MovieMetadata.h"

#include "Dates.h"
#include "MovieBuilder.h"
#include "metadata/FileDates.h"
#include "support/TemporaryFolder.h"

using namespace quorvane;
using namespace quorvane::test;

namespace {

using Code = MovieDateError::Code;

const Date target{std::chrono::milliseconds(1614987000'750)}; // 2021-03-05 23:30:00.75 UTC
constexpr quint64 targetTime = movieEpoch + 1614987000;

/// The code of the error, and its text; code 0 when the patch went well.
struct Failure {
    int code = 0;
    QString text;
};

Failure failureOf(const std::filesystem::path& file, Date date, const MovieLimits& limits = {}) {
    try {
        patchMP4CreationDate(file, date, limits);
        return {};
    } catch (const MovieDateError& error) {
        return {static_cast<int>(error.code()), error.localizedDescription()};
    }
}

} // namespace

TEST(MoviePatch, WritesTheTimeFieldsAndNothingElse) {
    const QByteArray lateTrak = box("trak", timeBox("tkhd", 1, 3, 4));
    const auto twoMovies = [](quint64 first) { return movie(0, first) + movie(0, 9); };
    const auto large = [](quint64 time) {
        return ftyp() + largeBox("mdat", "xyz") +
               largeBox("moov", largeBox("trak", timeBox("tkhd", 0, time, time)));
    };
    const auto mixed = [&](quint64 v0, quint64 v1) {
        return ftyp() +
               box("moov", timeBox("mvhd", 0, v0, v0) + box("trak", timeBox("tkhd", 1, v1, v1)));
    };
    // Another version, or too short: reached but not written.
    const QByteArray unknown = ftyp() + box("moov", timeBox("mvhd", 2, 1, 2));
    const QByteArray hollow =
        ftyp() + box("moov", box("mvhd", big(quint32(0))) + box("free", ftyp()));
    const QByteArray endless = ftyp() + box("moov", timeBox("mvhd", 0, 1, 2)).chopped(24);
    const Date last(std::chrono::seconds(0xffffffffLL - static_cast<qint64>(movieEpoch)));
    const Date in2050 = utc(2050, 12, 31);
    const struct {
        const char* what;
        QByteArray before;
        QByteArray after;
        Date date = target;
    } rows[] = {
        {"first second", movie(0, 7), movie(0, 0), utc(1904, 1, 1)},
        {"last second of 32 bits", movie(0, 7), movie(0, 0xffffffff), last},
        {"64 bits", movie(1, 7), movie(1, movieEpoch + static_cast<quint64>(unixSeconds(in2050))),
         in2050},
        {"version 0", movie(0, 7), movie(0, targetTime)},
        {"version 1", movie(1, 7), movie(1, targetTime)},
        {"both versions", mixed(1, 2), mixed(targetTime, targetTime)},
        {"largesize, no mvhd", large(5), large(targetTime)},
        {"only the first moov", twoMovies(7), twoMovies(targetTime)},
        {"time boxes elsewhere", movie(0, 7, box("udta", timeBox("mvhd", 0, 1, 2))),
         movie(0, targetTime, box("udta", timeBox("mvhd", 0, 1, 2)))},
        {"tracks in tracks", movie(0, 7, box("trak", lateTrak)),
         movie(0, targetTime, box("trak", lateTrak))},
        {"unknown version", unknown, unknown},
        {"box ends before its times", hollow, hollow},
        {"file ends before the times", endless, endless},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const auto file = folder.write("movie.mp4", row.before);
        EXPECT_EQ(failureOf(file, row.date).code, 0);
        EXPECT_EQ(readFile(file), row.after);
        EXPECT_EQ(readFileCreationDate(file), row.date);
    }
}

TEST(MoviePatch, RefusesBeforeWritingAnything) {
    const Date y1903 = utc(1903, 12, 31);
    const Date tooLate(std::chrono::seconds(0x100000000LL - static_cast<qint64>(movieEpoch)));
    const QByteArray noTimes = ftyp() + box("moov", box("udta", {}) + box("trak", box("mdia", {})));
    const QByteArray late =
        ftyp() + box("moov", timeBox("mvhd", 1, 1, 1) + box("trak", timeBox("tkhd", 0, 1, 1)));
    const struct {
        QByteArray bytes;
        Date date;
        Code code;
        const char* text;
    } rows[] = {
        {movie(0, 7).left(15), target, Code::invalidFileSize, "Geçersiz dosya boyutu: 15"},
        {{}, y1903, Code::invalidFileSize, "Geçersiz dosya boyutu: 0"},
        {movie(0, 7), y1903, Code::beforeMovieEpoch, "Hedef tarih 1904 öncesi olamaz"},
        {movie(0, 7), utc(1904, 1, 1) - std::chrono::milliseconds(1), Code::beforeMovieEpoch,
         "Hedef tarih 1904 öncesi olamaz"},
        {noTimes, target, Code::noTimeBox,
         "moov/mvhd atomu bulunamadı veya yamalanamadı: film 1.mp4"},
        {ftyp() + box("mdat", QByteArray(99, 'x')), target, Code::noTimeBox,
         "moov/mvhd atomu bulunamadı veya yamalanamadı: film 1.mp4"},
        {late, tooLate, Code::beyondTimeField,
         "Hedef tarih dosyanın 32 bitlik zaman alanına sığmıyor: film 1.mp4"},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        const auto file = folder.write("film 1.mp4", row.bytes);
        const Failure failure = failureOf(file, row.date);
        EXPECT_EQ(failure.code, static_cast<int>(row.code)) << row.text;
        EXPECT_EQ(failure.text.toStdString(), row.text);
        EXPECT_EQ(readFile(file), row.bytes);
    }
    EXPECT_THROW(patchMP4CreationDate(folder / "absent.mp4", target), FileError);

    const auto deep = folder.write("deep.mp4", movie(0, 7));
    EXPECT_THROW(patchMP4CreationDate(deep, target, {.nesting = 3}), ParseError);
    EXPECT_THROW(patchMP4CreationDate(deep, target, {.boxes = 5}), ParseError);
    EXPECT_EQ(readFile(deep), movie(0, 7));
}
