#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace quorvane {

/// Base of every area's error value. Its description is the product's own (Turkish) text.
class Error : public std::exception {
  public:
    explicit Error(QString description);

    const QString& localizedDescription() const noexcept { return description_; }
    const char* what() const noexcept override { return utf8_.constData(); }

  private:
    QString description_;
    QByteArray utf8_;
};

/// Thrown when a stop was asked for. Deliberately not an `Error`, so that no handler of an area's
/// errors swallows it.
class Cancelled : public std::exception {
  public:
    const char* what() const noexcept override { return "cancelled"; }
};

/// The text to show for any caught exception.
QString describe(const std::exception& error);

} // namespace quorvane
