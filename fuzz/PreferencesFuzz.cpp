#include "ScratchFile.h"
#include "foundation/PreferencesFile.h"
#include "sync/RunState.h"

#include <cstdlib>

using namespace quorvane;

/// Any file is read, or kept beside as it was; never is a part of it lost.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFile file("preferences.json");
    file.write({data, size});
    std::filesystem::path kept = file.path();
    try {
        PreferencesFile(file.path()).value(QStringLiteral("com.quorvane.library"));
    } catch (const Error&) {
        kept += ".bozuk-1";
    }
    if (readWholeFile(kept, 1 << 24) !=
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)))
        std::abort();
    RunStateFile(kept).last().text();
    std::filesystem::remove(kept);
    return 0;
}
