#include "app/cli/UploadLimitOption.h"

#include <QRegularExpression>

namespace quorvane::cli {

namespace {

const QString optionName = QStringLiteral("upload-limit");
constexpr std::int64_t least = 1000; // else a silent line would be taken for a broken one

/// "500k", "1.5M" or plain bytes; none for anything else.
std::optional<std::int64_t> rateFrom(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,9}(?:\\.[0-9]{1,3})?)([kM]?)$"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString unit = match.captured(2);
    const double bytes = match.captured(1).toDouble() * (unit == u"k"   ? 1e3
                                                         : unit == u"M" ? 1e6
                                                                        : 1);
    const auto rate = static_cast<std::int64_t>(bytes);
    return rate == 0 || rate >= least ? std::optional(rate) : std::nullopt;
}

} // namespace

OptionSpec uploadLimitOption() {
    return {optionName, QStringLiteral("HIZ"),
            QStringLiteral("saniyede en çok bu kadar bayt yükler (500k, 2M; 0 sınırsız)")};
}

void applyUploadLimit(const Arguments& arguments, Preferences& preferences) {
    const auto text = arguments.value(optionName);
    if (!text)
        return;
    const auto rate = rateFrom(*text);
    if (!rate)
        throw UsageError(
            QStringLiteral(
                "--upload-limit saniyede bayt bekler, en az 1k (500k, 2M; 0 sınırsız): ") +
            *text);
    preferences.setVolatile(preferenceKeys::uploadLimit, qint64(*rate));
}

} // namespace quorvane::cli
