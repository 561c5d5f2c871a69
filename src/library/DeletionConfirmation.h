#pragma once

#include <QString>

#include <cstdint>
#include <map>

namespace quorvane {

/// Why an original stays where others of the library go.
enum class KeptReason {
    notVerified, ///< the store does not know of a copy
    edited,      ///< with a rendering that was not sent
    partlySent,  ///< the movie of a Live Photo, say, was not
    changed,     ///< its bytes are no longer those that were sent
    unproven,    ///< nobody knew its bytes when they were sent
    notHere,     ///< only in the cloud
    noTrash,     ///< its disk has none
};

/// A reason in a person's words: a line, and what it means.
struct KeptText {
    QString title;
    QString note;
};
KeptText textOf(KeptReason reason);

/// What a person is asked before originals go.
struct DeletionQuestion {
    int count = 0;
    std::int64_t bytes = 0;
    QString place;   ///< where they go, in the product's words: the path of the Trash
    QString warning; ///< what could not be made sure of; empty when everything was
    std::map<KeptReason, int> kept; ///< how many stay
};

/// The person's consent before a library removes anything: the desktop's own dialog, in place of
/// the one that a photo library with a system behind it shows by itself.
class DeletionConfirmation {
  public:
    virtual ~DeletionConfirmation() = default;

    /// Blocks until the person answered; false also when nobody can be asked. Any thread but the
    /// main one.
    virtual bool confirmDeletion(const DeletionQuestion& question) = 0;
};

} // namespace quorvane
