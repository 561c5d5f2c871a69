#pragma once

#include "foundation/Clock.h"
#include "foundation/Guarded.h"
#include "google/HttpClient.h"

#include <atomic>
#include <filesystem>

namespace quorvane {

/// Counts the requests to the Photos Library API, of which Google allows a project a number a day.
/// All processes of the user share the count, in a file that they map: a request costs no write,
/// and a killed program loses none. Days are Google's, from midnight to midnight of Pacific time.
/// Any thread; nothing is thrown: without the file each process counts for itself.
class DailyRequests {
  public:
    static constexpr int usualLimit = 10'000; ///< a project and day, unless Google raised it

    struct Today {
        int used = 0;
        int left = 0;
        Date turns; ///< by this computer's clock
    };

    /// The file is made with the first request.
    DailyRequests(std::filesystem::path file, Clock& clock, int limit = usualLimit);
    ~DailyRequests();
    DailyRequests(const DailyRequests&) = delete;
    DailyRequests& operator=(const DailyRequests&) = delete;

    /// One more was sent.
    void count();

    /// What a service answered: its clock, and whether it allows more today.
    void learnFrom(const HttpResponse& response);

    /// A person wants to know better: the next answers tell whether any are left.
    void distrust();

    int limit() const { return limit_; }
    Today today() const;

    /// How many of Google's days `requests` take from now on: 1 when what is left of this one does.
    int daysFor(std::int64_t requests) const;

  private:
    using Cell = std::uint64_t; ///< the Julian day in the upper half, the requests in the lower

    std::uint32_t dayNow() const;
    Date serviceTime() const;
    void add(std::uint32_t requests);
    Cell& cell(int openFlags) const;
    Cell* map(int openFlags) const;

    const std::filesystem::path file_;
    Clock& clock_;
    const int limit_;
    std::atomic<std::int64_t> serviceAhead_{0}; ///< of this computer's clock, milliseconds
    mutable Cell own_ = 0;                      ///< where there is no file
    mutable Guarded<Cell*> mapped_;             ///< what it points at is shared by atomic access
};

/// Sends through another client and counts.
class CountedHttp final : public HttpClient {
  public:
    CountedHttp(HttpClient& http, DailyRequests& requests) : http_(http), requests_(requests) {}

    HttpResponse send(const HttpRequest& request, std::stop_token stop) override;

  private:
    HttpClient& http_;
    DailyRequests& requests_;
};

} // namespace quorvane
