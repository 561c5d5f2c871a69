#include "support/TemporaryFolder.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

/// Calls `visit` with the file (relative to src), the delimiter and the name of each include.
template <typename Visit>
void forEachInclude(Visit&& visit) {
    static const QRegularExpression include(u"^\\s*#\\s*include\\s+([\"<])([^\">]+)"_s,
                                            QRegularExpression::MultilineOption);
    const std::filesystem::path source = sourceFolder() / "src";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(source)) {
        const auto extension = entry.path().extension();
        if (extension != ".cpp" && extension != ".h" && extension != ".mm")
            continue;
        const QString file = pathText(entry.path().lexically_relative(source));
        auto matches = include.globalMatch(QString::fromUtf8(readFile(entry.path())));
        while (matches.hasNext()) {
            const auto match = matches.next();
            visit(file, match.captured(1) == u"\"", match.captured(2));
        }
    }
}

TEST(IncludeDirectionTest, foldersIncludeOnlyWhatLiesBelowThem) {
    const QMap<QString, QStringList> below{
        {u"foundation"_s, {}},
        {u"sqlite"_s, {u"foundation"_s}},
        {u"store"_s, {u"foundation"_s, u"sqlite"_s}},
        {u"metadata"_s, {u"foundation"_s, u"sqlite"_s}},
        {u"library"_s, {u"foundation"_s, u"store"_s, u"metadata"_s}},
        {u"google"_s, {u"foundation"_s}},
        {u"sync"_s, {u"foundation"_s, u"store"_s, u"metadata"_s, u"library"_s, u"google"_s}},
        {u"platform"_s,
         {u"foundation"_s, u"sqlite"_s, u"store"_s, u"metadata"_s, u"library"_s, u"google"_s,
          u"sync"_s, u"ui"_s}},
        {u"ui"_s,
         {u"foundation"_s, u"store"_s, u"metadata"_s, u"library"_s, u"google"_s, u"sync"_s}},
        {u"app"_s,
         {u"foundation"_s, u"store"_s, u"metadata"_s, u"library"_s, u"google"_s, u"sync"_s, u"ui"_s,
          u"platform"_s}},
    };
    int seen = 0;
    forEachInclude([&](const QString& file, bool isOurs, const QString& name) {
        if (!isOurs)
            return;
        ++seen;
        const QString from = file.section(u'/', 0, 0);
        const QString to = name.section(u'/', 0, 0);
        EXPECT_TRUE(from == to || below.value(from).contains(to))
            << file.toStdString() << " includes " << name.toStdString();
        // Containers know Exif and what all of metadata stands on, and nothing of one another.
        const QString room = file.section(u'/', 1, -2);
        const QString other = name.section(u'/', 1, -2);
        EXPECT_TRUE(from != u"metadata" || room.isEmpty() || other.isEmpty() || other == room ||
                    other == u"exif")
            << file.toStdString() << " includes " << name.toStdString();
    });
    EXPECT_GT(seen, 100);
}

TEST(IncludeDirectionTest, onlyTheUserInterfaceKnowsWindows) {
    static const QRegularExpression graphical(
        u"^(Qt(Gui|Qml|Quick|Widgets|DBus)|"
        "Q(Gui|Qml|Quick|Widget|Window|Application|Image|Pixmap|Painter|Icon|Color|Font|Menu|"
        "Action|SystemTray|Desktop|Clipboard))"_s);
    forEachInclude([](const QString& file, bool, const QString& name) {
        const bool mayDraw = file.startsWith(u"ui/window/"_s) || file.startsWith(u"app/gui/"_s) ||
                             file.startsWith(u"platform/linux/desktop/"_s);
        EXPECT_TRUE(mayDraw || !graphical.match(name).hasMatch())
            << file.toStdString() << " includes " << name.toStdString();
    });
}

TEST(IncludeDirectionTest, oneFileSpeaksToEachForeignLibrary) {
    QMap<QString, QStringList> users;
    forEachInclude([&](const QString& file, bool, const QString& name) {
        const QString library = name.section(u'/', 0, 0).remove(u".h"_s);
        if (!users[library].contains(file))
            users[library] += file;
    });
    for (const QString& library : {u"curl"_s, u"sqlite3"_s, u"libsecret"_s, u"openssl"_s})
        EXPECT_EQ(users[library].size(), 1)
            << library.toStdString() << ": " << users[library].join(u' ').toStdString();
    EXPECT_LE(users[u"exiv2"_s].size(), 1);
}

} // namespace

} // namespace quorvane::test
