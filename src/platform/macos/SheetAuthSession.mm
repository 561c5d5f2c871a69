#include "platform/macos/SheetAuthSession.h"

#include "foundation/MainThread.h"
#include "google/OAuthError.h"
#include "platform/macos/Answer.h"
#include "platform/macos/CocoaText.h"

#import <AppKit/AppKit.h>
#import <AuthenticationServices/AuthenticationServices.h>

@interface QuorvaneSheetAnchor : NSObject <ASWebAuthenticationPresentationContextProviding> {
  @private
    quorvane::Log* log;
    NSWindow* fallback;
}
- (instancetype)initWithLog:(quorvane::Log*)shared;
@end

@implementation QuorvaneSheetAnchor

- (instancetype)initWithLog:(quorvane::Log*)shared {
    self = [super init];
    log = shared;
    return self;
}

- (void)dealloc {
    [fallback release];
    [super dealloc];
}

- (ASPresentationAnchor)presentationAnchorForWebAuthenticationSession:
    (ASWebAuthenticationSession*)session {
    log->log(QStringLiteral("[OAuth] 🪟 presentationAnchor istendi (isMain: %1)")
                 .arg(quorvane::isMainThread() ? u"true" : u"false"));
    NSApplication* application = [NSApplication sharedApplication];
    if (NSWindow* key = [application keyWindow])
        return key;
    for (NSWindow* window in [application windows])
        if ([window isVisible])
            return window;
    if (!fallback) {
        fallback = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                               styleMask:NSWindowStyleMaskBorderless
                                                 backing:NSBackingStoreBuffered
                                                   defer:NO];
        [fallback setReleasedWhenClosed:NO];
    }
    return fallback;
}

@end

namespace quorvane {

namespace {

struct Outcome {
    QUrl callback;                ///< empty when the sheet had none
    std::optional<QString> error; ///< the session's own
};

/// One sheet. It is made, and goes, on the main thread; it may outlive whoever waits for it.
struct Sheet {
    using Started = std::function<void(bool)>;

    explicit Sheet(const Started& tell) : started(&tell) {}

    Answer<bool> start;
    Answer<Outcome> outcome;

    /// `self` by value: a block copies a reference as what it is.
    void open(std::shared_ptr<Sheet> self, const QUrl& page, const QString& scheme, Log& log) {
        NSURL* url = [NSURL URLWithString:stringOf(QString::fromLatin1(page.toEncoded()))];
        session = [[ASWebAuthenticationSession alloc]
                  initWithURL:url
            callbackURLScheme:stringOf(scheme)
            completionHandler:^(NSURL* callback, NSError* error) {
              Outcome end{QUrl(textOf([callback absoluteString])), std::nullopt};
              if (error)
                  end.error = reasonOf(error);
              self->outcome.give(std::move(end));
            }];
        anchor = [[QuorvaneSheetAnchor alloc] initWithLog:&log];
        [session setPrefersEphemeralWebBrowserSession:NO];
        [session setPresentationContextProvider:anchor];
        const bool didStart = [session start];
        const auto teller = started.lock();
        if (*teller)
            (**teller)(didStart);
        start.give(didStart);
    }

    void close() {
        [session cancel];
        [std::exchange(session, nil) release];
        [std::exchange(anchor, nil) release];
    }

    /// Whoever asked has gone.
    void leave() { *started.lock() = nullptr; }

  private:
    ASWebAuthenticationSession* session = nil;
    QuorvaneSheetAnchor* anchor = nil;
    Guarded<const Started*> started; ///< locked while it is told
};

QUrl callbackOf(Sheet& sheet, const std::stop_token& stop) {
    const auto didStart = sheet.start.wait(stop);
    if (!didStart)
        throw Cancelled();
    if (!*didStart)
        throw OAuthError(OAuthError::Case::sessionStartFailed);
    const auto outcome = sheet.outcome.wait(stop);
    if (!outcome)
        throw Cancelled();
    if (outcome->error)
        throw Error(*outcome->error);
    return outcome->callback;
}

} // namespace

QUrl SheetAuthSession::authenticate(const WebAuthRequest& request, const Sheet::Started& started,
                                    std::stop_token stop) {
    const auto sheet = std::make_shared<Sheet>(started);
    const QUrl page = request.page(request.schemeURI);
    const QString scheme = QUrl(request.schemeURI).scheme();
    onMainThread([sheet, page, scheme, &log = log_] {
        @autoreleasepool {
            sheet->open(sheet, page, scheme, log);
        }
    });
    struct Leave {
        const std::shared_ptr<Sheet>& sheet;
        ~Leave() {
            sheet->leave();
            onMainThread([sheet = sheet] { sheet->close(); });
        }
    } const leave{sheet};
    return callbackOf(*sheet, stop);
}

} // namespace quorvane
