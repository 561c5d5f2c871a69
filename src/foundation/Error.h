#pragma once

#include "foundation/Fault.h"

#include <QByteArray>
#include <QString>

#include <exception>
#include <optional>

namespace quorvane {

/// Base of every area's error value. Its description is the product's own (Turkish) text; what the
/// program does about it follows from its fault, never from the text.
class Error : public std::exception {
  public:
    explicit Error(QString description, std::optional<Fault> fault = {});

    const QString& localizedDescription() const noexcept { return description_; }
    const char* what() const noexcept override { return utf8_.constData(); }

    /// None where nobody could tell whose fault it was: then it is the item's.
    const std::optional<Fault>& fault() const noexcept { return fault_; }

  private:
    QString description_;
    QByteArray utf8_;
    std::optional<Fault> fault_;
};

/// Thrown when a stop was asked for. No `std::exception`, so that no handler of errors takes it for
/// one: whoever ends it says so.
class Cancelled {};

/// The text to show for any caught exception.
QString describe(const std::exception& error);

/// None also for what is no `Error`.
std::optional<Fault> faultOf(const std::exception& error);

/// This computer is to blame (its disk, its library, its state): nothing follows for the item at
/// hand, and whoever decides about items passes it on.
bool isMachines(const std::exception& error);

/// This computer, or a passing trouble with a file of it: nothing follows for what the file holds.
bool isSystems(const std::exception& error);

} // namespace quorvane
