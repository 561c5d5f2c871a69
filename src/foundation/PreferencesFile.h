#pragma once

#include "foundation/Guarded.h"
#include "foundation/SettingsStore.h"

#include <QJsonObject>

#include <filesystem>

struct stat;

namespace quorvane {

/// One JSON file, mode 0600 in a folder of mode 0700. Two processes may use one file without losing
/// each other's keys (a write merges into the file as it then is). A file that cannot be read is
/// never taken for an empty one, nor written over: whoever asks then gets what was read before, or
/// a `FileError`. One that is no JSON is kept beside under another name, which is told once by an
/// `Error`.
class PreferencesFile final : public SettingsStore {
  public:
    explicit PreferencesFile(std::filesystem::path file);

    QJsonValue value(const QString& key) override;
    void change(const QString& key, const QJsonValue& value) override;
    /// The damaged files that were kept beside.
    void removeDamaged() override;

  private:
    struct Version {
        long long inode = -1, size = -1, seconds = 0, nanoseconds = 0;
        bool operator==(const Version&) const = default;
    };
    enum class ProcessLock { held, notHeld };

    /// What the file said when it was read last.
    struct Known {
        Version version = {};
        QJsonObject values = {};
        bool isLoaded = false;
        bool isSetAside = false; ///< `values` are those before the file was damaged
    };

    static Version versionOf(const struct stat& info);
    std::filesystem::path besides(const char* suffix) const;
    void reloadIfChanged(Known& known, ProcessLock lock);
    void setAside(Known& known, const Version& damaged, ProcessLock lock);

    const std::filesystem::path file_;
    Guarded<Known> known_;
};

} // namespace quorvane
