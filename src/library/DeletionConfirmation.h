#pragma once

#include <QString>

#include <cstdint>

namespace quorvane {

/// What a person is asked before originals go.
struct DeletionQuestion {
    int count = 0;
    std::int64_t bytes = 0;
    QString place;   ///< where they go, in the product's words: the path of the Trash
    QString warning; ///< what could not be made sure of; empty when everything was
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
