#include "macos/StandInSystem.h"

#import <Foundation/Foundation.h>
#import <Security/Security.h>

#include <map>

using quorvane::test::StandInSystem;

namespace {

StandInSystem& mac() {
    return StandInSystem::shared();
}

CFStringRef constant(NSString* text) {
    return reinterpret_cast<CFStringRef>(text);
}

NSDictionary* dictionaryOf(CFDictionaryRef reference) {
    return static_cast<NSDictionary*>(const_cast<void*>(static_cast<const void*>(reference)));
}

std::map<std::string, NSData*> items; ///< retained

std::string accountOf(NSDictionary* query) {
    return [[query objectForKey:@"acct"] UTF8String];
}

} // namespace

const CFStringRef kSecClass = constant(@"class");
const CFStringRef kSecClassGenericPassword = constant(@"genp");
const CFStringRef kSecAttrAccount = constant(@"acct");
const CFStringRef kSecValueData = constant(@"data");
const CFStringRef kSecAttrAccess = constant(@"access");
const CFStringRef kSecAttrAccessible = constant(@"accessible");
const CFStringRef kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly = constant(@"cku");
const CFStringRef kSecReturnData = constant(@"returnData");
const CFStringRef kSecMatchLimit = constant(@"limit");
const CFStringRef kSecMatchLimitOne = constant(@"one");

OSStatus SecAccessCreate(CFStringRef, CFArrayRef, SecAccessRef* access) {
    if (mac().makesAccess)
        *access = reinterpret_cast<SecAccessRef>([[NSObject alloc] init]);
    return mac().makesAccess ? errSecSuccess : -4;
}

OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef*) {
    NSDictionary* item = dictionaryOf(attributes);
    NSArray* keys = [[item allKeys] sortedArrayUsingSelector:@selector(compare:)];
    mac().lastAttributes = [[keys componentsJoinedByString:@" "] UTF8String];
    if (mac().addStatus == errSecSuccess)
        items[accountOf(item)] = [[item objectForKey:@"data"] copy];
    return mac().addStatus;
}

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result) {
    const auto item = items.find(accountOf(dictionaryOf(query)));
    if (item == items.end())
        return errSecItemNotFound;
    *result = [item->second retain];
    return errSecSuccess;
}

OSStatus SecItemDelete(CFDictionaryRef query) {
    const auto item = items.extract(accountOf(dictionaryOf(query)));
    [item.empty() ? nil : item.mapped() release];
    return item.empty() ? errSecItemNotFound : errSecSuccess;
}
