#include "ui/InspectorModel.h"

#include "foundation/File.h"
#include "ui/RecordTimeline.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr qint64 logTail = 256 << 10; // bytes

QString timeText(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count()).toString(u"HH:mm:ss"_s);
}

QVariantMap rowOf(const TimelineStep& step) {
    return {{u"time"_s, timeText(step.time)},
            {u"title"_s, step.title},
            {u"detail"_s, step.detail},
            {u"isFailure"_s, step.isFailure},
            {u"name"_s, timeText(step.time) + u' ' + step.title +
                            (step.detail.isEmpty() ? QString() : u", "_s + step.detail)}};
}

/// The last whole lines of the file; what cannot be read is said.
QString endOf(const std::filesystem::path& path) {
    QFile file(pathText(path));
    if (!file.open(QIODevice::ReadOnly))
        return u"Günlük okunamadı: "_s + file.errorString();
    if (file.size() > logTail) {
        file.seek(file.size() - logTail);
        file.readLine();
    }
    return QString::fromUtf8(file.readAll());
}

} // namespace

InspectorModel::InspectorModel(MenuBarViewModel& model) : model_(model) {
    connect(&model_, &MenuBarViewModel::routeChanged, this, [this] {
        if (!openLine_.isEmpty())
            close();
    });
}

void InspectorModel::toggle(const QString& line, const QString& about) {
    if (line == openLine_ || about.isEmpty())
        return close();
    const auto session = model_.session();
    if (!session)
        return;
    std::vector<LogEntry> lines;
    for (const LogEntry& entry : model_.recentLogs()->entries())
        if (entry.about == about)
            lines.push_back(entry);
    tasks_.post([this, session, line, about, lines](const std::stop_token&) {
        QVariantList steps;
        try {
            if (const auto history = RecordHistory::of(session->run.db, about))
                for (const TimelineStep& step : timelineOf(*history, lines))
                    steps.append(rowOf(step));
        } catch (const DBError& error) {
            steps = {rowOf({model_.services().clock.now(), u"okunamadı"_s,
                            error.localizedDescription(), true})};
        }
        onMainThread([self = QPointer(this), line, steps] {
            if (!self)
                return;
            self->openLine_ = line;
            self->steps_ = steps;
            Q_EMIT self->changed();
        });
    });
}

void InspectorModel::close() {
    openLine_.clear();
    steps_.clear();
    Q_EMIT changed();
}

/// Of albums and of the library, wherever the log tells them.
QStringList InspectorModel::knownNames() const {
    QStringList names{model_.selectedTargetAlbumTitle(), model_.selectedSourceAlbumTitle()};
    for (const LocalAlbumItem& album : model_.localAlbums())
        names += album.title;
    for (const GoogleAlbum& album : model_.googleAlbums())
        names += album.title.value_or(QString());
    if (model_.library() != nullptr)
        names += pathText(model_.library()->root.stem());
    return names;
}

QString InspectorModel::stateText() const {
    const LibrarySession* library = model_.library();
    QStringList lines{
        u"Quorvane raporu"_s,
        u"Sürüm: "_s + QStringLiteral(QUORVANE_VERSION),
        u"Sistem: %1, %2, Qt %3"_s.arg(QSysInfo::prettyProductName(), QSysInfo::kernelVersion(),
                                       QString::fromLatin1(qVersion())),
        u"Oturum: "_s + (model_.isSignedIn() ? u"açık"_s : u"kapalı"_s),
        u"Kitaplık: "_s + (library == nullptr  ? u"seçilmedi"_s
                           : library->isBundle ? u"Photos arşivi"_s
                                               : u"klasör"_s),
        u"Bekleyen %1, doğrulanan %2, başarısız %3, tarihsiz %4 (tarih yazılamayan %5)"_s.arg(
            QString::number(model_.pendingCount()), QString::number(model_.verifiedCount()),
            QString::number(model_.failedCount()), QString::number(model_.dateUnresolvedCount()),
            QString::number(model_.undatableCount()))};
    for (const FailedCategorySummary& failure : model_.failedCategorySummaries())
        lines += u"  %1: %2"_s.arg(failure.categoryName, QString::number(failure.count));
    lines += u"Son durum"_s;
    const QJsonObject state = model_.run().state().json(); // bare: names stand between quotes
    for (auto field = state.begin(); field != state.end(); ++field)
        lines += u"  %1: %2"_s.arg(field.key(), field->toString());
    const SessionCheckModel& check = *model_.sessionCheck();
    if (!check.rows().isEmpty())
        lines += u"\nOturum denetimi: "_s + check.summary();
    for (const QVariant& row : check.rows())
        lines += u"  "_s + row.toMap()[u"name"_s].toString();
    lines += u"\nCanlı akış"_s;
    for (const LogEntry& entry : model_.recentLogs()->entries())
        lines += timeText(entry.timestamp) + u' ' + entry.message;
    return lines.join(u'\n');
}

void InspectorModel::saveReport(const std::filesystem::path& file, Names names) {
    tasks_.post(
        [this, file, names, state = stateText(), known = knownNames()](const std::stop_token&) {
            const QString text = state + u"\n\nGünlük\n"_s + endOf(model_.services().logFile);
            try {
                replaceFile(file, redacted(text, pathFrom(QDir::homePath()), names, known).toUtf8(),
                            0600);
            } catch (const FileError& error) {
                onMainThread([self = QPointer(this), reason = error.localizedDescription()] {
                    if (self)
                        self->model_.showError(u"Rapor kaydedilemedi: "_s + reason);
                });
            }
        });
}

} // namespace quorvane
