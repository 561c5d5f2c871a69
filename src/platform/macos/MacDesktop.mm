#include "platform/macos/MacDesktop.h"

#include "foundation/File.h"
#include "platform/macos/CocoaText.h"

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

namespace quorvane {

void MacDesktop::notify(const Notice& notice) {
    @autoreleasepool {
        if (![[NSBundle mainBundle] bundleIdentifier])
            return; // the centre knows bundles only
        auto* content = [[[UNMutableNotificationContent alloc] init] autorelease];
        [content setTitle:stringOf(notice.title)];
        [content setBody:stringOf(notice.text)];
        UNNotificationRequest* request =
            [UNNotificationRequest requestWithIdentifier:[[NSUUID UUID] UUIDString]
                                                 content:content
                                                 trigger:nil];
        UNUserNotificationCenter* centre = [UNUserNotificationCenter currentNotificationCenter];
        [request retain]; // until the answer
        [centre requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                              completionHandler:^(BOOL granted, NSError*) {
                                if (granted)
                                    [centre addNotificationRequest:request
                                             withCompletionHandler:nil];
                                [request release];
                              }];
    }
}

void MacDesktop::open(const std::filesystem::path& file) {
    @autoreleasepool {
        if (![[NSWorkspace sharedWorkspace]
                openURL:[NSURL fileURLWithPath:stringOf(pathText(file))]])
            log_.log(QStringLiteral("[Desktop] ⚠️ Dosya açılamadı: ") + pathText(file));
    }
}

void MacDesktop::reveal(const std::filesystem::path& file) {
    @autoreleasepool {
        NSURL* original = [NSURL fileURLWithPath:stringOf(pathText(file))];
        [[NSWorkspace sharedWorkspace]
            activateFileViewerSelectingURLs:[NSArray arrayWithObject:original]];
    }
}

void MacDesktop::becomeAccessory() {
    [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void MacDesktop::openPrivacySettings() {
    @autoreleasepool {
        NSURL* pane = [NSURL URLWithString:@"x-apple.systempreferences:com.apple.preference."
                                           @"security?Privacy_Photos"];
        if (pane && ![[NSWorkspace sharedWorkspace] openURL:pane])
            log_.log(QStringLiteral("[Desktop] ⚠️ Sistem Ayarları açılamadı"));
    }
}

void MacDesktop::useAppearance(AppTheme theme) {
    @autoreleasepool {
        NSAppearanceName name =
            theme == AppTheme::dark ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua;
        [[NSApplication sharedApplication]
            setAppearance:theme == AppTheme::system ? nil : [NSAppearance appearanceNamed:name]];
    }
}

bool MacDesktop::reducesMotion() {
    @autoreleasepool {
        return [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion];
    }
}

} // namespace quorvane
