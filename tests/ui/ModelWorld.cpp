#include "ui/ModelWorld.h"

#include "app/RunLock.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace quorvane::test {

ModelWorld::ModelWorld() {
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    clock.skipSleeps(true);
    host.onOpened = [this](std::shared_ptr<const LibrarySession> session) {
        session_ = std::move(session);
        model->setLibrary(session_);
    };
    host.onAway = [this](const AwayLibrary& library) { model->setLibraryAway(library); };
    restart();
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

} // namespace quorvane::test
