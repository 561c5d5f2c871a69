#pragma once

#include "ui/ModelWorld.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

/// A story: each step is a command, and what of the published state it changed.
class ModelStory : public testing::Test, public ModelWorld {
  protected:
    template <typename Command>
    void step(const QString& title, Command&& command) {
        command();
        ASSERT_TRUE(settle()) << title.toStdString();
        record += u"## "_s + title + u'\n' + changes();
    }

    void expectStory(const char* expected) const { EXPECT_EQ(record.toStdString(), expected); }

    QString record;
};

} // namespace quorvane::test
