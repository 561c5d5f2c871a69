#pragma once

#include "library/KnownFiles.h"
#include "store/RecordLife.h"

namespace quorvane {

/// The memory of a folder library that a state keeps. What a scan found is one change with what it
/// means for the records: a version that is gone and was never sent is left out, one that is there
/// again comes back.
class StoredFiles final : public KnownFiles {
  public:
    StoredFiles(DatabaseManager& database, RecordLife& life) : database_(database), life_(life) {}

    std::vector<KnownFile> files() override;
    std::optional<QString> contentOf(const QUuid& identifier) override;
    void update(const std::vector<KnownFile>& changed, const std::vector<std::string>& gone,
                const std::vector<QUuid>& superseded) override;

  private:
    DatabaseManager& database_;
    RecordLife& life_;
};

/// The same memory for somebody who only looks: nothing is changed.
class LookedAtFiles final : public KnownFiles {
  public:
    explicit LookedAtFiles(KnownFiles& files) : files_(files) {}

    std::vector<KnownFile> files() override { return files_.files(); }
    std::optional<QString> contentOf(const QUuid& identifier) override {
        return files_.contentOf(identifier);
    }
    void update(const std::vector<KnownFile>&, const std::vector<std::string>&,
                const std::vector<QUuid>&) override {}

  private:
    KnownFiles& files_;
};

} // namespace quorvane
