#include "emulator/CommandLine.h"
#include "emulator/GoogleEmulator.h"
#include "foundation/Clock.h"
#include "foundation/CommandLine.h"
#include "foundation/Console.h"
#include "foundation/File.h"
#include "foundation/StopSignals.h"

#include <QJsonDocument>

#include <algorithm>
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
std::chrono::milliseconds around(std::chrono::seconds mean) {
    static std::minstd_rand random;
    const std::int64_t half = mean.count() * 500;
    return std::chrono::milliseconds(std::uniform_int_distribution(half, 3 * half)(random));
}

/// Blocks until `end`. Without outages the service stays up until then.
void serveUntil(const std::stop_token& end, GoogleEmulator& service,
                const std::optional<CommandLine::Outages>& outages) {
    SystemClock clock;
    const auto up = [&] { return outages ? around(outages->up) : std::chrono::hours(1); };
    while (clock.sleep(up(), end)) {
        if (!outages)
            continue;
        service.stop();
        if (!clock.sleep(around(outages->down), end))
            return;
        service.start();
    }
    service.stop();
}

void run(const CommandLine& line, Console& console) {
    const StopSignals ends; // before the service's threads
    GoogleEmulator service(line.options);
    seed(service, line.seeds);
    for (const Disturbance& fault : line.faults)
        service.addDisturbance(fault);
    service.start();
    if (!line.portFile.empty())
        replaceFile(line.portFile, QByteArray::number(service.port()) + '\n', 0644);
    console.print(service.baseURL());

    serveUntil(ends.token(), service, line.outages);
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
    } catch (const cli::UsageError& error) {
        console.error(describe(error));
        console.error(usage());
        return 2;
    } catch (const std::exception& error) {
        console.error(describe(error));
        return 1;
    }
}
