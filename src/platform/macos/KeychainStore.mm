#include "platform/macos/KeychainStore.h"

#include "platform/macos/CocoaText.h"

#import <Security/Security.h>

namespace quorvane {

namespace {

/// A constant of the Security framework as the object that it also is.
id objectOf(CFTypeRef constant) {
    return static_cast<id>(const_cast<void*>(constant));
}

CFDictionaryRef queryOf(NSDictionary* dictionary) {
    return reinterpret_cast<CFDictionaryRef>(dictionary);
}

NSMutableDictionary* itemOf(const QString& key) {
    return [NSMutableDictionary dictionaryWithObjectsAndKeys:objectOf(kSecClassGenericPassword),
                                                             objectOf(kSecClass), stringOf(key),
                                                             objectOf(kSecAttrAccount), nil];
}

/// Whoever was built as this program may read it without a question; none where the system makes no
/// such object any more.
id newAccess() {
    SecAccessRef access = nullptr;
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    const OSStatus status =
        SecAccessCreate(reinterpret_cast<CFStringRef>(@"Quorvane"), nullptr, &access);
#pragma clang diagnostic pop
    return status == errSecSuccess ? [objectOf(access) autorelease] : nil;
}

} // namespace

int KeychainStore::write(const QString& key, const QString& value) {
    @autoreleasepool {
        NSMutableDictionary* item = itemOf(key);
        SecItemDelete(queryOf(item));
        const QByteArray bytes = value.toUtf8();
        [item setObject:[NSData dataWithBytes:bytes.constData()
                                       length:static_cast<NSUInteger>(bytes.size())]
                 forKey:objectOf(kSecValueData)];
        if (id access = newAccess())
            [item setObject:access forKey:objectOf(kSecAttrAccess)];
        else
            [item setObject:objectOf(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly)
                     forKey:objectOf(kSecAttrAccessible)];
        return SecItemAdd(queryOf(item), nullptr);
    }
}

std::optional<QString> KeychainStore::read(const QString& key) {
    @autoreleasepool {
        NSMutableDictionary* query = itemOf(key);
        [query setObject:[NSNumber numberWithBool:YES] forKey:objectOf(kSecReturnData)];
        [query setObject:objectOf(kSecMatchLimitOne) forKey:objectOf(kSecMatchLimit)];
        CFTypeRef found = nullptr;
        if (SecItemCopyMatching(queryOf(query), &found) != errSecSuccess || !found)
            return std::nullopt;
        NSData* data = [objectOf(found) autorelease];
        NSString* text = [[[NSString alloc] initWithData:data
                                                encoding:NSUTF8StringEncoding] autorelease];
        return text ? std::optional(textOf(text)) : std::nullopt;
    }
}

void KeychainStore::remove(const QString& key) {
    @autoreleasepool {
        SecItemDelete(queryOf(itemOf(key)));
    }
}

} // namespace quorvane
