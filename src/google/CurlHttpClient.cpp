#include "google/CurlHttpClient.h"

#include "foundation/System.h"
#include "google/GoogleEndpoints.h"
#include "google/RequestBody.h"
#include "google/ResponseReader.h"
#include "google/TransferPatience.h"

#include <algorithm>
#include <set>

#include <curl/curl.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr size_t idleLanesKept = 4;
constexpr long uploadBufferBytes = 2 << 20; // the most that curl takes

struct EasyCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct MultiCleanup {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct ListCleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using EasyHandle = std::unique_ptr<CURL, EasyCleanup>;
using MultiHandle = std::unique_ptr<CURLM, MultiCleanup>;
using HeaderList = std::unique_ptr<curl_slist, ListCleanup>;

/// curl's fixed texts, without ports and timings, so that equal failures have equal texts.
TransportError transportError(CURLcode code, const char* detail = "") {
    const QString reason = QString::fromUtf8(*detail != '\0' ? detail : curl_easy_strerror(code));
    const auto text = [&](const QString& sentence) {
        return TransportError(QStringLiteral("%1 (connection): %2").arg(sentence, reason));
    };
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return TransportError(QStringLiteral("Sunucu adresi bulunamadı (offline): ") + reason);
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
        return text(QStringLiteral("Güvenli bağlantı kurulamadı"));
    case CURLE_COULDNT_CONNECT:
        return text(QStringLiteral("Bağlantı kurulamadı"));
    default:
        return text(QStringLiteral("Bağlantı koptu"));
    }
}

void require(CURLcode code) {
    if (code != CURLE_OK)
        throw transportError(code);
}

void require(CURLMcode code) {
    if (code != CURLM_OK)
        throw TransportError(QStringLiteral("Bağlantı yürütülemedi (connection): ") +
                             QString::fromUtf8(curl_multi_strerror(code)));
}

void requireTrustedTransport(const QUrl& url) {
    if (url.scheme() != u"https" && !(url.scheme() == u"http" && isLoopbackHost(url.host())))
        throw TransportError(QStringLiteral("Güvenli olmayan bağlantı (connection) reddedildi: ") +
                             url.toString(QUrl::RemoveQuery | QUrl::RemoveUserInfo));
}

HeaderList headerList(const HttpRequest& request) {
    HeaderList list;
    const auto append = [&list](const QByteArray& line) {
        if (std::any_of(line.begin(), line.end(), [](char c) { return c >= 0 && c < ' '; }))
            throw TransportError(QStringLiteral("İstek başlığı geçersiz"));
        curl_slist* longer = curl_slist_append(list.get(), line.constData());
        if (longer == nullptr)
            throw std::bad_alloc();
        static_cast<void>(list.release());
        list.reset(longer);
    };
    append("Expect:"); // no pause before a large body
    for (const auto& [name, value] : request.headers)
        append(value.isEmpty() ? name + ';' : name + ": " + value);
    return list;
}

/// A request's body, as fast as its limit allows.
struct BodyFeed {
    RequestBody body;
    const HttpRequest& request;
    UploadLimit& limit;
    std::optional<UploadLimit::Steady::time_point> pausedUntil = {};

    size_t read(char* buffer, size_t room) {
        const auto now = UploadLimit::Steady::now();
        const std::int64_t rate = request.bodyRate ? request.bodyRate() : 0;
        const auto grant =
            limit.take(std::min(room, static_cast<size_t>(body.remaining())), rate, now);
        if (grant.wait.count() == 0)
            return body.read(buffer, grant.bytes).value_or(CURL_READFUNC_ABORT);
        pausedUntil = now + grant.wait;
        return CURL_READFUNC_PAUSE;
    }
};

size_t readBody(char* buffer, size_t unit, size_t count, void* feed) {
    return static_cast<BodyFeed*>(feed)->read(buffer, unit * count);
}

int seekBody(void* feed, curl_off_t offset, int origin) {
    if (origin != SEEK_SET)
        return CURL_SEEKFUNC_CANTSEEK;
    static_cast<BodyFeed*>(feed)->body.seek(offset);
    return CURL_SEEKFUNC_OK;
}

