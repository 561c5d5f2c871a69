#pragma once

#include "emulator/Disturbance.h"
#include "emulator/EmulatorTypes.h"

namespace quorvane::emulator {

/// What the program was called with.
struct CommandLine {
    struct Seed {
        QString title;
        std::int64_t count = 0;
    };

    /// How long the service is there and away in the mean, by turns.
    struct Outages {
        std::chrono::seconds up{0};
        std::chrono::seconds down{0};
    };

    EmulatorOptions options;
    std::optional<Outages> outages;
    std::vector<Disturbance> faults;
    std::vector<Seed> seeds;
    std::filesystem::path portFile;
    std::filesystem::path reportFile;
    bool wantsHelp = false;
};

/// The arguments after the program's name. Throws `cli::UsageError`.
CommandLine parseCommandLine(const QStringList& arguments);

/// The text of --help.
QString usage();

} // namespace quorvane::emulator
