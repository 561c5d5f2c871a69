#include "ui/MenuModel.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

std::vector<MenuRow> rowsOf(const QStringList& titles) {
    std::vector<MenuRow> rows{{.title = u"Tümü"_s, .isChecked = true},
                              {.kind = MenuRow::Kind::line},
                              {.kind = MenuRow::Kind::header, .title = u"Albümler"_s}};
    for (const QString& title : titles)
        rows.push_back({.title = title, .isChecked = false, .isEnabled = title != u"Irmak"_s});
    return rows;
}

} // namespace

TEST(MenuModelTest, theKeyboardFindsRows) {
    MenuModel menu;
    EXPECT_EQ(menu.rowTyped(u"a"_s, 0), -1);
    EXPECT_EQ(menu.chosenRow(), -1);
    menu.setRows(rowsOf(
        {u"⚠️ Aile Arşivi (19.640)"_s, u"Irmak"_s, u"Aile Yazı"_s, u"İzmir"_s, u"Işık"_s}));
    struct Row {
        QString typed;
        int from, found;
    };
    for (const Row& row :
         {Row{u"a"_s, 0, 3}, Row{u"a"_s, 3, 5}, Row{u"aa"_s, 5, 3}, Row{u"aile y"_s, 3, 5},
          Row{u"i"_s, 0, 6}, Row{u"ı"_s, 0, 7}, Row{u"x"_s, 0, -1}})
        EXPECT_EQ(menu.rowTyped(row.typed, row.from), row.found) << row.typed.toStdString();
    EXPECT_EQ(menu.rowFrom(0, 1), 3) << "neither a line nor a header";
    EXPECT_EQ(menu.rowFrom(3, 1), 5) << "nor what cannot be chosen";
    EXPECT_EQ(menu.rowFrom(7, 7), -1);
    EXPECT_EQ(menu.rowFrom(7, -7), 0);
}

TEST(MenuModelTest, rowsThatStayKeepTheirPlace) {
    MenuModel menu;
    menu.setRows(rowsOf({u"b"_s, u"d"_s}));
    QSignalSpy inserted(&menu, &MenuModel::rowsInserted), removed(&menu, &MenuModel::rowsRemoved),
        reset(&menu, &MenuModel::modelReset);
    menu.setRows(rowsOf({u"b"_s, u"c"_s, u"d"_s}));
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 4);
    menu.setRows(rowsOf({u"b"_s, u"e"_s}));
    EXPECT_EQ(menu.data(menu.index(4), MenuModel::titleRole), u"e"_s);
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(reset.size(), 0);
    EXPECT_EQ(menu.rowCount(), 5);
}

} // namespace quorvane::test
