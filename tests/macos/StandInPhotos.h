#pragma once

#include <QByteArray>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quorvane::test {

/// The Photos library behind the stand-in frameworks: in memory, one for the process. As with the
/// real one, handlers and notifications come on a thread that nobody knows. Any thread.
class StandInPhotos {
  public:
    struct Resource {
        int type = 1;
        std::optional<std::string> name;
        QByteArray bytes;
        bool isInCloud = false; ///< only
    };
    struct Asset {
        std::string identifier;
        std::vector<Resource> resources;
        std::optional<double> created = {}, modified = {}; ///< seconds since 1970
        std::optional<std::pair<double, double>> place = {};
        int mediaType = 1;
        unsigned subtypes = 0;
        bool isBurst = false;
        bool mayBeDeleted = true;
    };
    struct Album {
        std::string identifier;
        std::optional<std::string> title;
        std::vector<std::string> assets; ///< identifiers, in the album's order
        bool isCounted = true;           ///< else its estimated count is NSNotFound
        bool isFolder = false;           ///< of the albums and folders named in `assets`
        bool isInFolder = false;         ///< else at the top
    };
    using Row = std::shared_ptr<const Asset>;

    static StandInPhotos& shared();

    /// Empty, and in a good mood. Waits for what is under way.
    void reset();

    void put(Asset asset); ///< in place of the one with its identifier, if any; tells of the change
    void put(Album album);
    void removeAsset(const std::string& identifier);

    /// What it does from now on.
    struct Mood {
        int authorization = 3;
        bool isCloudReachable = true;
        bool diskIsFull = false;
        bool describesErrors = true;
        bool isIncremental = true; ///< change details say what exactly changed
        bool answersTwice = false;
        std::function<bool()> agreesToDeletion = [] { return true; };
    };
    void set(Mood mood);

    /// Everything that would be answered waits, from the middle of each file.
    void hold(bool on);
    /// Until nothing is left to answer.
    void settle();

    // For the frameworks.
    std::vector<Row> rows() const;
    std::vector<Album> albums() const;
    Mood mood() const;
    void post(std::function<void()> work);
    void waitWhileHeld();

  private:
    StandInPhotos();
    void run(const std::stop_token& stop);

    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::vector<Row> rows_;
    std::vector<Album> albums_;
    Mood mood_;
    bool isHeld_ = false;
    bool isBusy_ = false;
    std::deque<std::function<void()>> work_;
    std::jthread thread_; ///< last: it uses the rest
};

/// Tells the registered observers, on the library's thread. Defined by the frameworks.
void tellOfChange();

/// Makes blocks objects, as they are on the Mac. First thing in the process.
void installBlockClasses();

} // namespace quorvane::test
