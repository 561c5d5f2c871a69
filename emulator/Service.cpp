#include "emulator/Service.h"

#include "emulator/BodyReader.h"
#include "emulator/Report.h"
#include "emulator/UploadSession.h"

#include <QJsonDocument>

#include <optional>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr std::int64_t largestStateFile = std::int64_t(1) << 30;
/// What a fault answers that names a status and no body.
Answer plainFailure(RequestKind kind, int status) {
    if (kind == RequestKind::token || kind == RequestKind::revoke)
        return oauthError(status == 400 ? u"invalid_grant"_s : u"internal_failure"_s,
                          u"Bad Request"_s, status);
    return apiError(status, u"The service has been told to answer so."_s);
}

/// Takes the bytes of an upload that nobody knows.
struct Nowhere final : ByteSink {
    void add(QByteArrayView /*bytes*/) override {}
};

} // namespace

Service::Service(const EmulatorOptions& options, const Clock& clock)
    : options_(options), clock_(clock), state_(options) {
    load();
}

void Service::load() {
    if (options_.stateFile.empty() || !std::filesystem::exists(options_.stateFile))
        return;
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(readWholeFile(options_.stateFile, largestStateFile), &error);
    if (!document.isObject())
        throw Error(u"Durum dosyası okunamadı: "_s + pathText(options_.stateFile) + u" ("_s +
                    error.errorString() + u')');
    with([&](State& state) { state.account.restore(document.object()); });
}

void Service::save() {
    if (options_.stateFile.empty())
        return;
    const std::lock_guard lock(saveMutex_);
    const QJsonObject object = with([](const State& state) { return state.account.toJson(); });
    replaceFile(options_.stateFile, QJsonDocument(object).toJson(QJsonDocument::Compact));
}

void Service::handle(Exchange& exchange) noexcept {
    try {
        carry(exchange);
    } catch (const std::exception& error) {
        exchange.answer(apiError(500, describe(error)), std::nullopt);
    }
}

void Service::carry(Exchange& exchange) {
    Call call{.request = exchange.head()};
    call.request.kind = kindOf(call.request.method, call.request.path);
    const Plan plan = arrive(call.request.kind);
    const Disturbance& fault = plan.fault;

    const std::unique_lock turn = takeSession(call);
    if (!readUpload(exchange, call, plan)) {
        call.upload.reset();
        record(call);
        exchange.drop();
        return;
    }
    Answer answer = answerTo(call, plan);
    answer.date = now() + plan.behaviour.clockAhead;
    call.upload.reset(); // its file is kept or gone before the client hears of it
    if (!fault.stall) {
        call.request.status = answer.status;
        call.request.answer = answer.body;
    }
    record(call);
    if (fault.stall)
        exchange.waitForEnd();
    if (fault.stall || !exchange.pause(plan.latency() + fault.delay))
        exchange.drop();
    else
        exchange.answer(answer, fault.dropAnswerAfter);
}

/// The request's body, wherever it belongs. False when it is not there as a whole.
bool Service::readUpload(Exchange& exchange, Call& call, const Plan& plan) {
    if (plan.kind != RequestKind::upload)
        return readBody(exchange, call, nullptr, plan.behaviour, plan.fault);
    if (call.sessionID().isEmpty()) {
        call.upload = std::make_shared<UploadBody>(options_.storeFolder, options_.keptUploadBytes);
        const bool isWhole =
            readBody(exchange, call, call.upload.get(), plan.behaviour, plan.fault);
        if (!call.commands("start"))
            call.upload->sumUp(call);
        return isWhole;
    }
    if (!call.session) {
        Nowhere nowhere;
        return readBody(exchange, call, &nowhere, plan.behaviour, plan.fault);
    }
    if (call.commands("upload"))
        call.session->begin(call.request.header("X-Goog-Upload-Offset").toLongLong());
    const bool isWhole = readBody(exchange, call, call.session.get(), plan.behaviour, plan.fault);
    call.session->end(isWhole);
    return isWhole;
}

/// Takes the turn at the session that the call goes on with, if there is one, until it is answered.
std::unique_lock<std::mutex> Service::takeSession(Call& call) {
    const QString id = call.request.kind == RequestKind::upload ? call.sessionID() : QString();
    if (!id.isEmpty())
        call.session = with([&](State& state) { return state.account.uploads().session(id); });
    return call.session ? std::unique_lock(call.session->turn) : std::unique_lock<std::mutex>();
}

void Service::record(const Call& call) {
    with([&](State& state) { state.log.add(call.request); });
}

std::chrono::milliseconds Service::Plan::latency() const {
    const auto own = behaviour.latencyOf.find(kind);
    return own == behaviour.latencyOf.end() ? behaviour.latency : own->second;
}

Service::Plan Service::arrive(RequestKind kind) {
    Plan plan = with([&](State& state) {
        state.log.count(kind);
        const Behaviour& behaviour = state.behaviour;
        return Plan{kind, behaviour,
                    state.faults.next(kind, behaviour.failingPercent).value_or(Disturbance{})};
    });
    arrived_.notify_all();
    return plan;
}

Answer Service::answerTo(const Call& call, const Plan& plan) {
    const Disturbance& fault = plan.fault;
    const bool isReplaced = fault.status || fault.body;
    Answer answer;
    if (fault.carriedOut || (!isReplaced && !fault.stall))
        answer = carryOut(call, plan);
    if (!isReplaced)
        return answer;
    const int status = fault.status.value_or(200);
    Answer failure = plainFailure(call.request.kind, status);
    if (fault.body)
        failure = {.status = status, .contentType = fault.contentType, .body = *fault.body};
    if (fault.retryAfter)
        failure.headers = {{"Retry-After", QByteArray::number(fault.retryAfter->count())}};
    return failure;
}

Answer Service::carryOut(const Call& call, const Plan& plan) {
    if (call.request.kind == RequestKind::report)
        return jsonAnswer(report());
    const Date time = now();
    Answer answer =
        with([&](State& state) { return state.account.answer(call, plan.behaviour, time); });
    if (changesAccount(call.request.kind))
        save();
    return answer;
}

bool Service::waitForRequests(RequestKind kind, int count, std::chrono::milliseconds limit) const {
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, limit, [&] { return state_.log.countOf(kind) >= count; });
}

QJsonObject Service::report() const {
    return with([](const State& state) { return reportOf(state.log, state.account); });
}

} // namespace quorvane::emulator
