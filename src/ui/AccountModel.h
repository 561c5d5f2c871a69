#pragma once

#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "foundation/TaskRunner.h"
#include "google/GoogleOAuthManager.h"

#include <QObject>
#include <QPointer>

namespace quorvane {

/// Who is signed in, and how they come and go. Main thread; what waits for a person or for Google
/// works in the background.
class AccountModel final : public QObject {
    Q_OBJECT

  public:
    struct Services {
        GoogleOAuthManager& oauth;
        Preferences& preferences;
        Log& log;
        /// Gives a pasted callback to the sign-in that waits; false when it is not the awaited
        /// one. Blocks for moments.
        std::function<bool(const QString& url)> handOverURL;
    };
    struct Account {
        bool isSignedIn = false;
        bool isLapsed = false; ///< somebody was signed in, and Google ended that
        QString email;         ///< empty when nobody was
        bool operator==(const Account&) const = default;
    };

    explicit AccountModel(const Services& services) : s_(services) {}

    const Account& account() const { return account_; }
    bool isSigningIn() const { return isSigningIn_; }
    /// Of the page on which the person signs in; empty when no sign-in is under way.
    const QString& signInAddress() const { return signInAddress_; }

    /// What is stored of the account. Any thread.
    Account read() const;
    void publish(const Account& account);
    /// Google ended the session, or it is good again.
    void setLapsed(bool isLapsed);
    bool isLapsed() const { return isLapsed_; }

    /// A renewal is for more permissions; it differs in what is said.
    void signIn(bool isRenewal);
    void cancel();
    /// Ends a sign-in with the address to which Google sent the person's browser.
    void paste(const QString& address);
    void signOut();

    bool isWorking() { return !(tasks_.isIdle() && pastes_.isIdle()); }

  Q_SIGNALS:
    void changed();
    void failed(const QString& message); ///< an empty one takes an earlier one back
    void signedIn();
    void signedOut();

  private:
    void signInEnded(bool isRenewal, const std::optional<QString>& failure);

    const Services s_;
    const QPointer<AccountModel> self_{this}; ///< none once the model is gone
    Account account_;
    std::atomic<bool> isLapsed_ = false;
    bool isSigningIn_ = false;
    QString signInAddress_;
    std::stop_source signInStop_{std::nostopstate};

    // Last: their work uses the rest. A paste must not wait behind the sign-in that waits for it.
    TaskRunner tasks_;
    TaskRunner pastes_;
};

} // namespace quorvane
