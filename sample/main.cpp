#include "sample/SampleLibrary.h"

#include "foundation/File.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if ((arguments.size() != 2 && arguments.size() != 3) || arguments.at(1).startsWith(u'-')) {
        std::fputs("Kullanım: quorvane-sample-library KLASÖR [JPEG_SAYISI]\n", stderr);
        return 2;
    }
    try {
        const auto folder = quorvane::pathFrom(arguments.at(1));
        const int made = arguments.size() == 3
                             ? quorvane::sample::writeManyPictures(folder, arguments.at(2).toInt())
                             : quorvane::sample::writeSampleLibrary(folder);
        std::printf("%d dosya yazıldı\n", made);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(quorvane::describe(error)));
        return 1;
    }
}