size_t takeBody(char* bytes, size_t unit, size_t count, void* reader) {
    const QByteArrayView part(bytes, static_cast<qsizetype>(unit * count));
    return static_cast<ResponseReader*>(reader)->takeBody(part) ? unit * count
                                                                : CURL_WRITEFUNC_ERROR;
}

size_t takeHeader(char* bytes, size_t unit, size_t count, void* reader) {
    const QByteArrayView line(bytes, static_cast<qsizetype>(unit * count));
    return static_cast<ResponseReader*>(reader)->takeHeaderLine(line) ? unit * count : 0;
}

} // namespace

/// One curl engine with the connections it keeps open. Used by one thread at a time.
class CurlHttpClient::Lane {
  public:
    Lane() {
        static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
        require(ready);
        multi_.reset(curl_multi_init());
        easy_.reset(curl_easy_init());
        if (!multi_ || !easy_)
            throw std::bad_alloc();
    }

    HttpResponse send(const HttpRequest& request, UploadLimit& limit, std::int64_t largestResponse,
                      const std::stop_token& stop) {
        BodyFeed feed{RequestBody(request), request, limit};
        ResponseReader answer(largestResponse);
        const HeaderList headers = headerList(request);
        configure(request, headers.get());
        attachBody(request, feed);
        attachAnswer(answer);

        switch (const CURLcode result = run(request, feed, stop)) {
        case CURLE_OK:
            break;
        case CURLE_PEER_FAILED_VERIFICATION:
            throw transportError(result, detail_);
        default:
            if (feed.body.errorNumber() != 0)
                throw FileError(QStringLiteral("Dosya okunamadı"), *request.bodyFile,
                                feed.body.errorNumber());
            if (answer.isTooLarge())
                throw TransportError(QStringLiteral("Sunucunun yanıtı çok büyük (connection)"));
            throw transportError(result);
        }
        long status = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
        return answer.finish(static_cast<int>(status));
    }

  private:
    /// The transfer is part of the engine for as long as this lives.
    class Attachment {
      public:
        Attachment(CURLM* multi, CURL* easy) : multi_(multi), easy_(easy) {
            require(curl_multi_add_handle(multi, easy));
        }
        ~Attachment() { curl_multi_remove_handle(multi_, easy_); }
        Attachment(const Attachment&) = delete;
        Attachment& operator=(const Attachment&) = delete;

      private:
        CURLM* multi_;
        CURL* easy_;
    };

    template <typename Value>
    void set(CURLoption option, Value value) {
        require(curl_easy_setopt(easy_.get(), option, value));
    }

