#pragma once

// The part of UserNotifications that the adapters use, as its public documentation describes it.
#import <Foundation/Foundation.h>

typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) { UNAuthorizationOptionAlert = (1 << 2) };

@interface UNMutableNotificationContent : NSObject
@property(copy) NSString* title;
@property(copy) NSString* body;
@end

@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNMutableNotificationContent*)content
                              trigger:(id)trigger;
@end

@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* error))completionHandler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(void (^)(NSError* error))completionHandler;
@end
