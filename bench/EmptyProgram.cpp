#include <QApplication>
#include <QIcon>
#include <QSystemTrayIcon>
#include <QTimer>

#include <chrono>
#include <cstdio>

/// A program that has nothing but an icon in the tray: prints the monotonic clock, in seconds, when
/// that stands there, and ends.
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QSystemTrayIcon icon(QIcon(QPixmap(22, 22)));
    icon.show();
    QTimer::singleShot(0, &application, [] {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        std::printf("%.6f\n", std::chrono::duration<double>(now).count());
        QApplication::quit();
    });
    return QApplication::exec();
}
