#include "app/AppConfig.h"

#include <cstdlib>

using namespace quorvane;

/// Any text yields names without "=", and values that were in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const AppConfig::Values values = AppConfig::parseEnv(text);
    for (auto value = values.begin(); value != values.end(); ++value)
        if (value.key().isEmpty() || value.key().contains(u'=') || !text.contains(value.value()))
            std::abort();
    return 0;
}
