#pragma once

#include "foundation/Console.h"
#include "library/DeletionConfirmation.h"

#include <stop_token>

namespace quorvane::cli {

/// Asks on the terminal before files go. Without a terminal, or after a stop, the answer is no,
/// unless it was given beforehand.
class TerminalConfirmation final : public DeletionConfirmation {
  public:
    TerminalConfirmation(Console& console, bool confirmedBeforehand, std::stop_token stop)
        : console_(console), confirmedBeforehand_(confirmedBeforehand), stop_(std::move(stop)) {}

    /// Of originals.
    bool confirmDeletion(const DeletionQuestion& question) override;

    /// True when the person wrote "evet" below `question`.
    bool confirm(const QString& question);

  private:
    Console& console_;
    const bool confirmedBeforehand_;
    const std::stop_token stop_;
};

} // namespace quorvane::cli
