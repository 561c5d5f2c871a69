#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void run(const std::string& bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

/// The seed, its beginnings, and the seed with one byte changed: a few thousand runs at most.
void runAround(const std::string& seed) {
    const std::size_t step = seed.size() / 2000 + 1;
    run(seed);
    for (std::size_t at = 0; at < seed.size(); at += step) {
        run(seed.substr(0, at));
        std::string changed = seed;
        for (const int value : {0x00, 0x01, 0x7f, 0xff, seed[at] ^ 0x80}) {
            changed[at] = static_cast<char>(value);
            run(changed);
        }
    }
}

} // namespace

/// Runs a fuzz target over the files of a folder, without a fuzzer. A fault ends the process.
int main(int argc, char** argv) {
    int seeds = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout); // the last one printed is the culprit
            std::ifstream file(entry.path(), std::ios::binary);
            runAround({std::istreambuf_iterator<char>(file), {}});
            ++seeds;
        }
    return seeds > 0 ? 0 : 1;
}
