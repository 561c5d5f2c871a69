#include "sync/RecordTransfer.h"

#include "foundation/File.h"
#include "sync/RecordUploadMemory.h"

namespace quorvane {

QString uploadName(const SyncRecord& record, const std::filesystem::path& file) {
    const QString name = pathText(file.filename());
    const QString prefix = QString(record.assetLocalIdentifier).replace(u'/', u'_') + u'_';
    return name.startsWith(prefix) ? name.mid(prefix.size()) : name;
}

namespace {

/// Removes the transfer from the live table on every way out.
class ActiveTransfer {
  public:
    ActiveTransfer(TransferActivityTracker& tracker, const ActiveTransferItem& item)
        : tracker_(tracker), id_(item.id) {
        tracker_.add(item);
    }
    ~ActiveTransfer() { tracker_.remove(id_); }
    ActiveTransfer(const ActiveTransfer&) = delete;
    ActiveTransfer& operator=(const ActiveTransfer&) = delete;

  private:
    TransferActivityTracker& tracker_;
    QString id_;
};

} // namespace

RecordTransfer::Result RecordTransfer::bring(const SyncRecord& record,
                                             const std::stop_token& stop) {
    auto file = stageAhead_.take(record, stop);
    if (!file) {
        const bool isPending = s_.db.fetchStatus(record) == SyncStatus::discovered;
        return {.outcome = isPending ? Outcome::unavailable : Outcome::settled};
    }
    if (!dateGate_.passes(record, *file, stop))
        return {};
    const QString name = uploadName(record, file->path);
    const auto kept = file->isFirst ? std::nullopt : s_.tokens.find(record, file->content.sha256);
    if (kept)
        return {Outcome::sent, *kept, name, file->caption};
    const auto token = upload(record, *file, name, stop);
    if (!token)
        return {};
    return {Outcome::sent, *token, name, file->caption, file->content.sizeBytes};
}

/// None when the file changed meanwhile: nobody knows then what was sent.
std::optional<QString> RecordTransfer::upload(const SyncRecord& record, const StagedFile& file,
                                              const QString& name, const std::stop_token& stop) {
    ActiveTransferItem item;
    item.id = record.assetLocalIdentifier;
    item.fileName = name;
    item.isVideo = record.mediaType == MediaType::video;
    item.totalBytes = file.content.sizeBytes;
    item.startedAt = s_.clock.now();
    const ActiveTransfer transfer(s_.tracker, item);
    const auto progress = [&](std::int64_t sent, std::int64_t total) {
        s_.tracker.updateProgress(item.id, sent, total);
    };
    const auto rate = [&] { return s_.preferences.number(preferenceKeys::uploadLimit); };
    RecordUploadMemory memory(s_.sessions, record, file.content);
    const QString token =
        s_.destination.upload({file.path, name, item.isVideo, rate}, memory, progress, stop);
    if (fileVersion(file.path) != file.version) {
        s_.life.requeued(record);
        return std::nullopt;
    }
    s_.tokens.keep(record, file.content.sha256, token);
    return token;
}

} // namespace quorvane
