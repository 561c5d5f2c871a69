#pragma once

#include "emulator/GoogleEmulator.h"
#include "foundation/UserFolders.h"
#include "sample/SampleLibrary.h"
#include "store/DatabaseManager.h"
#include "support/TemporaryFolder.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <httplib.h>

#include <gtest/gtest.h>

#include <map>

namespace quorvane::test {

using namespace emulator;
using namespace Qt::StringLiterals;

/// A person's home, a Google Photos service and the program itself, run as a process.
struct CliWorld : testing::Test {
    struct Outcome {
        int code = -1;
        QString out;
        QString err;
    };

    CliWorld() {
        emulator.start();
        environment = QProcessEnvironment::systemEnvironment();
        for (const QString& name :
             {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"GOOGLE_CLIENT_ID"_s, u"GOOGLE_CLIENT_SECRET"_s})
            environment.remove(name);
        const auto set = [this](const QString& name, const std::filesystem::path& path) {
            std::filesystem::create_directories(path);
            std::filesystem::permissions(path, std::filesystem::perms::owner_all);
            environment.insert(name, pathText(path));
        };
        set(u"HOME"_s, folders.home);
        set(u"XDG_CONFIG_HOME"_s, folders.home / ".config");
        set(u"XDG_DATA_HOME"_s, folders.home / ".local/share");
        set(u"XDG_RUNTIME_DIR"_s, folder / "run");
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"disabled:"_s);
        environment.insert(u"QUORVANE_GOOGLE_BASE_URL"_s, emulator.baseURL());
        std::filesystem::create_directories(folders.pictures);
        folder.write("home/.config/user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Resimlerim\"\n");
    }

    std::function<void()> inChild = [] {}; ///< called in the program's process before it begins

    std::unique_ptr<QProcess> start(const QStringList& words) const {
        auto process = std::make_unique<QProcess>();
        process->setChildProcessModifier(inChild);
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(pathText(folder.path()));
        process->start(pathText(programFolder() / "quorvane-cli"), words);
        EXPECT_TRUE(process->waitForStarted());
        return process;
    }

    static Outcome finish(QProcess& process) {
        process.closeWriteChannel();
        EXPECT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(60'000));
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    Outcome run(const QStringList& words) const { return finish(*start(words)); }

    /// Goes where the program says and pastes the address to which the service sends the browser.
    Outcome signIn() const {
        const auto process = start({u"login"_s});
        QByteArray line;
        while (!line.startsWith("http") && (process->canReadLine() || process->waitForReadyRead()))
            line = process->readLine().trimmed();
        httplib::Client browser("127.0.0.1", emulator.port());
        const QByteArray path = line.mid(emulator.baseURL().size());
        const auto answer = browser.Get(path.toStdString());
        EXPECT_TRUE(answer) << line.toStdString();
        if (answer)
            process->write(QByteArray::fromStdString(answer->get_header_value("Location")) + '\n');
        return finish(*process);
    }

    QStringList sync(const QStringList& more = {}) const {
        return QStringList{u"sync"_s, u"--library"_s, pathText(library)} + more;
    }

    /// What the store holds, by status. Only while no program runs.
    std::map<SyncStatus, int> stored() const {
        Console silent(Console::Channel::silent);
        DatabaseManager db(folders.database(), silent);
        std::map<SyncStatus, int> counts;
        for (const auto& [status, count] : db.countByStatus())
            counts[status] = count;
        return counts;
    }

    TemporaryFolder folder;
    UserFolders folders{folder / "home", folder / "home/Resimlerim"};
    std::filesystem::path library = folder / "arşiv";
    GoogleEmulator emulator;
    QProcessEnvironment environment;
};

using Stored = std::map<SyncStatus, int>;

} // namespace quorvane::test
