#include "emulator/GoogleEmulator.h"

#include "emulator/HttpServer.h"
#include "emulator/Service.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

using namespace emulator;

namespace {

/// Roomy, so that a sender far faster than the hashing does not run into closed windows.
constexpr int receiveBuffer = 4 * 1024 * 1024;
/// Bytes on their way in the system's buffers escape the bandwidth limit, so they are kept few.
constexpr int throttledReceiveBuffer = 32 * 1024;

const Clock& systemClock() {
    static const SystemClock clock;
    return clock;
}

} // namespace

GoogleEmulator::GoogleEmulator(EmulatorOptions options)
    : GoogleEmulator(std::move(options), systemClock()) {}

GoogleEmulator::GoogleEmulator(EmulatorOptions options, const Clock& clock)
    : options_(std::move(options)),
      service_(std::make_unique<Service>(options_, clock)),
      server_(std::make_unique<HttpServer>(
          [this](Exchange& exchange) { service_->handle(exchange); })) {}

GoogleEmulator::~GoogleEmulator() {
    server_->stop();
}

void GoogleEmulator::start() {
    change([](Behaviour&) {}); // lets the server know what it begins with
    server_->start(options_.port);
    options_.port = server_->port();
}

void GoogleEmulator::stop() {
    server_->stop();
    service_->save();
}

int GoogleEmulator::port() const {
    return server_->port();
}

QString GoogleEmulator::baseURL() const {
    return u"http://127.0.0.1:%1"_s.arg(port());
}

void GoogleEmulator::change(const std::function<void(Behaviour&)>& edit) {
    const Behaviour behaviour = service_->with([&](Service::State& state) {
        edit(state.behaviour);
        return state.behaviour;
    });
    server_->setReceiveBuffer(behaviour.uploadBytesPerSecond > 0 ? throttledReceiveBuffer
                                                                 : receiveBuffer);
}

void GoogleEmulator::addDisturbance(const Disturbance& fault) {
    service_->with([&](Service::State& state) { state.faults.add(fault); });
}

void GoogleEmulator::clearDisturbances() {
    service_->with([](Service::State& state) { state.faults.clear(); });
}

TokenPair GoogleEmulator::issueTokens(const QString& scopes) {
    const Scopes granted = scopes.isEmpty() ? allScopes() : scopesFrom(scopes);
    const Date now = service_->now();
    TokenPair pair = service_->with([&](Service::State& state) {
        return state.account.oauth().issue(granted, state.behaviour, now);
    });
    service_->save();
    return pair;
}

void GoogleEmulator::expireAccessTokens() {
    service_->with([](Service::State& state) { state.account.tokens().expireAccess(); });
}

void GoogleEmulator::revokeTokens() {
    service_->with([](Service::State& state) { state.account.tokens().revokeAll(); });
}

QString GoogleEmulator::addAlbum(const QString& title, std::int64_t itemCount, bool isShared,
                                 bool isAppCreated) {
    QString id = service_->with([&](Service::State& state) {
        return state.account.albums().add(title, itemCount, isShared, isAppCreated);
    });
    service_->save();
    return id;
}

std::vector<RecordedRequest> GoogleEmulator::requests() const {
    return service_->with([](const Service::State& state) { return state.log.all(); });
}

std::vector<RecordedRequest> GoogleEmulator::requests(RequestKind kind) const {
    std::vector<RecordedRequest> all = requests();
    std::erase_if(all, [&](const RecordedRequest& request) { return request.kind != kind; });
    return all;
}

int GoogleEmulator::requestCount(RequestKind kind) const {
    return service_->with([&](const Service::State& state) { return state.log.countOf(kind); });
}

bool GoogleEmulator::waitForRequests(RequestKind kind, int count,
                                     std::chrono::milliseconds limit) const {
    return service_->waitForRequests(kind, count, limit);
}

void GoogleEmulator::clearRequests() {
    service_->with([](Service::State& state) { state.log.clear(); });
}

std::vector<StoredMediaItem> GoogleEmulator::mediaItems() const {
    return service_->with(
        [](const Service::State& state) { return state.account.mediaItems().all(); });
}

std::vector<StoredAlbum> GoogleEmulator::albums() const {
    return service_->with([](const Service::State& state) { return state.account.albums().all(); });
}

void GoogleEmulator::deleteMediaItem(const QString& id) {
    service_->with([&](Service::State& state) { state.account.mediaItems().remove(id); });
    service_->save();
}

void GoogleEmulator::deleteAlbum(const QString& id) {
    service_->with([&](Service::State& state) { state.account.albums().remove(id); });
    service_->save();
}

QJsonObject GoogleEmulator::report() const {
    return service_->report();
}

} // namespace quorvane
