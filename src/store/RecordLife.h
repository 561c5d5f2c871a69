#pragma once

#include "foundation/Fault.h"
#include "foundation/FileVersion.h"
#include "store/RecordDates.h"

#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace quorvane {

/// The bytes of the original that an asset was staged from.
struct RecordSource {
    QString sha256; ///< 64 lower-case hexadecimal digits
    FileVersion version;
    std::int64_t sample = 0; ///< follows from the size, the beginning and the end of the bytes

    struct Movie {
        QString sha256;
        FileVersion version;

        bool operator==(const Movie&) const = default;
    };
    std::optional<Movie> movie = {}; ///< that was joined to it: both went up in one file

    bool operator==(const RecordSource&) const = default;
};

/// Whose state a store is: Google's user id, and the e-mail where the id is not known.
struct AccountIdentity {
    QString userID;
    QString email;

    bool operator==(const AccountIdentity&) const = default;
    bool isKnown() const { return !userID.isEmpty() || !email.isEmpty(); }
    /// By the user id, or by the e-mail where one of the two has no id.
    bool isSameAs(const AccountIdentity& other) const;
};

/// The one who changes what a record is. Each operation is an arrow of the life of a record: it
/// happens as a whole, only from the statuses that `arrows` names, and answers false when the
/// record has another one by now or is gone; nothing is changed then. Any thread, any process.
/// Throws `DBError`.
class RecordLife {
  public:
    /// `account` is whom the destination's items belong to; the first of them binds the state.
    explicit RecordLife(DatabaseManager& database, AccountIdentity account = {})
        : db_(database), dates_(database), account_(std::move(account)) {}

    struct Arrow {
        std::string_view name; ///< of the operation
        std::vector<SyncStatus> from;
        SyncStatus to;
    };
    /// Every arrow there is.
    static std::span<const Arrow> arrows();

    /// What `work` follows is written at once; what it throws takes all of it back.
    void together(const std::function<void()>& work);

    /// A file was exported from these bytes and is being dated; the status stays.
    void exporting(const SyncRecord& record, const RecordSource& source);
    /// Exported, dated and hashed. The record carries the staged file's hash and size. `source` is
    /// none for a copy that outlived all knowledge of its original, `date` where the copy has none
    /// or is an earlier one.
    bool staged(const SyncRecord& record, const std::optional<RecordSource>& source,
                const std::optional<RecordDate>& date = {});
    /// Nothing could be staged from the original.
    bool stageFailed(const SyncRecord& record, const QString& reason,
                     const std::optional<Fault>& fault = {});
    /// Its staged file was given another date: the record carries the new hash and size.
    bool redated(const SyncRecord& record, const std::optional<RecordDate>& date = {});
    /// Its staged file cannot be used, or its run was stopped.
    bool requeued(const SyncRecord& record);
    /// No trustworthy date; `undatable` where its file does not take any.
    enum class Want { date, undatable };
    bool heldBack(const SyncRecord& record, const QString& reason, Want want = Want::date);
    /// The upload failed, or the destination refused the item. The fault is kept beside the text.
    bool refused(const SyncRecord& record, const QString& reason,
                 const std::optional<Fault>& fault = {});
    /// It failed by the world's fault, not by its own: it is tried again without being asked for.
    bool relieved(const SyncRecord& record);
    /// The destination named the media item, and the time that it files it under, if it says.
    bool created(const SyncRecord& record, const QString& uploadToken, const QString& remoteID,
                 std::optional<Date> filedUnder = {});
    /// The same bytes are at the destination already, under this name.
    bool recognised(const SyncRecord& record, const RecordSource& source, const QString& remoteID);
    /// Another version is in the library now, and this one was never sent.
    bool superseded(const SyncRecord& record, const QString& reason);
    /// What of the asset is not in the file that is sent for it (`RecordRemainders`); the status
    /// stays.
    void leavesBehind(const SyncRecord& record, int behind);
    /// Its original is not on this machine, by `code`: remembered until `returned`.
    bool absent(const SyncRecord& record, const QString& code, const QString& reason);
    /// This version is in the library again, or its original on this machine.
    bool returned(const SyncRecord& record);
    /// Its original is about to be removed; remembered until `deleted` or `kept`.
    bool deleting(const SyncRecord& record);
    bool deleted(const SyncRecord& record);
    /// Its original stayed after all.
    void kept(const SyncRecord& record);
    /// Everything pending leaves the queue; the records are forgotten.
    void cleared();
    /// The assets that left the queue unsent: their staged files are nobody's any more. Remembered,
    /// also by the next process, until `discarded`.
    QStringList left();
    void discarded(const QString& identifier);
    /// The person asked for another try of this one, as if it had never failed.
    bool retried(const SyncRecord& record);
    /// The person asked for another try: all failed ones, all undated ones.
    void retriedFailed(bool resetRetryCount);
    void retriedUndated();
    /// The person named the capture date of one that was held back.
    bool dateChosen(const SyncRecord& record, Date date);
    /// The person wants all that take no date to go up as they are. Returns how many they are.
    int undatableReleased();

    /// What the asset was staged from; none when it never was by this program.
    std::optional<RecordSource> sourceOf(const QString& identifier);
    /// The removals that were begun and of which nobody knows the end.
    std::vector<SyncRecord> unfinishedDeletions();

    const AccountIdentity& account() const { return account_; }

  private:
    bool follow(std::string_view arrow, const SyncRecord& record,
                const std::function<void(SyncStatus to)>& write);
    bool setStatus(std::string_view arrow, const SyncRecord& record,
                   const std::optional<QString>& error = {});
    void setSource(const SyncRecord& record, const RecordSource& source);
    void setDeleting(const SyncRecord& record, bool isDeleting);
    void bindAccount();
    void runFor(const QString& identifier, const char* sql);

    DatabaseManager& db_;
    RecordDates dates_;
    const AccountIdentity account_;
    std::atomic<bool> isAccountBound_ = false;
};

} // namespace quorvane
