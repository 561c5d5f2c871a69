#include "bench/UploadSink.h"
#include "foundation/File.h"
#include "google/CurlHttpClient.h"
#include "google/GoogleUploadTask.h"
#include "metadata/ImageMetadata.h"
#include "metadata/MediaMetadataService.h"
#include "metadata/MovieMetadata.h"

#include <cstdio>

using namespace quorvane;

namespace {

class StandardError final : public Log {
  public:
    void log(const QString& message) override {
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
    }
};

class AnyToken final : public AccessTokenProvider {
  public:
    QString validAccessToken(std::stop_token /*stop*/) override { return QStringLiteral("token"); }
    std::optional<QString> renewedAccessToken(const QString&, std::stop_token) override {
        return std::nullopt;
    }
};

/// Writes a date, in seconds since 1970, into every file, as staging does; says what failed.
int stamp(const QString& seconds, const QStringList& files) {
    StandardError log;
    const Date date{std::chrono::seconds(seconds.toLongLong())};
    int failures = 0;
    for (const QString& file : files) {
        const auto path = pathFrom(file);
        const bool isMovie = isVideoExtension(file.section(u'.', -1).toLower());
        const MetadataResult result = isMovie ? enrichVideoMetadata(path, date, log)
                                              : enrichImageMetadata(path, date, std::nullopt, log);
        if (result.which == MetadataResult::Case::success)
            continue;
        ++failures;
        log.log(file + QStringLiteral(": ") + result.message);
    }
    return failures == 0 ? 0 : 1;
}

/// Sends a file to the service at `baseURL`, as a backup does.
int send(const QString& baseURL, const QString& file) {
    CurlHttpClient http;
    AnyToken tokens;
    GoogleLibraryApi api(http, tokens, GoogleEndpoints::resolve(baseURL));
    UploadMemory none;
    GoogleUploadTask(api).upload({.file = pathFrom(file), .fileName = file, .isMovie = true}, none,
                                 {}, {});
    return 0;
}

} // namespace

/// The parts of a backup that are measured beside other programs.
int main(int argc, char** argv) {
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    try {
        if (words.size() > 2 && words[0] == QLatin1String("stamp"))
            return stamp(words[1], words.mid(2));
        if (words.size() == 3 && words[0] == QLatin1String("send"))
            return send(words[1], words[2]);
        if (words == QStringList{QStringLiteral("sink")})
            bench::runUploadSink();
        std::fputs("quorvane-bench stamp SECONDS FILE... | send URL FILE | sink\n", stderr);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(describe(error)));
        return 1;
    }
}
