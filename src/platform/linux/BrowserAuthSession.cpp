#include "platform/linux/BrowserAuthSession.h"

#include "google/OAuthError.h"
#include "google/OAuthMessages.h"
#include "platform/linux/BrowserProcess.h"
#include "platform/linux/CallbackSocket.h"
#include "platform/linux/UrlSchemeHandler.h"

#include <QUrlQuery>

#include <algorithm>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr qsizetype longestLine = 64 << 10;

/// Answers with a code, and refusals with an error, end a sign-in; other URLs are stray.
bool isCallback(const QUrl& url, const QString& scheme) {
    return url.scheme().compare(scheme, Qt::CaseInsensitive) == 0 &&
           (oauth::authCode(url) || QUrlQuery(url).hasQueryItem(QStringLiteral("error")));
}

} // namespace

/// One wait for the callback: whatever comes first of the socket, the input, the browser's
/// failure, the stop request and the end of patience.
class BrowserAuthSession::Wait {
  public:
    Wait(const BrowserAuthSession& session, const QString& scheme, CallbackSocket* socket,
         BrowserProcess& browser, bool browserShown)
        : session_(session),
          scheme_(scheme),
          socket_(socket),
          browser_(browser),
          browserShown_(browserShown),
          input_(session.options_.input.value_or(-1)),
          deadline_(Steady::now() + session.options_.patience),
          wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    QUrl run(const std::stop_token& stop) {
        const std::stop_callback onStop(stop, [this] { ::eventfd_write(wake_.get(), 1); });
        std::optional<QUrl> callback;
        while (!callback) {
            enum { wakeSlot, socketSlot, inputSlot, browserSlot };
            pollfd waiting[] = {{wake_.get(), POLLIN, 0},
                                {socket_ != nullptr ? socket_->descriptor() : -1, POLLIN, 0},
                                {input_, POLLIN, 0},
                                {browser_.descriptor(), POLLIN, 0}};
            ::poll(waiting, std::size(waiting), remainingMilliseconds());
            if (stop.stop_requested())
                throw Cancelled();
            if (waiting[socketSlot].revents != 0)
                callback = fromSocket();
            else if (waiting[inputSlot].revents != 0)
                callback = fromInput();
            else if (waiting[browserSlot].revents != 0)
                browserShown_ = browser_.succeeded();
            else if (Steady::now() >= deadline_)
                throw Error(QStringLiteral("OAuth: Giriş zamanında tamamlanmadı"));
            if (!callback && !browserShown_ && input_ < 0) // nobody is left to answer
                throw OAuthError(OAuthError::Case::sessionStartFailed);
        }
        return *callback;
    }

  private:
    using Steady = std::chrono::steady_clock;

    int remainingMilliseconds() const {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Steady::now());
        return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }

    std::optional<QUrl> fromSocket() {
        const auto visit = socket_->receive(wake_.get());
        if (!visit)
            return std::nullopt;
        if (visit->overtakes)
            throw Error(QStringLiteral("OAuth: Yeni bir giriş başlatıldı, bu giriş kapatıldı"));
        auto callback = accepted(visit->url);
        visit->answer(callback.has_value());
        return callback;
    }

    std::optional<QUrl> fromInput() {
        char bytes[4096];
        const ssize_t size = ::read(input_, bytes, sizeof bytes);
        if (size > 0) {
            typed_.append(bytes, size);
        } else {
            input_ = -1;
            typed_.append('\n');
        }
        for (auto end = typed_.indexOf('\n'); end >= 0; end = typed_.indexOf('\n')) {
            const QString line = QString::fromUtf8(typed_.left(end)).trimmed();
            typed_.remove(0, end + 1);
            if (line.isEmpty())
                continue;
            if (auto callback = accepted(line))
                return callback;
            session_.console_.print(QStringLiteral("Bu adres beklenen geri dönüş adresi değil, "
                                                   "yeniden yapıştırın:"));
        }
        if (typed_.size() > longestLine)
            typed_.clear();
        return std::nullopt;
    }

    std::optional<QUrl> accepted(const QString& text) {
        const QUrl url(text);
        if (isCallback(url, scheme_))
            return url;
        session_.log_.log(
            QStringLiteral("[OAuth] ⚠️ Beklenmeyen geri dönüş adresi yok sayıldı"));
        return std::nullopt;
    }

    const BrowserAuthSession& session_;
    const QString scheme_;
    CallbackSocket* socket_;
    BrowserProcess& browser_;
    bool browserShown_;
    int input_;
    QByteArray typed_;
    const Steady::time_point deadline_;
    const FileDescriptor wake_;
};

BrowserAuthSession::BrowserAuthSession(DesktopEnvironment environment, Options options,
                                       Console& console, Log& log)
    : environment_(std::move(environment)), options_(options), console_(console), log_(log) {}

QUrl BrowserAuthSession::authenticate(const QUrl& url, const QString& callbackScheme,
                                      const std::function<void(bool)>& started,
                                      std::stop_token stop) {
    // Pasting the URL may work where these do not.
    const auto prepare = [this](const auto& step) {
        try {
            step();
        } catch (const FileError& error) {
            log_.log(QStringLiteral("[OAuth] ⚠️ Tarayıcı dönüşü hazırlanamadı: ") +
                     error.localizedDescription());
        }
    };
    std::optional<CallbackSocket> socket;
    prepare([&] { installUrlSchemeHandler(callbackScheme, environment_); });
    prepare([&] { socket.emplace(environment_.signInSocket()); });
    BrowserProcess browser;
    const bool shown = socket && environment_.hasDisplay && browser.open(url);
    started(shown || options_.input);
    if (!shown && !options_.input)
        throw OAuthError(OAuthError::Case::sessionStartFailed);
    if (options_.input) {
        console_.print(QStringLiteral("Giriş için bu adresi tarayıcıda açın:"));
        console_.print(QString::fromUtf8(url.toEncoded()));
        console_.print(QStringLiteral("Tarayıcı buraya dönmezse, yönlendirildiğiniz adresi "
                                      "yapıştırıp Enter'a basın:"));
    }
    return Wait(*this, callbackScheme, socket ? &*socket : nullptr, browser, shown).run(stop);
}

bool handOverURL(const DesktopEnvironment& environment, const QString& url) {
    try {
        return CallbackSocket::handOver(environment.signInSocket(), url);
    } catch (const FileError&) {
        return false; // a path too long for a socket: nobody can wait there
    }
}

} // namespace quorvane
