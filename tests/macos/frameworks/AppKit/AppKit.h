#pragma once

// The part of AppKit that the adapters use, as its public documentation describes it.
#import <Foundation/Foundation.h>

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1,
};
typedef NS_ENUM(NSUInteger, NSWindowStyleMask) { NSWindowStyleMaskBorderless = 0 };
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
typedef NSString* NSAppearanceName;
extern NSAppearanceName const NSAppearanceNameAqua;
extern NSAppearanceName const NSAppearanceNameDarkAqua;

@interface NSWindow : NSObject
@property(getter=isVisible, readonly) BOOL visible;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
@end

@interface NSAppearance : NSObject
+ (NSAppearance*)appearanceNamed:(NSAppearanceName)name;
@end

@interface NSApplication : NSObject
+ (NSApplication*)sharedApplication;
@property(readonly, assign) NSWindow* keyWindow;
@property(readonly, copy) NSArray<NSWindow*>* windows;
@property(strong) NSAppearance* appearance;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
@end

@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
- (BOOL)openURL:(NSURL*)url;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
@end
