#pragma once

#include <QString>
#include <QStringList>

#import <Foundation/Foundation.h>

/// Texts of Foundation as ours, and back. Objective-C++ only; any thread, inside an autorelease
/// pool.
namespace quorvane {

/// Empty for nil.
QString textOf(NSString* text);
NSString* stringOf(const QString& text);
NSArray<NSString*>* stringsOf(const QStringList& texts);

/// One line for a person: the description, or domain and number where there is none.
QString reasonOf(NSError* error);

} // namespace quorvane
