#include "bench/Parts.h"
#include "foundation/Error.h"

#include <QCoreApplication>

#include <cstdio>

using namespace quorvane;

namespace {

struct Part {
    const char* name;
    int (*work)(const QStringList& words);
    qsizetype words; ///< at least so many follow
};
constexpr Part parts[] = {{"stamp", bench::stamp, 2}, {"hash", bench::hash, 1},
                          {"copy", bench::copy, 2},   {"send", bench::send, 3},
                          {"sink", bench::sink, 0},   {"store", bench::store, 2},
                          {"scan", bench::scan, 2},   {"store-script", bench::storeScript, 1},
                          {"stage", bench::stage, 2}};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    try {
        for (const Part& part : parts)
            if (words.value(0) == QLatin1String(part.name) && words.size() > part.words)
                return part.work(words.mid(1));
        for (const Part& part : parts)
            std::fprintf(stderr, "quorvane-bench %s ...\n", part.name);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(describe(error)));
        return 1;
    }
}
