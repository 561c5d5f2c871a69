#include "app/AppConfig.h"

#include "foundation/File.h"

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStringDecoder>

namespace quorvane {

namespace {

const QString clientIDKey = QStringLiteral("GOOGLE_CLIENT_ID");
const QString clientSecretKey = QStringLiteral("GOOGLE_CLIENT_SECRET");
const QString redirectKey = QStringLiteral("GOOGLE_REDIRECT");
const QString dailyRequestsKey = QStringLiteral("GOOGLE_DAILY_REQUESTS");

/// The client that a build without a configuration signs in as.
const QString defaultClientID =
    QStringLiteral("604218397155-q7v3n0r8k2m5x1c9d4t6h0j2w8b5y3fa.apps.googleusercontent.com");

constexpr std::int64_t largestEnvFile = 1 << 20;

std::optional<QString> readText(const std::filesystem::path& file) {
    try {
        const QByteArray bytes = readWholeFile(file, largestEnvFile);
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(bytes);
        return decoder.hasError() ? std::nullopt : std::optional(text);
    } catch (const FileError&) {
        return std::nullopt;
    }
}

bool isQuotedBy(const QString& value, QChar quote) {
    return value.startsWith(quote) && value.endsWith(quote);
}

QString unquoted(const QString& value) {
    if (isQuotedBy(value, u'"') || isQuotedBy(value, u'\''))
        return value.size() < 2 ? QString() : value.mid(1, value.size() - 2);
    return value;
}

} // namespace

AppConfig::AppConfig(std::vector<std::filesystem::path> candidates, Log& log)
    : candidates_(std::move(candidates)), log_(log) {
    reload();
}

std::vector<std::filesystem::path>
AppConfig::standardCandidates(const std::filesystem::path& home) {
    const std::filesystem::path program = pathFrom(QCoreApplication::applicationDirPath());
    std::error_code ignored;
    return {std::filesystem::current_path(ignored) / ".env",
            home / "Library/Application Support/Quorvane/.env", home / ".quorvane.env",
            program / ".env", program / "../share/quorvane/.env"};
}

void AppConfig::reload() {
    Values values;
    const auto environment = QProcessEnvironment::systemEnvironment();
    for (const QString& key : environment.keys())
        values[key] = environment.value(key);

    for (const auto& candidate : candidates_) {
        if (candidate.empty())
            continue;
        const auto text = readText(candidate);
        if (!text)
            continue;
        log_.log(QStringLiteral("[Config] ⚙️ .env yüklendi: ") + pathText(candidate));
        const Values parsed = parseEnv(*text);
        for (auto pair = parsed.begin(); pair != parsed.end(); ++pair)
            if (values.value(pair.key()).isEmpty())
                values[pair.key()] = pair.value();
        break;
    }
    *envValues_.lock() = values;
}

QString AppConfig::googleClientID() const {
    return nonEmpty(clientIDKey).value_or(defaultClientID);
}

std::optional<QString> AppConfig::googleClientSecret() const {
    return nonEmpty(clientSecretKey);
}

bool AppConfig::redirectsToLoopback() const {
    return googleClientSecret() || redirect() == u"loopback";
}

std::optional<int> AppConfig::dailyRequests() const {
    constexpr int most = 1'000'000'000;
    const int requests = nonEmpty(dailyRequestsKey).value_or(QString()).toInt();
    return requests > 0 && requests <= most ? std::optional(requests) : std::nullopt;
}

bool AppConfig::isClientConfigured() const {
    return nonEmpty(clientIDKey).has_value();
}

QString AppConfig::redirect() const {
    return nonEmpty(redirectKey).value_or(QString());
}

std::optional<QString> AppConfig::nonEmpty(const QString& key) const {
    const QString value = envValues_.lock()->value(key);
    return value.isEmpty() ? std::nullopt : std::optional(value);
}

AppConfig::Values AppConfig::parseEnv(const QString& text) {
    static const QRegularExpression newline(
        QStringLiteral("[\\n\\x0B\\f\\r\\x{85}\\x{2028}\\x{2029}]"));
    Values values;
    for (const QString& rawLine : text.split(newline, Qt::SkipEmptyParts)) {
        const QString line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0 || equals + 1 == line.size())
            continue; // no "=", an empty key or an empty value
        values[line.left(equals).trimmed()] = unquoted(line.mid(equals + 1).trimmed());
    }
    return values;
}

} // namespace quorvane
