#include "ui/ModelWorld.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QMetaProperty>

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

/// Every published value, as JSON.
QJsonObject stateOf(const MenuBarViewModel& model) {
    static const QStringList changing{QStringLiteral("objectName"),
                                      QStringLiteral("recentLogs"),
                                      QStringLiteral("activeTransfers"),
                                      QStringLiteral("currentUploadSpeedString"),
                                      QStringLiteral("latencyMs"),
                                      QStringLiteral("peakUploadSpeedString"),
                                      QStringLiteral("selectedTargetAlbumID"),
                                      QStringLiteral("selectedSourceAlbumID"),
                                      QStringLiteral("lastSyncTimeString"),
                                      QStringLiteral("syncCompletedCount"),
                                      QStringLiteral("syncProgressFraction"),
                                      QStringLiteral("syncProgressPercentage")};
    QJsonObject state;
    const QMetaObject& type = *model.metaObject();
    for (int i = 0; i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        const QString name = QString::fromLatin1(property.name());
        if (changing.contains(name))
            continue;
        const QVariant value = property.read(&model);
        if (property.isEnumType())
            state[name] = QString::fromLatin1(property.enumerator().valueToKey(value.toInt()));
        else if (value.typeId() == QMetaType::QVariantList) {
            QJsonArray rows;
            for (const QVariant& each : value.toList()) {
                QVariantMap row = each.toMap();
                row.remove(QStringLiteral("id"));
                rows.append(QJsonObject::fromVariantMap(row));
            }
            state[name] = rows;
        } else
            state[name] = QJsonValue::fromVariant(value);
    }
    return state;
}

QString textOf(const QJsonValue& value) {
    if (value.isArray()) {
        QStringList rows;
        for (const QJsonValue& row : value.toArray()) {
            QStringList members;
            for (const QJsonValue& member : row.toObject())
                members += member.toVariant().toString();
            rows += members.join(QStringLiteral(", "));
        }
        return QStringLiteral("[") + rows.join(QStringLiteral(" | ")) + QStringLiteral("]");
    }
    return value.toVariant().toString();
}

} // namespace

ModelWorld::ModelWorld()
    : folders_{world.folder / "home", world.folder / "home/Pictures", world.folder / "home/temp"},
      preferences(folders_.preferences()),
      endpoints(GoogleEndpoints::resolve(world.google.baseURL())),
      engine({world.pictures, folders_, destination, tracker, preferences, log, console, clock,
              batchClock}) {
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    clock.skipSleeps(true);
    restart();
    lastState_ = stateOf(*model);
}

void ModelWorld::restart() {
    model = std::make_unique<MenuBarViewModel>(MenuBarViewModel::Services{
        oauth, albums, tracker, preferences, log, logPublisher, console, clock, desktop,
        [this] {
            ++locksTaken;
            return std::make_shared<int>(locksTaken);
        },
        "quorvane.log", [] {}, [this](const QString& url) { return handOverURL(url); },
        [this](const std::stop_token&) { return checkedThings; }});
}

ModelWorld::~ModelWorld() {
    model.reset();
    QCoreApplication::sendPostedEvents();
}

void ModelWorld::openLibrary() {
    model->setLibrary(std::make_shared<LibrarySession>(
        LibrarySession{engine.run, engine.life, engine.sources, engine.metadata, world.pictures}));
    scan();
}

void ModelWorld::scan() {
    engine.observer.initialScan();
    model->libraryDidChange();
    settle();
}

void ModelWorld::signIn() {
    model->signIn();
    settle();
}

bool ModelWorld::settle() {
    // What was posted may ask for more work: settled is what stays so.
    const auto isSettled = [this] {
        for (int i = 0; i < 3; ++i) {
            if (model->isWorking())
                return false;
            QCoreApplication::sendPostedEvents();
        }
        return !model->isWorking();
    };
    return waitOnMainThread(isSettled);
}

QString ModelWorld::changes() {
    const QJsonObject state = stateOf(*model);
    QStringList lines;
    for (const QString& name : state.keys())
        if (state[name] != lastState_[name])
            lines += QStringLiteral("  %1: %2\n").arg(name, textOf(state[name]));
    lastState_ = state;
    return lines.join(QString());
}

} // namespace quorvane::test
