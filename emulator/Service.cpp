#include "emulator/Service.h"

#include "emulator/BodyReader.h"

#include <QJsonDocument>

#include <memory>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr std::int64_t largestStateFile = std::int64_t(1) << 30;
constexpr std::int64_t formatBytes = 64; ///< of an upload's start, to tell its format

QJsonObject reportOf(const StoredMediaItem& item) {
    return {{u"id"_s, item.id},
            {u"filename"_s, item.filename},
            {u"mimeType"_s, item.mimeType},
            {u"sha256"_s, QString::fromLatin1(item.sha256)},
            {u"size"_s, static_cast<qint64>(item.size)},
            {u"albumIds"_s, QJsonArray::fromStringList(item.albumIds)}};
}

QJsonObject reportOf(const StoredAlbum& album) {
    return {{u"id"_s, album.id},
            {u"title"_s, album.title},
            {u"itemCount"_s, static_cast<qint64>(album.itemCount)},
            {u"isShared"_s, album.isShared}};
}

template <typename Values>
QJsonArray reportOfAll(const Values& values) {
    QJsonArray array;
    for (const auto& value : values)
        array.append(reportOf(value));
    return array;
}

} // namespace

Service::Service(const EmulatorOptions& options, const Clock& clock)
    : options_(options), clock_(clock), state_(options) {}

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
        exchange.answer(apiError(500, u"INTERNAL"_s, describe(error)), std::nullopt);
    }
}

void Service::carry(Exchange& exchange) {
    Call call{.request = exchange.head(), .uploadStart = {}};
    call.request.kind = kindOf(call.request.method, call.request.path);
    const Plan plan = arrive(call.request.kind);
    const Fault& fault = plan.fault;

    if (!receive(exchange, call, plan)) {
        with([&](State& state) { state.log.add(call.request); });
        exchange.drop();
        return;
    }
    const Answer answer = answerTo(call, plan);
    if (!fault.stall) {
        call.request.status = answer.status;
        call.request.answer = answer.body;
    }
    with([&](State& state) { state.log.add(call.request); });
    if (fault.stall)
        exchange.waitForEnd();
    if (fault.stall || !exchange.pause(plan.behaviour.latency + fault.delay))
        exchange.drop();
    else
        exchange.answer(answer, fault.dropAnswerAfter);
}

Service::Plan Service::arrive(RequestKind kind) {
    const Plan plan = with([&](State& state) {
        state.log.count(kind);
        return Plan{state.behaviour, state.faults.next(kind).value_or(Fault{})};
    });
    arrived_.notify_all();
    return plan;
}

bool Service::receive(Exchange& exchange, Call& call, const Plan& plan) const {
    std::unique_ptr<UploadBody> upload;
    if (call.request.kind == RequestKind::upload)
        upload = std::make_unique<UploadBody>(options_.storeFolder,
                                              std::max(formatBytes, options_.keptUploadBytes));
    const BodyEnd end = readBody(exchange, call, upload.get(), plan.behaviour, plan.fault);
    if (upload) {
        call.request.bodySha256 = upload->finish();
        call.uploadStart = upload->start();
        call.request.body = upload->start().first(
            std::min<qsizetype>(upload->start().size(), options_.keptUploadBytes));
        if (end == BodyEnd::complete)
            upload->keep(call.request.bodySha256,
                         QUrl::fromPercentEncoding(call.request.header("X-Goog-Upload-File-Name")));
    }
    return end == BodyEnd::complete;
}

Answer Service::answerTo(const Call& call, const Plan& plan) {
    const Fault& fault = plan.fault;
    const bool isReplaced = fault.status || fault.body;
    Answer answer;
    if (fault.carriedOut || (!isReplaced && !fault.stall))
        answer = carryOut(call, plan);
    if (!isReplaced)
        return answer;
    answer.status = fault.status.value_or(200);
    answer.location.clear();
    if (fault.body) {
        answer.body = *fault.body;
        answer.contentType = fault.contentType;
    } else {
        answer = apiError(answer.status, u"UNKNOWN"_s, u"The service is told to answer so."_s);
    }
    return answer;
}

Answer Service::carryOut(const Call& call, const Plan& plan) {
    if (call.request.kind == RequestKind::report)
        return jsonAnswer(report());
    const Date time = now();
    const Answer answer =
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
    return with([](const State& state) -> QJsonObject {
        QJsonObject requests;
        for (const RequestKind kind : allRequestKinds)
            requests.insert(nameOf(kind), state.log.countOf(kind));
        return {{u"requests"_s, requests},
                {u"mediaItems"_s, reportOfAll(state.account.mediaItems().all())},
                {u"albums"_s, reportOfAll(state.account.albums().all())}};
    });
}

} // namespace quorvane::emulator
