#include "emulator/CommandLine.h"
#include "emulator/GoogleEmulator.h"
#include "foundation/Console.h"
#include "foundation/File.h"

#include <QJsonDocument>

#include <algorithm>
#include <csignal>
#include <random>

using namespace quorvane;
using namespace quorvane::emulator;

namespace {

/// An album that a state file brought already is not made again.
void seed(GoogleEmulator& service, const std::vector<CommandLine::Seed>& seeds) {
    for (const CommandLine::Seed& each : seeds) {
        const std::vector<StoredAlbum> albums = service.albums();
        if (std::ranges::find(albums, each.title, &StoredAlbum::title) == albums.end())
            service.addAlbum(each.title, each.count);
    }
}

/// Between half of `mean` and one and a half.
timespec around(std::chrono::seconds mean) {
    static std::minstd_rand random;
    const std::int64_t half = mean.count() * 500;
    const std::int64_t ms = std::uniform_int_distribution(half, 3 * half)(random);
    return {.tv_sec = ms / 1000, .tv_nsec = ms % 1000 * 1'000'000};
}

/// Blocks until one of `ends` comes. Without outages the service stays up until then.
void serveUntil(const sigset_t& ends, GoogleEmulator& service,
                const std::optional<CommandLine::Outages>& outages) {
    if (!outages) {
        int signal = 0;
        sigwait(&ends, &signal);
        service.stop();
        return;
    }
    const auto lasts = [&](std::chrono::seconds mean) {
        const timespec duration = around(mean);
        return sigtimedwait(&ends, nullptr, &duration) < 0;
    };
    while (lasts(outages->up)) {
        service.stop();
        if (!lasts(outages->down))
            return;
        service.start();
    }
    service.stop();
}

void run(const CommandLine& line, Console& console) {
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr); // for the service's threads as well

    GoogleEmulator service(line.options);
    seed(service, line.seeds);
    for (const Disturbance& fault : line.faults)
        service.addDisturbance(fault);
    service.start();
    if (!line.portFile.empty())
        replaceFile(line.portFile, QByteArray::number(service.port()) + '\n', 0644);
    console.print(service.baseURL());

    serveUntil(ends, service, line.outages);
    if (!line.reportFile.empty())
        replaceFile(line.reportFile, QJsonDocument(service.report()).toJson(), 0644);
}

} // namespace

int main(int argc, char** argv) {
    Console console;
    try {
        QStringList arguments;
        for (int i = 1; i < argc; ++i)
            arguments.append(QString::fromLocal8Bit(argv[i]));
        const CommandLine line = parseCommandLine(arguments);
        if (line.wantsHelp)
            console.result(usage());
        else
            run(line, console);
        return 0;
    } catch (const UsageError& error) {
        console.error(describe(error));
        console.error(usage());
        return 2;
    } catch (const std::exception& error) {
        console.error(describe(error));
        return 1;
    }
}
