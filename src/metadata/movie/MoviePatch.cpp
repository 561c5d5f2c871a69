#include "metadata/movie/MoviePatch.h"

#include "metadata/FileDates.h"

#include <QtEndian>

#include <limits>
#include <vector>

#include <fcntl.h>

namespace quorvane {

namespace {

using Code = MovieDateError::Code;

QString nameOf(const MovieFile& file) {
    return pathText(file.path().filename());
}

template <typename Field>
QByteArray twice(Field value) {
    QByteArray bytes(2 * sizeof(Field), Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    qToBigEndian(value, bytes.data() + sizeof(Field));
    return bytes;
}

/// Collects what is to be written, so that nothing is before all of it is known to be right.
class DatePatch {
  public:
    DatePatch(const MovieFile& file, const MovieLimits& limits, std::uint64_t time)
        : file_(file), boxes_(file, limits), time_(time) {}

    void plan() {
        if (const auto moov = boxes_.find(boxes_.file(), boxType("moov")))
            patchMoovContainer(*moov);
        if (!patchedAny_)
            throw MovieDateError(Code::noTimeBox,
                                 QStringLiteral("moov/mvhd atomu bulunamadı veya yamalanamadı: ") +
                                     nameOf(file_));
    }

    /// Whether the header that readers look at is among what is written.
    bool patchesHeader() const { return patchesHeader_; }

    void write() const {
        for (const Write& write : writes_)
            file_.write(write.offset, write.bytes);
        file_.flush();
        for (const Write& write : headerWrites_)
            file_.write(write.offset, write.bytes);
        file_.flush();
    }

  private:
    struct Write {
        std::uint64_t offset;
        QByteArray bytes;
    };

    void patchMoovContainer(const MovieBox& moov) {
        auto children = boxes_.childrenOf(moov);
        while (const auto child = children.next()) {
            if (child->type == boxType("mvhd"))
                patchHeader(*child);
            else if (child->type == boxType("trak"))
                patchTrakContainer(*child);
        }
    }

    void patchHeader(const MovieBox& mvhd) {
        const auto write = timeBoxWrite(mvhd);
        if (!foundHeader_)
            patchesHeader_ = write.has_value();
        foundHeader_ = true;
        if (write)
            headerWrites_.push_back(*write);
    }

    void patchTrakContainer(const MovieBox& trak) {
        auto children = boxes_.childrenOf(trak);
        while (const auto child = children.next()) {
            if (child->type == boxType("tkhd"))
                patchTimeBox(*child);
            else if (child->type == boxType("mdia"))
                patchMdiaContainer(*child);
        }
    }

    void patchMdiaContainer(const MovieBox& mdia) {
        auto children = boxes_.childrenOf(mdia);
        while (const auto child = children.next())
            if (child->type == boxType("mdhd"))
                patchTimeBox(*child);
    }

    void patchTimeBox(const MovieBox& box) {
        if (const auto write = timeBoxWrite(box))
            writes_.push_back(*write);
    }

    /// None for a box that is left as it is; it counts as patched nevertheless.
    std::optional<Write> timeBoxWrite(const MovieBox& box) {
        constexpr std::uint64_t fieldsAt = 4; // behind version and flags
        patchedAny_ = true;
        const QByteArray head = boxes_.head(box, fieldsAt + 2 * sizeof(std::uint64_t));
        const auto fits = [&](size_t width) {
            return static_cast<size_t>(head.size()) >= fieldsAt + 2 * width;
        };
        if (!head.isEmpty() && head[0] == 0 && fits(sizeof(std::uint32_t))) {
            if (time_ > std::numeric_limits<std::uint32_t>::max())
                throw MovieDateError(
                    Code::beyondTimeField,
                    QStringLiteral("Hedef tarih dosyanın 32 bitlik zaman alanına sığmıyor: ") +
                        nameOf(file_));
            return Write{box.payload + fieldsAt, twice(static_cast<std::uint32_t>(time_))};
        }
        if (!head.isEmpty() && head[0] == 1 && fits(sizeof(std::uint64_t)))
            return Write{box.payload + fieldsAt, twice(time_)};
        return std::nullopt;
    }

    const MovieFile& file_;
    MovieBoxes boxes_;
    std::uint64_t time_;
    std::vector<Write> writes_;
    std::vector<Write> headerWrites_;
    bool patchedAny_ = false;
    bool foundHeader_ = false;
    bool patchesHeader_ = false;
};

} // namespace

bool patchMP4CreationDate(const std::filesystem::path& path, Date target, const MovieLimits& limits,
                          Effect effect) {
    const MovieFile file(path, effect == Effect::write ? O_RDWR : O_RDONLY);
    if (file.size() < smallestMovie)
        throw MovieDateError(Code::invalidFileSize,
                             QStringLiteral("Geçersiz dosya boyutu: %1").arg(file.size()));
    const std::int64_t time =
        std::chrono::floor<std::chrono::seconds>(target).time_since_epoch().count() +
        movieEpochOffset;
    if (time < 0)
        throw MovieDateError(Code::beforeMovieEpoch,
                             QStringLiteral("Hedef tarih 1904 öncesi olamaz"));

    DatePatch patch(file, limits, static_cast<std::uint64_t>(time));
    patch.plan();
    if (effect == Effect::write) {
        patch.write();
        setFileDates(path, target);
    }
    return patch.patchesHeader();
}

} // namespace quorvane
