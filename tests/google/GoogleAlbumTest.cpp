#include "google/GoogleAlbum.h"

#include <gtest/gtest.h>

namespace quorvane {

using namespace Qt::StringLiterals;

TEST(GoogleAlbum, MenuTitleWarnsNearTheLimit) {
    const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    for (const auto& [count, title] : {
             std::pair<std::optional<QString>, const char*>{std::nullopt, "Aile (0)"},
             {QString(), "Aile (0)"},
             {u"çok"_s, "Aile (0)"},
             {u"12x"_s, "Aile (0)"},
             {u"999"_s, "Aile (999)"},
             {u"19499"_s, "Aile (19.499)"},
             {u"19500"_s, "⚠️ Aile (19.500 / 20.000 • Sınıra Yakın)"},
             {u"19999"_s, "⚠️ Aile (19.999 / 20.000 • Sınıra Yakın)"},
             {u"20000"_s, "⛔️ Aile (20.000 • Kapasite Dolu)"},
             {u"123456"_s, "⛔️ Aile (123.456 • Kapasite Dolu)"},
         }) {
        const GoogleAlbum album{u"1"_s, u"Aile"_s, {}, count};
        EXPECT_EQ(album.menuDisplayTitle(turkish), QString::fromUtf8(title));
    }
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ((GoogleAlbum{u"1"_s, {}, {}, u"1234"_s}).formattedCountString(english), u"1,234"_s);
}

TEST(GoogleAlbum, JsonIsGooglesOwn) {
    const GoogleAlbum full{u"1"_s, u"Aile"_s, u"https://photos.example/1"_s, u"7"_s};
    const QJsonObject json{{u"id"_s, u"1"_s},
                           {u"title"_s, u"Aile"_s},
                           {u"productUrl"_s, u"https://photos.example/1"_s},
                           {u"mediaItemsCount"_s, u"7"_s}};
    EXPECT_EQ(full.toJson(), json);
    EXPECT_EQ(GoogleAlbum::fromJson(json), full);

    const QJsonObject sparse{{u"id"_s, u"2"_s}, {u"title"_s, 5}};
    EXPECT_EQ(GoogleAlbum::fromJson(sparse), (GoogleAlbum{u"2"_s, {}, {}, {}}));
    for (const QJsonValue& id : {QJsonValue(), QJsonValue(3), QJsonValue(QString())})
        EXPECT_EQ(GoogleAlbum::fromJson({{u"id"_s, id}}), std::nullopt);
}

} // namespace quorvane
