#include "ui/Hero.h"

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using namespace Qt::StringLiterals;

TEST(HeroTest, WhatNoRunCanSendIsNeverTakenForSafe) {
    HeroFacts facts;
    facts.product = {.isSignedIn = true, .library = ProductFacts::Library::open};
    facts.onlyInCloud = 1'200;
    facts.elsewhere = 3;
    EXPECT_EQ(heroOf(facts).leftOut.split(u'\n'),
              QStringList({u"1.200 öğe yalnızca iCloud'da, yedeklenmedi: özgünleri bu Mac'e "
                           "indikçe sıraya alınır."_s,
                           u"3 öğenin arşiv dışındaki özgünü bulunamadı, yedeklenmedi."_s}));
    facts.product.run.phase = RunState::Phase::waiting;
    EXPECT_TRUE(heroOf(facts).leftOut.isEmpty()) << "the wait has its own line";
}

} // namespace

} // namespace quorvane::test