    void configure(const HttpRequest& request, curl_slist* headers) {
        curl_easy_reset(easy_.get());
        detail_[0] = '\0';
        set(CURLOPT_ERRORBUFFER, detail_);
        set(CURLOPT_URL, request.url.toEncoded(QUrl::RemoveFragment).constData());
        set(CURLOPT_CUSTOMREQUEST, request.method.constData());
        set(CURLOPT_HTTPHEADER, headers);
        set(CURLOPT_USERAGENT, "Quorvane/" QUORVANE_VERSION);
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_FOLLOWLOCATION, 0L);
        set(CURLOPT_SSL_VERIFYPEER, 1L);
        set(CURLOPT_SSL_VERIFYHOST, 2L);
        set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_QUICK_EXIT, 1L); // a stop does not wait for a name server
        // A request is repeated when a connection from an earlier one breaks, whether or not the
        // service had it already.
        set(CURLOPT_FRESH_CONNECT, request.isCreation ? 1L : 0L);
        if (isLoopbackHost(request.url.host()))
            set(CURLOPT_PROXY, "");
        set(CURLOPT_OPENSOCKETFUNCTION, &Lane::openSocket);
        set(CURLOPT_OPENSOCKETDATA, this);
        set(CURLOPT_CLOSESOCKETFUNCTION, &Lane::closeSocket);
        set(CURLOPT_CLOSESOCKETDATA, this);
    }

    void attachBody(const HttpRequest& request, BodyFeed& feed) {
        if (feed.body.size() == 0 && (request.method == "GET" || request.method == "DELETE"))
            return;
        set(CURLOPT_UPLOAD, 1L);
        set(CURLOPT_UPLOAD_BUFFERSIZE, uploadBufferBytes);
        set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(feed.body.size()));
        set(CURLOPT_READFUNCTION, &readBody);
        set(CURLOPT_READDATA, &feed);
        set(CURLOPT_SEEKFUNCTION, &seekBody);
        set(CURLOPT_SEEKDATA, &feed);
    }

    void attachAnswer(ResponseReader& answer) {
        set(CURLOPT_WRITEFUNCTION, &takeBody);
        set(CURLOPT_WRITEDATA, &answer);
        set(CURLOPT_HEADERFUNCTION, &takeHeader);
        set(CURLOPT_HEADERDATA, &answer);
        answer_ = &answer;
    }

    CURLcode run(const HttpRequest& request, BodyFeed& feed, const std::stop_token& stop) {
        const Attachment attachment(multi_.get(), easy_.get());
        const std::stop_callback wake(stop, [this] { curl_multi_wakeup(multi_.get()); });
        TransferPatience patience(request, feed.body.size());
        std::int64_t sent = 0;
        while (true) {
            int running = 0;
            require(curl_multi_perform(multi_.get(), &running));
            const TransferActivity now = activity();
            if (request.onProgress && now.sent != sent)
                request.onProgress(now.sent, feed.body.size());
            sent = now.sent;
            if (running == 0)
                return result();
            if (stop.stop_requested())
                throw Cancelled();
            waitForMore(patience.left(now), feed);
        }
    }

    void waitForMore(UploadLimit::Steady::duration atMost, BodyFeed& feed) {
        // Nothing wakes the engine when the system's own send buffer drains: look once a second.
        auto wait = std::min<UploadLimit::Steady::duration>(atMost, std::chrono::seconds(1));
        if (feed.pausedUntil)
            wait = std::clamp(*feed.pausedUntil - UploadLimit::Steady::now(), {}, wait);
        const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(wait).count();
        require(curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(milliseconds), nullptr));
        if (feed.pausedUntil && UploadLimit::Steady::now() >= *feed.pausedUntil) {
            feed.pausedUntil.reset();
            require(curl_easy_pause(easy_.get(), CURLPAUSE_CONT));
        }
    }

    CURLcode result() {
        int left = 0;
        while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
            if (message->msg == CURLMSG_DONE)
                return message->data.result;
        }
        return CURLE_RECV_ERROR;
    }

    TransferActivity activity() const {
        TransferActivity now;
        curl_off_t sent = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
        now.sent = sent;
        now.received = answer_->received();
        for (const curl_socket_t socket : sockets_)
            now.waitingInSystem += system::unsentBytes(socket);
        return now;
    }

    static curl_socket_t openSocket(void* self, curlsocktype, curl_sockaddr* address) {
        const int socket =
            system::openSocket(address->family, address->socktype, address->protocol).release();
        if (socket < 0)
            return CURL_SOCKET_BAD;
        static_cast<Lane*>(self)->sockets_.insert(socket);
        return socket;
    }

    static int closeSocket(void* self, curl_socket_t socket) {
        static_cast<Lane*>(self)->sockets_.erase(socket);
        return ::close(socket);
    }

    char detail_[CURL_ERROR_SIZE] = "";
    std::set<curl_socket_t> sockets_; // outlives the engine, which closes them
    MultiHandle multi_;
    EasyHandle easy_;
    const ResponseReader* answer_ = nullptr;
};

CurlHttpClient::CurlHttpClient(std::int64_t largestResponse) : largestResponse_(largestResponse) {}

CurlHttpClient::~CurlHttpClient() = default;

HttpResponse CurlHttpClient::send(const HttpRequest& request, std::stop_token stop) {
    if (stop.stop_requested())
        throw Cancelled();
    requireTrustedTransport(request.url);
    std::unique_ptr<Lane> lane = takeLane();
    HttpResponse response = lane->send(request, limit_, largestResponse_, stop);
    giveBack(std::move(lane)); // a lane that threw is closed instead
    return response;
}

std::unique_ptr<CurlHttpClient::Lane> CurlHttpClient::takeLane() {
    const auto idle = idleLanes_.lock();
    if (idle->empty())
        return std::make_unique<Lane>();
    auto lane = std::move(idle->back());
    idle->pop_back();
    return lane;
}

void CurlHttpClient::giveBack(std::unique_ptr<Lane> lane) {
    const auto idle = idleLanes_.lock();
    if (idle->size() < idleLanesKept)
        idle->push_back(std::move(lane));
}

} // namespace quorvane
