#include "google/GoogleAlbum.h"

#include <gtest/gtest.h>

namespace quorvane {

TEST(GoogleAlbum, MenuTitleWarnsNearTheLimit) {
    const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    for (const auto& [count, title] : {
             std::pair<std::optional<QString>, const char*>{std::nullopt, "Aile (0)"},
             {QString(), "Aile (0)"},
             {QStringLiteral("çok"), "Aile (0)"},
             {QStringLiteral("12x"), "Aile (0)"},
             {QStringLiteral("999"), "Aile (999)"},
             {QStringLiteral("19499"), "Aile (19.499)"},
             {QStringLiteral("19500"), "⚠️ Aile (19.500 / 20.000 • Sınıra Yakın)"},
             {QStringLiteral("19999"), "⚠️ Aile (19.999 / 20.000 • Sınıra Yakın)"},
             {QStringLiteral("20000"), "⛔️ Aile (20.000 • Kapasite Dolu)"},
             {QStringLiteral("123456"), "⛔️ Aile (123.456 • Kapasite Dolu)"},
         }) {
        const GoogleAlbum album{QStringLiteral("1"), QStringLiteral("Aile"), {}, count};
        EXPECT_EQ(album.menuDisplayTitle(turkish), QString::fromUtf8(title));
    }
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ((GoogleAlbum{QStringLiteral("1"), {}, {}, QStringLiteral("1234")})
                  .formattedCountString(english),
              QStringLiteral("1,234"));
}

TEST(GoogleAlbum, JsonIsGooglesOwn) {
    const GoogleAlbum full{QStringLiteral("1"), QStringLiteral("Aile"),
                           QStringLiteral("https://photos.example/1"), QStringLiteral("7")};
    const QJsonObject json{
        {QStringLiteral("id"), QStringLiteral("1")},
        {QStringLiteral("title"), QStringLiteral("Aile")},
        {QStringLiteral("productUrl"), QStringLiteral("https://photos.example/1")},
        {QStringLiteral("mediaItemsCount"), QStringLiteral("7")}};
    EXPECT_EQ(full.toJson(), json);
    EXPECT_EQ(GoogleAlbum::fromJson(json), full);

    const QJsonObject sparse{{QStringLiteral("id"), QStringLiteral("2")},
                             {QStringLiteral("title"), 5}};
    EXPECT_EQ(GoogleAlbum::fromJson(sparse), (GoogleAlbum{QStringLiteral("2"), {}, {}, {}}));
    for (const QJsonValue& id : {QJsonValue(), QJsonValue(3), QJsonValue(QString())})
        EXPECT_EQ(GoogleAlbum::fromJson({{QStringLiteral("id"), id}}), std::nullopt);
}

} // namespace quorvane
