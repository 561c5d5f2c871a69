#include "macos/StandInSystem.h"
#include "macos/StandInPhotos.h"

#import <AppKit/AppKit.h>
#import <AuthenticationServices/AuthenticationServices.h>
#import <UserNotifications/UserNotifications.h>
#import <os/log.h>

#include <Block.h>

#include <cstdarg>
#include <cstdio>

using quorvane::test::StandInPhotos;
using quorvane::test::StandInSystem;

StandInSystem& StandInSystem::shared() {
    static StandInSystem system;
    return system;
}

namespace {

StandInSystem& mac() {
    return StandInSystem::shared();
}

NSString* stringOf(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

} // namespace

// Apple events.

@implementation NSAppleScript (AppleEvents)
- (instancetype)initWithSource:(NSString*)source {
    mac().programs.push_back([source UTF8String]);
    if (mac().compiles)
        return [self init];
    [self release];
    return nil;
}
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary**)error {
    if (mac().scriptError.empty())
        return [[[NSAppleEventDescriptor alloc] init] autorelease];
    *error = @{@"NSAppleScriptErrorMessage" : stringOf(mac().scriptError)};
    return nil;
}
@end

@implementation NSAppleEventDescriptor (AppleEvents)
- (NSString*)stringValue {
    return stringOf(mac().scriptResult);
}
@end

// The sign-in sheet.

@implementation ASWebAuthenticationSession
@synthesize presentationContextProvider = _provider;
- (instancetype)initWithURL:(NSURL*)url
          callbackURLScheme:(NSString*)scheme
          completionHandler:(ASWebAuthenticationSessionCompletionHandler)handler {
    self = [super init];
    _url = [url retain];
    _handler = Block_copy(handler);
    return self;
}
- (void)dealloc {
    [_url release];
    Block_release(_handler);
    [super dealloc];
}
@dynamic prefersEphemeralWebBrowserSession;
- (void)setPrefersEphemeralWebBrowserSession:(BOOL)prefers {
}
- (BOOL)start {
    if (!mac().sheetStarts)
        return NO;
    [_provider presentationAnchorForWebAuthenticationSession:self];
    if (!mac().answers)
        return YES;
    ASWebAuthenticationSessionCompletionHandler handler = Block_copy(_handler);
    StandInPhotos::shared().post([handler] { // on a thread that nobody knows
        @autoreleasepool {
            NSError* error =
                mac().sheetError.empty()
                    ? nil
                    : [NSError errorWithDomain:@"ASWebAuthenticationSessionErrorDomain"
                                          code:1
                                      userInfo:@{
                                          NSLocalizedDescriptionKey : stringOf(mac().sheetError)
                                      }];
            handler(mac().callback.empty() ? nil : [NSURL URLWithString:stringOf(mac().callback)],
                    error);
            Block_release(handler);
        }
    });
    return YES;
}
- (void)cancel {
    mac().wasCancelled = true;
}
@end

// AppKit.

NSAppearanceName const NSAppearanceNameAqua = @"NSAppearanceNameAqua";
NSAppearanceName const NSAppearanceNameDarkAqua = @"NSAppearanceNameDarkAqua";

@implementation NSWindow
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)flag {
    return [super init];
}
@dynamic visible, releasedWhenClosed; // never asked
- (void)setReleasedWhenClosed:(BOOL)releases {
}
@end

@implementation NSAppearance
+ (NSAppearance*)appearanceNamed:(NSAppearanceName)name {
    mac().appearance = [name UTF8String];
    return [[[self alloc] init] autorelease];
}
@end

@implementation NSApplication
+ (NSApplication*)sharedApplication {
    static NSApplication* application = [[self alloc] init];
    return application;
}
- (NSWindow*)keyWindow {
    return nil;
}
- (NSArray*)windows {
    return [NSArray array];
}
@dynamic appearance;
- (void)setAppearance:(NSAppearance*)appearance {
    if (!appearance)
        mac().appearance.clear();
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    mac().activationPolicy = static_cast<int>(policy);
    return YES;
}
@end

@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
    static NSWorkspace* workspace = [[self alloc] init];
    return workspace;
}
- (BOOL)accessibilityDisplayShouldReduceMotion {
    return YES;
}
- (BOOL)openURL:(NSURL*)url {
    mac().opened.push_back([[url absoluteString] UTF8String]);
    return ![url isFileURL];
}
- (void)activateFileViewerSelectingURLs:(NSArray*)urls {
    mac().opened.push_back([[[urls objectAtIndex:0] absoluteString] UTF8String]);
}
@end

// Never reached: a test is no bundle.
#pragma clang diagnostic ignored "-Wincomplete-implementation"
@implementation UNMutableNotificationContent
@dynamic title, body;
@end
@implementation UNNotificationRequest
@end
@implementation UNUserNotificationCenter
@end

// The log, the Trash.

os_log_t os_log_create(const char* subsystem, const char* category) {
    mac().logged.push_back(std::string(subsystem) + ' ' + category);
    return nullptr;
}

void os_log(os_log_t, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    mac().logged.push_back(std::string(format) + ' ' + va_arg(arguments, const char*));
    va_end(arguments);
}

@implementation NSFileManager (Trash)
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)result error:(NSError**)error {
    NSString* place =
        [stringOf(mac().trash) stringByAppendingPathComponent:[[url path] lastPathComponent]];
    if (std::rename([[url path] UTF8String], [place UTF8String]) != 0) {
        *error = [NSError errorWithDomain:NSCocoaErrorDomain code:512 userInfo:nil];
        return NO;
    }
    *result = [NSURL fileURLWithPath:place];
    return YES;
}
@end
