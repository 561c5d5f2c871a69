#include "google/DailyRequests.h"

#include "foundation/File.h"
#include "foundation/PacificDay.h"
#include "google/GoogleFaults.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr int dayShift = 32;

std::uint32_t dayOf(std::uint64_t cell) {
    return static_cast<std::uint32_t>(cell >> dayShift);
}

std::uint32_t requestsOf(std::uint64_t cell) {
    return static_cast<std::uint32_t>(cell);
}

std::uint64_t cellOf(std::uint32_t day, std::uint32_t requests) {
    return std::uint64_t(day) << dayShift | requests;
}

} // namespace

DailyRequests::DailyRequests(std::filesystem::path file, Clock& clock, int limit)
    : file_(std::move(file)), clock_(clock), limit_(limit) {}

DailyRequests::~DailyRequests() {
    if (Cell* const mapped = *mapped_.lock())
        ::munmap(mapped, sizeof(Cell));
}

DailyRequests::Cell& DailyRequests::cell(int openFlags) const {
    const auto mapped = mapped_.lock();
    if (*mapped == nullptr)
        *mapped = map(openFlags);
    return *mapped != nullptr ? **mapped : own_;
}

DailyRequests::Cell* DailyRequests::map(int openFlags) const try {
    const FileDescriptor file = openFile(file_, O_RDWR | openFlags);
    if (::ftruncate(file.get(), sizeof(Cell)) != 0)
        return nullptr;
    void* const memory =
        ::mmap(nullptr, sizeof(Cell), PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    return memory != MAP_FAILED ? static_cast<Cell*>(memory) : nullptr;
} catch (const FileError&) {
    return nullptr;
}

void DailyRequests::count() {
    add(1);
}

void DailyRequests::learnFrom(const HttpResponse& response) {
    if (response.date)
        serviceAhead_ = (*response.date - clock_.now()).count();
    // Others use the same project, or an earlier count was lost.
    if (response.status >= 400 && faultIn(response).code == FaultCode::dailyQuota)
        add(static_cast<std::uint32_t>(limit_));
}

void DailyRequests::add(std::uint32_t requests) {
    const std::atomic_ref<Cell> shared(cell(O_CREAT));
    const std::uint32_t day = dayNow();
    Cell before = shared;
    Cell after = 0;
    do {
        const std::uint32_t used = dayOf(before) == day ? requestsOf(before) : 0;
        after = cellOf(day, std::min(used + requests, std::uint32_t(2 * limit_)));
    } while (!shared.compare_exchange_weak(before, after));
}

void DailyRequests::distrust() {
    std::atomic_ref<Cell>(cell(O_CREAT)) = cellOf(dayNow(), 0);
}

DailyRequests::Today DailyRequests::today() const {
    const Cell now = std::atomic_ref<Cell>(cell(0));
    const int used = dayOf(now) == dayNow() ? static_cast<int>(requestsOf(now)) : 0;
    const Date time = serviceTime();
    return {.used = std::min(used, limit_),
            .left = std::max(0, limit_ - used),
            .turns = clock_.now() + (nextPacificMidnight(time) - time)};
}

int DailyRequests::daysFor(std::int64_t requests) const {
    if (requests == 0)
        return 0;
    const std::int64_t later = std::max<std::int64_t>(0, requests - today().left);
    return static_cast<int>(1 + (later + limit_ - 1) / limit_);
}

std::uint32_t DailyRequests::dayNow() const {
    return static_cast<std::uint32_t>(pacificDate(serviceTime()).toJulianDay());
}

Date DailyRequests::serviceTime() const {
    return clock_.now() + std::chrono::milliseconds(serviceAhead_.load());
}

HttpResponse CountedHttp::send(const HttpRequest& request, std::stop_token stop) {
    requests_.count();
    HttpResponse response = http_.send(request, std::move(stop));
    requests_.learnFrom(response);
    return response;
}

} // namespace quorvane
