#include "ui/ModelWorld.h"

#include "app/RunLock.h"

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
                                      QStringLiteral("lastSyncTime"),
                                      QStringLiteral("lastSyncTimeString"),
                                      QStringLiteral("syncCompletedCount"),
                                      QStringLiteral("syncProgressFraction"),
                                      QStringLiteral("syncProgressPercentage")};
    QJsonObject state{{QStringLiteral("state"), rawValue(model.state())}};
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

ModelWorld::ModelWorld() {
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    clock.skipSleeps(true);
    host.onOpened = [this](std::shared_ptr<const LibrarySession> session) {
        session_ = std::move(session);
        model->setLibrary(session_);
    };
    host.onAway = [this](const AwayLibrary& library) { model->setLibraryAway(library); };
    restart();
    lastState_ = stateOf(*model);
}

void ModelWorld::restart() {
    model = std::make_unique<MenuBarViewModel>(MenuBarViewModel::Services{
        house.google.oauth, house.google.albums, tracker, preferences, house.core.logger,
        logPublisher, house.console, clock, desktop, trash,
        [file = house.core.folders.runLock()] { return std::make_shared<RunLock>(file); },
        house.core.logger.logFile(), [this] { host.accountDidChange(); },
        [this](const QString& url) { return handOverURL(url); }, [this] { host.look(); },
        [this](const std::stop_token&) { return checkedThings; },
        [](const FinishedRun& run) {
            return QByteArray::number(run.outcome.verified) + " doğrulandı";
        }});
}

ModelWorld::~ModelWorld() {
    settle(); // a library that is being opened again belongs to the house
    model.reset();
    session_.reset();
    QCoreApplication::sendPostedEvents();
}

void ModelWorld::openLibrary() {
    bool isOpen = false;
    host.open(world.pictures, [&](AuthorizationStatus) { isOpen = true; });
    ASSERT_TRUE(waitOnMainThread([&] { return isOpen; }));
    scan();
}

void ModelWorld::scan() {
    session_->run.observer.initialScan();
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
        const AccountIdentity account = house.google.account();
        const bool isReopened =
            !session_ || !account.isKnown() || session_->life.account() == account;
        return isReopened && !model->isWorking();
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
