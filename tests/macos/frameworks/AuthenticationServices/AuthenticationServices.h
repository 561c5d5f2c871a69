#pragma once

// The part of AuthenticationServices that the adapters use, as its public documentation describes
// it. Instance variables are the stand-in's own.
#import <AppKit/AppKit.h>

typedef NSWindow* ASPresentationAnchor;
typedef void (^ASWebAuthenticationSessionCompletionHandler)(NSURL* callbackURL, NSError* error);
@class ASWebAuthenticationSession;

@protocol ASWebAuthenticationPresentationContextProviding <NSObject>
- (ASPresentationAnchor)presentationAnchorForWebAuthenticationSession:
    (ASWebAuthenticationSession*)session;
@end

@interface ASWebAuthenticationSession : NSObject {
    NSURL* _url;
    ASWebAuthenticationSessionCompletionHandler _handler;
    id _provider;
}
@property(nonatomic, assign) id<ASWebAuthenticationPresentationContextProviding>
    presentationContextProvider;
@property(nonatomic, assign) BOOL prefersEphemeralWebBrowserSession;
- (instancetype)initWithURL:(NSURL*)URL
          callbackURLScheme:(NSString*)callbackURLScheme
          completionHandler:(ASWebAuthenticationSessionCompletionHandler)completionHandler;
- (BOOL)start;
- (void)cancel;
@end
