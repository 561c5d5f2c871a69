#pragma once

namespace quorvane {

/// The person's consent before a library removes anything: the desktop's own dialog, in place of
/// the one that a photo library with a system behind it shows by itself.
class DeletionConfirmation {
  public:
    virtual ~DeletionConfirmation() = default;

    /// Blocks until the person answered; false also when nobody can be asked. Any thread but the
    /// main one.
    virtual bool confirmDeletion(int count) = 0;
};

} // namespace quorvane
