#include "platform/macos/CocoaText.h"

namespace quorvane {

QString textOf(NSString* text) {
    QString result(static_cast<qsizetype>([text length]), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar*>(result.data())
                  range:NSMakeRange(0, [text length])];
    return result;
}

NSString* stringOf(const QString& text) {
    return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.utf16())
                                   length:static_cast<NSUInteger>(text.size())];
}

NSArray<NSString*>* stringsOf(const QStringList& texts) {
    NSMutableArray<NSString*>* strings = [NSMutableArray array];
    for (const QString& text : texts)
        [strings addObject:stringOf(text)];
    return strings;
}

QString reasonOf(NSError* error) {
    const QString description = textOf([error localizedDescription]).simplified();
    if (!description.isEmpty())
        return description;
    if (!error)
        return QStringLiteral("neden bildirilmedi");
    return QStringLiteral("%1 %2").arg(textOf([error domain])).arg([error code]);
}

} // namespace quorvane
