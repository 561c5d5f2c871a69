#pragma once

#include "library/DeletionConfirmation.h"
#include "library/KnownFiles.h"
#include "library/PhotoLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <map>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane::test {

inline void setModified(const std::filesystem::path& file, time_t seconds) {
    const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

/// Runs commands of a shell in a folder.
inline void runIn(const std::filesystem::path& folder, const std::string& commands) {
    const std::string line = "cd '" + folder.native() + "' && {\n:\n" + commands + "\n}";
    ASSERT_EQ(std::system(line.c_str()), 0) << commands;
}

/// The memory of a folder library, in memory.
class RememberedFiles final : public KnownFiles {
  public:
    std::map<std::string, KnownFile> rows;
    std::map<QUuid, QString> contents;
    std::vector<QUuid> superseded;
    int updates = 0;

    std::vector<KnownFile> files() override {
        std::vector<KnownFile> all;
        for (const auto& [path, file] : rows)
            all.push_back(file);
        return all;
    }
    std::optional<QString> contentOf(const QUuid& identifier) override {
        const auto found = contents.find(identifier);
        return found == contents.end() ? std::nullopt : std::optional(found->second);
    }
    void update(const std::vector<KnownFile>& changed, const std::vector<std::string>& gone,
                const std::vector<QUuid>& replaced) override {
        ++updates;
        for (const std::string& path : gone)
            EXPECT_EQ(rows.erase(path), 1u) << path;
        for (const KnownFile& file : changed)
            rows[file.path] = file;
        superseded.insert(superseded.end(), replaced.begin(), replaced.end());
    }
};

class FakeConfirmation final : public DeletionConfirmation {
  public:
    bool answer = true;
    std::vector<DeletionQuestion> asked;
    bool confirmDeletion(const DeletionQuestion& question) override {
        asked.push_back(question);
        return answer;
    }
};

/// Takes everything for safe, and notes what it is told.
class AgreeingGuard final : public DeletionGuard {
  public:
    std::function<void()> onWillDelete = [] {};
    std::vector<std::size_t> groups;
    int deleted = 0;
    QStringList reasons;

    std::vector<DeletionCandidate>
    stillSafe(const std::vector<DeletionCandidate>& candidates) override {
        groups.push_back(candidates.size());
        return candidates;
    }
    void willDelete(const DeletionCandidate&) override { onWillDelete(); }
    void didDelete(const DeletionCandidate&) override { ++deleted; }
    void leftOut(const DeletionCandidate&, const QString& reason) override { reasons += reason; }
};

} // namespace quorvane::test
