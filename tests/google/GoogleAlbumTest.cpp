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
}

} // namespace quorvane
