#pragma once

#include "library/PhotoLibrary.h"
#include "platform/FolderWorld.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <memory>

namespace quorvane::test {

/// A library of some kind, and the hand that changes it from outside. Pictures go by their names.
class LibraryWorld {
  public:
    virtual ~LibraryWorld() = default;
    virtual PhotoLibrary& library() = 0;

    /// `date`: seconds since 1970. `album` may be empty.
    virtual void add(const std::string& name, const QByteArray& bytes, int date,
                     const std::string& album) = 0;
    virtual void replace(const std::string& name, const QByteArray& bytes) = 0;
    /// Of the original, the bytes are not to be had any more.
    virtual void takeBytes(const std::string& name) = 0;

    virtual bool canDelete() const { return true; }
    virtual void answerDeletion(bool agreed) = 0;
};

/// What every photo library keeps to.
class PhotoLibraryContract : public testing::TestWithParam<std::shared_ptr<LibraryWorld> (*)()> {
  protected:
    std::vector<std::string> namesOf(const AssetFetchResult& assets);
    PhotoAsset asset(const std::string& name);
    PhotoAssetResource resource(const std::string& name);
    DeletionCandidate candidate(const std::string& name);

    std::shared_ptr<LibraryWorld> world = GetParam()();
    PhotoLibrary& library = world->library();
    TemporaryFolder out;
    AgreeingGuard guard;
};

} // namespace quorvane::test
