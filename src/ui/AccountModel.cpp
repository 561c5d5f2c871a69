#include "ui/AccountModel.h"

#include "foundation/MainThread.h"
#include "google/OAuthMessages.h"

namespace quorvane {

AccountModel::Account AccountModel::read() const {
    const bool hasEnded = isLapsed_;
    Account account{s_.oauth.isSignedIn() && !hasEnded, hasEnded, {}};
    if (account.isSignedIn || hasEnded)
        account.email = s_.oauth.email().value_or(QString());
    return account;
}

void AccountModel::publish(const Account& account) {
    if (account == account_)
        return;
    account_ = account;
    Q_EMIT changed();
}

void AccountModel::setLapsed(bool isLapsed) {
    isLapsed_ = isLapsed;
    if (isLapsed)
        publish({false, true, account_.email});
}

void AccountModel::signIn(bool isRenewal) {
    if (isSigningIn_)
        return;
    Q_EMIT failed({});
    isSigningIn_ = true;
    Q_EMIT changed();
    signInStop_ = std::stop_source();
    tasks_.post([this, isRenewal, source = signInStop_](const std::stop_token& end) {
        const std::stop_callback onEnd(end, [source]() mutable { source.request_stop(); });
        std::optional<QString> failure;
        bool mayListAlbums = true;
        try {
            const auto showPage = [self = self_](const QUrl& page) {
                onMainThread([self, address = QString::fromUtf8(page.toEncoded())] {
                    if (!self)
                        return;
                    self->signInAddress_ = address;
                    Q_EMIT self->changed();
                });
            };
            mayListAlbums = s_.oauth.signIn(source.get_token(), showPage).mayListAlbums;
        } catch (const Cancelled&) {
            failure = QString(); // the person's own decision: nothing to report
        } catch (const std::exception& error) {
            failure = describe(error);
        }
        onMainThread([self = self_, isRenewal, failure, mayListAlbums] {
            if (!self)
                return;
            if (!mayListAlbums)
                Q_EMIT self->failed(oauth::readingDeclined);
            self->signInEnded(isRenewal, failure);
        });
    });
}

/// An empty failure is the person's own decision.
void AccountModel::signInEnded(bool isRenewal, const std::optional<QString>& failure) {
    signInAddress_.clear();
    isSigningIn_ = false;
    Q_EMIT changed();
    if (failure && failure->isEmpty())
        return;
    if (failure) {
        s_.log.log((isRenewal ? QStringLiteral("[MenuBarViewModel] Yeniden yetkilendirme hatası: ")
                              : QStringLiteral("[MenuBarViewModel] Giriş hatası: ")) +
                   *failure);
        Q_EMIT failed((isRenewal ? QStringLiteral("Yetkilendirme başarısız: ")
                                 : QStringLiteral("Giriş başarısız: ")) +
                      *failure);
        return;
    }
    if (isRenewal)
        s_.log.log(QStringLiteral("[MenuBarViewModel] Yeniden yetkilendirme başarılı"));
    Q_EMIT signedIn();
}

void AccountModel::cancel() {
    signInStop_.request_stop();
}

void AccountModel::paste(const QString& address) {
    if (!isSigningIn_)
        return;
    pastes_.post([this, address = address.trimmed()](const std::stop_token&) {
        if (s_.handOverURL(address))
            return;
        onMainThread([self = self_] {
            if (self && self->isSigningIn_)
                Q_EMIT self->failed(QStringLiteral("Bu adres beklenen geri dönüş adresi değil"));
        });
    });
}

void AccountModel::signOut() {
    cancel();
    tasks_.post([this](const std::stop_token& end) {
        try {
            s_.oauth.signOut(end);
            s_.preferences.removeDamaged();
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Çıkış hatası: ") +
                       error.localizedDescription());
            return;
        }
        s_.log.log(QStringLiteral("[MenuBarViewModel] Çıkış yapıldı"));
        onMainThread([self = self_] {
            if (self)
                Q_EMIT self->signedOut();
        });
    });
}

} // namespace quorvane
