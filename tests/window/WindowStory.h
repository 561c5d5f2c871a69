#pragma once

#include "window/WindowWorld.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

/// What a person does in the window, and what they see of it.
class WindowStory : public testing::Test, public WindowWorld {
  protected:
    WindowStory() {
        world.google.change(
            [](emulator::Behaviour& google) { google.person.email = u"ayse.yilmaz@ornek.com"_s; });
    }

    void expectShown(const QStringList& expected) {
        settleView();
        const QStringList seen = texts();
        for (const QString& text : expected)
            EXPECT_TRUE(seen.contains(text)) << "not shown: " << text.toStdString()
                                             << "\nshown: " << seen.join(u" | "_s).toStdString();
    }
    void expectHidden(const QStringList& texts) {
        settleView();
        for (const QString& text : texts)
            EXPECT_FALSE(shows(text)) << "shown: " << text.toStdString();
    }
    void openSignedIn() {
        openLibrary();
        signIn();
        window.showWindowAndCenter();
        settleView();
    }
};

} // namespace quorvane::test
