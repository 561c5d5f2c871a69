#pragma once

#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "google/GoogleEndpoints.h"

#include <QMap>
#include <QString>

#include <filesystem>
#include <vector>

namespace quorvane {

/// The OAuth client identity: from the process environment and the first readable of several
/// `.env` files. Any thread.
class AppConfig final : public OAuthClientIdentity {
  public:
    using Values = QMap<QString, QString>;

    /// `candidates` are the `.env` files in search order. Loads at once.
    AppConfig(std::vector<std::filesystem::path> candidates, Log& log);

    /// The current folder, `home`/Library/Application Support/Quorvane/.env, `home`/.quorvane.env,
    /// the program's folder and its resource folder.
    static std::vector<std::filesystem::path> standardCandidates(const std::filesystem::path& home);

    /// Reads environment and file again.
    void reload();

    QString googleClientID() const override;
    std::optional<QString> googleClientSecret() const override;
    /// A client with a secret is one for desktops; GOOGLE_REDIRECT=loopback says so of others.
    bool redirectsToLoopback() const override;

    /// What Google allows the project a day, where it raised the usual quota.
    std::optional<int> dailyRequests() const;

    /// Whether there is another client than the one built in.
    bool isClientConfigured() const;
    /// GOOGLE_REDIRECT as it is; empty when absent.
    QString redirect() const;

    /// KEY=value lines. Whole-line "#" comments, one pair of quotes removed, nothing else expanded.
    static Values parseEnv(const QString& text);

  private:
    std::optional<QString> nonEmpty(const QString& key) const;

    std::vector<std::filesystem::path> candidates_;
    Log& log_;
    Guarded<Values> envValues_;
};

} // namespace quorvane
