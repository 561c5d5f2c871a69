#include "platform/linux/BrowserAuthSession.h"

#include "google/OAuthError.h"
#include "google/OAuthMessages.h"
#include "platform/linux/BrowserProcess.h"
#include "platform/linux/CallbackSocket.h"
#include "platform/linux/LoopbackListener.h"
#include "platform/linux/UrlSchemeHandler.h"

#include <algorithm>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr qsizetype longestLine = 64 << 10;

} // namespace

/// By which ways a callback may come.
struct BrowserAuthSession::Ways {
    std::optional<CallbackSocket> socket;
    std::optional<LoopbackListener> listener;
    BrowserProcess browser;
    bool isBrowserShown = false;
    bool isPastingPossible = false; ///< by a person who sees the page's address
};

/// One wait for the callback: whatever comes first of the ways, the browser's failure, the stop
/// request and the end of patience.
class BrowserAuthSession::Wait {
  public:
    Wait(const BrowserAuthSession& session, const QString& scheme, Ways& ways)
        : session_(session),
          scheme_(scheme),
          ways_(ways),
          input_(session.options_.input.value_or(-1)),
          deadline_(Steady::now() + session.options_.patience),
          wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    QUrl run(const std::stop_token& stop) {
        const std::stop_callback onStop(stop, [this] { ::eventfd_write(wake_.get(), 1); });
        std::optional<QUrl> callback;
        while (!callback) {
            enum { wakeSlot, socketSlot, listenerSlot, inputSlot, browserSlot };
            pollfd waiting[] = {{wake_.get(), POLLIN, 0},
                                {ways_.socket ? ways_.socket->descriptor() : -1, POLLIN, 0},
                                {ways_.listener ? ways_.listener->descriptor() : -1, POLLIN, 0},
                                {input_, POLLIN, 0},
                                {ways_.browser.descriptor(), POLLIN, 0}};
            ::poll(waiting, std::size(waiting), remainingMilliseconds());
            if (stop.stop_requested())
                throw Cancelled();
            if (waiting[socketSlot].revents != 0)
                callback = fromSocket();
            else if (waiting[listenerSlot].revents != 0)
                callback = ways_.listener->receive();
            else if (waiting[inputSlot].revents != 0)
                callback = fromInput();
            else if (waiting[browserSlot].revents != 0)
                ways_.isBrowserShown = ways_.browser.succeeded();
            else if (Steady::now() >= deadline_)
                throw Error(QStringLiteral("OAuth: Giriş zamanında tamamlanmadı"));
            if (!callback && isAbandoned())
                throw OAuthError(OAuthError::Case::sessionStartFailed);
        }
        return *callback;
    }

  private:
    using Steady = std::chrono::steady_clock;

    /// Nobody is left to answer.
    bool isAbandoned() const {
        return !ways_.isBrowserShown && !ways_.isPastingPossible && input_ < 0;
    }

    int remainingMilliseconds() const {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Steady::now());
        return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }

    std::optional<QUrl> fromSocket() {
        const auto visit = ways_.socket->receive(wake_.get());
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
        if (ways_.listener
                ? ways_.listener->isCallback(url)
                : url.scheme().compare(scheme_, Qt::CaseInsensitive) == 0 && oauth::isAnswer(url))
            return url;
        session_.log_.log(
            QStringLiteral("[OAuth] ⚠️ Beklenmeyen geri dönüş adresi yok sayıldı"));
        return std::nullopt;
    }

    const BrowserAuthSession& session_;
    const QString scheme_;
    Ways& ways_;
    int input_;
    QByteArray typed_;
    const Steady::time_point deadline_;
    const FileDescriptor wake_;
};

BrowserAuthSession::BrowserAuthSession(DesktopEnvironment environment, Options options,
                                       Console& console, Log& log)
    : environment_(std::move(environment)), options_(options), console_(console), log_(log) {}

QUrl BrowserAuthSession::authenticate(const WebAuthRequest& request,
                                      const std::function<void(bool)>& started,
                                      std::stop_token stop) {
    const QString scheme = QUrl(request.schemeURI).scheme();
    Ways ways;
    prepare(request, scheme, ways);
    const bool canReturn = !request.prefersLoopback || ways.listener;
    QUrl page;
    if (canReturn) {
        page = request.page(ways.listener ? ways.listener->redirectURI() : request.schemeURI);
        ways.isPastingPossible = request.isAddressShown && ways.socket;
        ways.isBrowserShown =
            (ways.listener || ways.socket) && environment_.hasDisplay && ways.browser.open(page);
    }
    const bool canStart =
        canReturn && (ways.isBrowserShown || ways.isPastingPossible || options_.input);
    started(canStart);
    if (!canStart)
        throw OAuthError(OAuthError::Case::sessionStartFailed);
    if (options_.input) {
        console_.print(QStringLiteral("Giriş için bu adresi tarayıcıda açın:"));
        console_.print(QString::fromUtf8(page.toEncoded()));
        console_.print(QStringLiteral("Tarayıcı buraya dönmezse, yönlendirildiğiniz adresi "
                                      "yapıştırıp Enter'a basın:"));
    }
    return Wait(*this, scheme, ways).run(stop);
}

/// What fails here is told and left out: another way may be enough.
void BrowserAuthSession::prepare(const WebAuthRequest& request, const QString& scheme, Ways& ways) {
    const auto attempt = [this](const auto& step) {
        try {
            step();
        } catch (const Error& error) {
            log_.log(QStringLiteral("[OAuth] ⚠️ Tarayıcı dönüşü hazırlanamadı: ") +
                     error.localizedDescription());
        }
    };
    if (request.prefersLoopback)
        attempt([&] { ways.listener.emplace(request.state); });
    else
        attempt([&] { installUrlSchemeHandler(scheme, environment_); });
    attempt([&] { ways.socket.emplace(environment_.signInSocket()); });
}

bool handOverURL(const DesktopEnvironment& environment, const QString& url) {
    try {
        return CallbackSocket::handOver(environment.signInSocket(), url);
    } catch (const FileError&) {
        return false; // a path too long for a socket: nobody can wait there
    }
}

} // namespace quorvane
