#pragma once

// The part of the Security framework that the adapters use, as its public documentation describes
// it.
#include <CoreServices/CoreServices.h>

typedef struct OpaqueSecAccessRef* SecAccessRef;
enum { errSecSuccess = 0, errSecItemNotFound = -25300 };

#ifdef __cplusplus
extern "C" {
#endif
extern const CFStringRef kSecClass;
extern const CFStringRef kSecClassGenericPassword;
extern const CFStringRef kSecAttrAccount;
extern const CFStringRef kSecValueData;
extern const CFStringRef kSecAttrAccess;
extern const CFStringRef kSecAttrAccessible;
extern const CFStringRef kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly;
extern const CFStringRef kSecReturnData;
extern const CFStringRef kSecMatchLimit;
extern const CFStringRef kSecMatchLimitOne;
OSStatus SecAccessCreate(CFStringRef descriptor, CFArrayRef trustedlist, SecAccessRef* accessRef);
OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* result);
OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);
OSStatus SecItemDelete(CFDictionaryRef query);
#ifdef __cplusplus
}
#endif
