#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QStyleHints>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// Whatever Qt and QML complain of is a fault of ours.
void failOnComplaint(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool isOfTheTest = message.startsWith(QStringLiteral("This plugin does not support")) ||
                             message.contains(QStringLiteral("systemTrayWindowChanged"));
    if (type != QtDebugMsg && type != QtInfoMsg && !isOfTheTest)
        ADD_FAILURE() << (context.category == nullptr ? "" : context.category) << ": "
                      << message.toStdString();
}

} // namespace

/// The toolkit's software renderer keeps the texture of an `Image` when its window goes.
extern "C" const char* __lsan_default_suppressions() { // NOLINT: the sanitizer's name
    return "leak:QSGTexture::QSGTexture\n";
}

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM",
                "offscreen:configfile=" +
                    quorvane::pathText(quorvane::test::sourceFolder() / "tests/window/screen.json")
                        .toLocal8Bit());
    const QTemporaryDir runtimeFolder; // of nobody but us, as Qt wants it
    qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toLocal8Bit());
    qInstallMessageHandler(failOnComplaint);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(0); // the tests click at once
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
