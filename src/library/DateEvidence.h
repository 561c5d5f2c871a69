#pragma once

#include "metadata/FolderNameDates.h"
#include "metadata/TextDates.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <vector>

namespace quorvane {

/// What can speak for a date, the strongest first.
enum class EvidenceKind { partner, sameName, neighbours, album, text, folder, fileTime };

/// The case's name, as the command line takes it: "same-name".
QString rawValue(EvidenceKind kind);
/// For a person: "aynı adlı dosya".
QString kindText(EvidenceKind kind);

/// That an item is of a certain time. Nothing follows from it before a person has agreed.
struct DateEvidence {
    EvidenceKind kind = EvidenceKind::partner;
    DateSpan span;
    QStringList witnesses; ///< the names of files, of the album, of the folder, or the text's form

    /// What is written when a person agrees: the middle; of several days the noon of the middle
    /// one.
    Date date() const;
    /// "3 Mayıs 2019", "3–9 Mayıs 2019", "2019"; local days.
    QString spanText() const;
    /// "komşu dosyalar (IMG_0040.JPG, IMG_0042.JPG)"
    QString sourceText() const;

    bool operator==(const DateEvidence&) const = default;
};

/// One item of a library, as far as dates go.
struct DatedItem {
    QString identifier;
    QString name;
    /// On which it stands, "/" between its parts; none where the library keeps its files in an
    /// order of its own.
    std::optional<QString> folder;
    bool isMovie = false;
    std::optional<Date> date;        ///< of its capture, where it is known
    std::optional<Date> fileTime;    ///< where it means anything
    std::optional<Date> partnerDate; ///< of the movie of a Live Photo
};

/// The items that an album shows, by their identifiers.
struct ItemAlbum {
    QString title;
    QStringList identifiers;
};

/// What a library's items tell of one another. It looks at each item once, and then answers for any
/// of them in a moment. Pure; immutable once built, so any thread.
class DateReasoning {
  public:
    /// `now` is when the question is asked. A folder is an album of its files.
    DateReasoning(std::vector<DatedItem> items, const std::vector<ItemAlbum>& albums, Date now);

    /// Everything that speaks for a date of this item, the strongest first. `texts` are the dates
    /// that its own file tells.
    std::vector<DateEvidence> about(const QString& identifier,
                                    const std::vector<TextDate>& texts) const;

  private:
    using Position = std::size_t;

    /// The dated items of one counter's number.
    struct Counted {
        DateSpan span;
        QString name;
    };
    struct Group { ///< an album, or a folder
        QString title;
        std::optional<DateSpan> span;
        int dated = 0;
        int datedLikeFile = 0;       ///< of those that have a file time
        int datedWithFile = 0;       ///< dated ones that have one
        std::vector<Date> fileTimes; ///< of all, sorted
    };

    void take(Position position);
    void takeAlbum(const ItemAlbum& album);

    std::optional<DateEvidence> fromPartner(const DatedItem& item) const;
    std::optional<DateEvidence> fromSameName(const DatedItem& item) const;
    std::optional<DateEvidence> fromNeighbours(const DatedItem& item) const;
    std::optional<DateEvidence> fromAlbums(const DatedItem& item) const;
    std::optional<DateEvidence> fromFolderName(const DatedItem& item) const;
    std::optional<DateEvidence> fromFileTime(const DatedItem& item) const;

    std::vector<DatedItem> items_;
    Date now_;
    QHash<QString, Position> byIdentifier_;
    QHash<QString, std::vector<Position>> byStem_;
    QHash<QString, std::map<int, Counted>> byCounter_;
    QHash<QString, Group> folders_;
    std::vector<Group> albums_;
    QHash<QString, std::vector<std::size_t>> albumsOf_; ///< by identifier
};

} // namespace quorvane
