#include "platform/macos/UserDefaults.h"

#include "platform/macos/CocoaText.h"

namespace quorvane {

QJsonValue UserDefaults::value(const QString& key) {
    @autoreleasepool {
        id object = [[NSUserDefaults standardUserDefaults] objectForKey:stringOf(key)];
        if ([object isKindOfClass:[NSString class]])
            return textOf(object);
        if ([object isKindOfClass:[NSNumber class]])
            return static_cast<bool>([object boolValue]);
        return QJsonValue::Undefined;
    }
}

void UserDefaults::change(const QString& key, const QJsonValue& value) {
    @autoreleasepool {
        NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
        if (value.isBool())
            [defaults setBool:value.toBool() forKey:stringOf(key)];
        else if (value.isString())
            [defaults setObject:stringOf(value.toString()) forKey:stringOf(key)];
        else
            [defaults removeObjectForKey:stringOf(key)];
    }
}

} // namespace quorvane
