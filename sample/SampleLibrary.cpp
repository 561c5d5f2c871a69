#include "sample/SampleLibrary.h"

#include "foundation/File.h"
#include "sample/SampleMedia.h"

#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane::sample {

namespace {

constexpr std::uint32_t epochOffset = 2082844800; // 1904-01-01 to 1970-01-01, seconds

class Writer {
  public:
    explicit Writer(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// All files get one plausible modification time, so that every sample is the same.
    void add(const std::filesystem::path& name, const QByteArray& bytes) {
        const std::filesystem::path file = folder_ / name;
        std::filesystem::create_directories(file.parent_path());
        const FileDescriptor out = openFile(file, O_WRONLY | O_CREAT | O_TRUNC, 0644);
        writeAll(out.get(), viewOf(bytes), file);
        const timespec time{1'600'000'000 + 60 * count_, 0};
        const timespec times[2] = {time, time};
        ::futimens(out.get(), times);
        ++count_;
    }
    int count() const { return count_; }

  private:
    std::filesystem::path folder_;
    int count_ = 0;
};

QByteArray exifDate(int number) {
    return QStringLiteral("20%1:%2:%3 1%4:05:0%4")
        .arg(10 + number % 15, 2, 10, QLatin1Char('0'))
        .arg(1 + number % 12, 2, 10, QLatin1Char('0'))
        .arg(1 + number % 28, 2, 10, QLatin1Char('0'))
        .arg(number % 10)
        .toLatin1();
}

void addDatedPictures(Writer& out) {
    for (int i = 1; i <= 12; ++i)
        out.add(QStringLiteral("IMG_%1.JPG").arg(i, 4, 10, QLatin1Char('0')).toStdString(),
                jpeg(static_cast<std::uint32_t>(i), exifDate(i)));
    for (int i = 13; i <= 18; ++i)
        out.add(QStringLiteral("Yaz Tatili/Çiçek %1.jpg").arg(i).toStdString(),
                jpeg(static_cast<std::uint32_t>(i), exifDate(i)));
    out.add("Yaz Tatili/deniz.png", png(19, exifDate(19)));
    out.add("Yaz Tatili/kumsal.tiff", tiff(20, exifDate(20)));
    out.add("tarama.tif", tiff(21, exifDate(21)));
}

void addNamedDates(Writer& out) {
    out.add("IMG-20190412-WA0003.jpg", jpeg(30, std::nullopt));
    out.add("IMG-20190412-WA0004.jpg", jpeg(31, std::nullopt));
    out.add("WhatsApp Image 2021-03-05 at 18.22.10.jpeg", jpeg(32, std::nullopt));
    out.add("photo_2020-07-14_09-30-00.jpg", jpeg(33, std::nullopt));
    out.add("Screenshot_20220101-080910.png", png(34, std::nullopt));
    out.add("Ekran Resmi 2023-11-02 14.05.59.png", png(35, std::nullopt));
    out.add("Screen Shot 2018-05-06 at 07.08.09.png", png(36, std::nullopt));
    out.add("20170809_101112.webp", webp(37));
    out.add("2016-02-29.jpg", jpeg(38, std::nullopt));
    out.add("1617187200123.jpg", jpeg(39, std::nullopt));
}

void addMovies(Writer& out) {
    out.add("Videolar/klip.mov", movie(40, MovieBrand::quickTime, 1'500'000'000 + epochOffset));
    out.add("Videolar/klip.mp4", movie(41, MovieBrand::mp4, 1'520'000'000 + epochOffset));
    out.add("Videolar/VID-20200315-WA0001.mp4", movie(42, MovieBrand::mp4, 0));
    out.add("Videolar/1904.mov", movie(43, MovieBrand::quickTime, 0)); // no date anywhere
}

void addTraps(Writer& out) {
    out.add("tarihsiz.jpg", jpeg(50, std::nullopt));
    out.add("tarihsiz.png", png(51, std::nullopt));
    out.add("hareketli.gif", gif(52)); // a format that cannot carry a date
    out.add("sıfır tarih.jpg", jpeg(53, QByteArray("0000:00:00 00:00:00")));
    out.add("Kopyalar/IMG_0001.JPG", jpeg(1, exifDate(1))); // the bytes of the first picture
    out.add("😀 \"tırnak\" %41.jpg", jpeg(54, exifDate(24)));
    out.add("bozuk.jpg", "bu bir fotoğraf değil");
    out.add("notlar.txt", "yedeklenmez");
    out.add(".gizli.jpg", jpeg(55, exifDate(25)));
}

} // namespace

int writeSampleLibrary(const std::filesystem::path& folder) {
    Writer out(folder);
    addDatedPictures(out);
    addNamedDates(out);
    addMovies(out);
    addTraps(out);
    return out.count();
}

int writeManyPictures(const std::filesystem::path& folder, int count) {
    Writer out(folder);
    for (int i = 0; i < count; ++i)
        out.add(QStringLiteral("%1/IMG_%2.jpg")
                    .arg(i / 1000, 3, 10, QLatin1Char('0'))
                    .arg(i, 6, 10, QLatin1Char('0'))
                    .toStdString(),
                jpeg(static_cast<std::uint32_t>(i), exifDate(i)));
    return out.count();
}

} // namespace quorvane::sample
