#pragma once

#include <QString>

#include <optional>

/// What the names that cameras and copies give tell of one another. Any thread.
namespace quorvane {

/// The name without its extension, in lower case.
QString plainStemOf(const QString& name);

/// The same without what copies and edits add: "IMG_0041 (1).JPG", "IMG_0041 kopya.jpg" and
/// "IMG_E0041.HEIC" are "img_0041".
QString stemOf(const QString& name);

/// True when two files of that stem are hardly so by chance.
bool isTelling(const QString& stem);

/// A place in a camera's count.
struct Counter {
    QString series; ///< what stands before the number
    int number = 0;
};

/// "IMG_0041.JPG" is the 41st of "img_"; none where the name ends with no number, or with one that
/// is too short or too long for a count.
std::optional<Counter> counterOf(const QString& name);

} // namespace quorvane
