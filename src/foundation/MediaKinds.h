#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QString>

#include <filesystem>
#include <span>

/// What the program knows of kinds of files: one row for each file name extension, and nowhere else
/// a second list. They are the kinds that Google Photos says it takes (Library API, "Upload media",
/// accepted file types). Any thread.
namespace quorvane {

enum class MediaClass { picture, movie };

/// Where a kind keeps its capture date, and so who reads it.
enum class DateReading {
    none,    ///< it has no place for one that we know
    exif,    ///< an Exif block in a container of ours
    rawExif, ///< the Exif of a camera's own format
    movie,   ///< the headers and texts of MP4 and QuickTime
};

/// How a date gets into it.
enum class DateWriting {
    none, ///< it goes up as it is, or not at all
    exif,
    movie,
};

struct MediaKind {
    /// Every field must be told: a row that leaves one out does not compile.
    constexpr MediaKind(QLatin1String anExtension, QLatin1String aMimeType, bool isItTold,
                        MediaClass aClass, bool isItRaw, DateReading aReading, DateWriting aWriting)
        : extension(anExtension),
          mimeType(aMimeType),
          isTold(isItTold),
          mediaClass(aClass),
          reading(aReading),
          writing(aWriting),
          isRaw(isItRaw) {}

    QLatin1String extension; ///< lower case, without the dot
    QLatin1String mimeType;
    bool isTold; ///< an upload names the MIME type; of the others it says that they are bytes
    MediaClass mediaClass;
    DateReading reading;
    DateWriting writing;
    bool isRaw; ///< what the sensor saw, undeveloped

    /// True for a kind that can be given a date; any other carries the one it has, or none.
    constexpr bool isDatable() const { return writing != DateWriting::none; }
};

/// All of them.
std::span<const MediaKind> mediaKinds();

/// The kind of a file by its extension, in any case; none (null) when it is neither a picture nor a
/// movie.
const MediaKind* mediaKindOf(const QString& extension);

/// The MIME type that an upload of this file names, by its extension in any case;
/// "application/octet-stream" for a kind that is not told or not known.
QByteArray uploadType(const std::filesystem::path& file);

/// Whether a file of this extension (lower case, without the dot) is a picture that takes a date.
bool isImageExtension(const QString& extension);

/// Whether a file of this extension (lower case, without the dot) is a movie that takes a date.
bool isVideoExtension(const QString& extension);

} // namespace quorvane
