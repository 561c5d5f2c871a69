#include "platform/macos/PhotoKitLibrary.h"
#include "platform/macos/PhotoKitRemoval.h"

#include <algorithm>
#include <set>

namespace quorvane {

namespace {

using Candidates = std::vector<DeletionCandidate>;

QStringList identifiersOf(const Candidates& candidates) {
    QStringList identifiers;
    for (const DeletionCandidate& candidate : candidates)
        identifiers += candidate.asset.localIdentifier;
    return identifiers;
}

/// One removal. What was announced to the guard always comes to an end there, except after a stop.
class PhotoKitDeletion {
  public:
    PhotoKitDeletion(PhotoKitLibrary& library, DeletionGuard& guard, const std::stop_token& stop)
        : library_(library), guard_(guard), stop_(stop) {}

    void run(const Candidates& candidates) {
        for (std::size_t first = 0; first < candidates.size(); first += DeletionGuard::atOnce) {
            const std::size_t end = std::min(first + DeletionGuard::atOnce, candidates.size());
            announceProven({candidates.begin() + static_cast<std::ptrdiff_t>(first),
                            candidates.begin() + static_cast<std::ptrdiff_t>(end)});
        }
        if (stop_.stop_requested())
            return leaveOutAnnounced(QStringLiteral("silme durduruldu"));
        if (announced_.empty())
            return;
        const auto refusal = photokit::remove(identifiersOf(announced_), stop_);
        if (!refusal)
            return;
        if (!refusal->isEmpty()) {
            leaveOutAnnounced(*refusal);
            throw PhotoLibraryError(*refusal);
        }
        tellWhatWent();
    }

  private:
    void announceProven(const Candidates& group) {
        if (stop_.stop_requested())
            return;
        for (const DeletionCandidate& candidate : guard_.stillSafe(group)) {
            try {
                prove(candidate);
                guard_.willDelete(candidate);
                announced_.push_back(candidate);
            } catch (const Cancelled&) {
                return;
            } catch (const std::exception& error) {
                guard_.leftOut(candidate, describe(error));
            }
        }
    }

    /// Throws the reason against the removal.
    void prove(const DeletionCandidate& candidate) {
        const QString obstacle = photokit::obstacleToRemoval(candidate.asset.localIdentifier);
        if (!obstacle.isEmpty())
            throw PhotoLibraryError(obstacle);
        const auto resource = resourceToStage(library_.assetResources(candidate.asset));
        if (!resource)
            throw PhotoLibraryError(QStringLiteral("özgün dosyası bulunamadı"));
        if (library_.readContent(*resource, stop_).sha256 != candidate.source.sha256)
            throw PhotoLibraryError(QStringLiteral("yedeklenen sürümle aynı değil"));
    }

    /// The system's success is of the request as a whole; what is still there did not go.
    void tellWhatWent() {
        std::set<QString> left;
        const AssetFetchResult assets = library_.fetchAssets(identifiersOf(announced_));
        for (const PhotoAsset& asset : *assets)
            left.insert(asset.localIdentifier);
        for (const DeletionCandidate& candidate : announced_)
            if (left.contains(candidate.asset.localIdentifier))
                guard_.leftOut(candidate, QStringLiteral("Fotoğraflar bu öğeyi silmedi"));
            else
                guard_.didDelete(candidate);
    }

    void leaveOutAnnounced(const QString& reason) {
        for (const DeletionCandidate& candidate : announced_)
            guard_.leftOut(candidate, reason);
    }

    PhotoKitLibrary& library_;
    DeletionGuard& guard_;
    const std::stop_token& stop_;
    Candidates announced_; ///< to the guard
};

Candidates withoutRepetitions(const Candidates& candidates) {
    std::set<QString> seen;
    Candidates once;
    std::ranges::copy_if(candidates, std::back_inserter(once), [&](const auto& candidate) {
        return seen.insert(candidate.asset.localIdentifier).second;
    });
    return once;
}

} // namespace

void PhotoKitLibrary::deleteAssets(const std::vector<DeletionCandidate>& candidates,
                                   DeletionQuestion question, DeletionGuard& guard,
                                   std::stop_token stop) {
    const Candidates once = withoutRepetitions(candidates);
    if (once.empty())
        return;
    requireReadable();
    question.count = static_cast<int>(once.size());
    question.place = QStringLiteral("Fotoğraflar: Son Silinenler");
    if (!question.warning.isEmpty() && !confirmation_.confirmDeletion(question))
        throw PhotoLibraryError(QStringLiteral("Silme onayı verilmedi"));
    PhotoKitDeletion(*this, guard, stop).run(once);
}

} // namespace quorvane
