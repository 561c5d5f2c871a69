#include "foundation/CommandLine.h"

#include "app/cli/Progress.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace cli;
using namespace Qt::StringLiterals;

namespace {

const CommandSpec copy{u"copy"_s,
                       u"kopyalar"_s,
                       {{u"to"_s, u"YOL"_s, u"nereye"_s},
                        {u"mode"_s, u"KİP"_s, u"nasıl"_s, {u"fast"_s, u"safe"_s}},
                        {u"json"_s, {}, u"nesne yazar"_s}}};

TEST(CommandLineTest, wordsBecomeValues) {
    const struct {
        QStringList words;
        std::optional<QString> to, mode;
        bool json = false;
    } cases[]{
        {{}, {}, {}},
        {{u"--json"_s, u"--to"_s, u"a b"_s}, u"a b"_s, {}, true},
        {{u"--to=x=y"_s, u"--mode=safe"_s}, u"x=y"_s, u"safe"_s},
        {{u"--to="_s}, u""_s, {}},
        {{u"--to"_s, u"--json"_s}, u"--json"_s, {}}, // a value may look like an option
        {{u"--to"_s, u"a"_s, u"--to"_s, u"b"_s}, u"b"_s, {}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.words.join(u' ').toStdString());
        const Arguments arguments = parse(copy, each.words);
        EXPECT_EQ(arguments.value(u"to"_s), each.to);
        EXPECT_EQ(arguments.value(u"mode"_s), each.mode);
        EXPECT_EQ(arguments.has(u"json"_s), each.json);
        EXPECT_EQ(arguments.operand(), QString());
    }
    CommandSpec withOperand = copy;
    withOperand.operand = u"ADRES"_s;
    EXPECT_EQ(parse(withOperand, {u"--json"_s, u"a:/b"_s}).operand(), u"a:/b");
}

TEST(CommandLineTest, wordsThatDoNotFitAreNamed) {
    const struct {
        QStringList words;
        QString text;
    } cases[]{
        {{u"--nothing"_s}, u"copy: bilinmeyen seçenek: --nothing"_s},
        {{u"--"_s}, u"copy: bilinmeyen seçenek: --"_s},
        {{u"extra"_s}, u"copy: beklenmeyen sözcük: extra"_s},
        {{u"-j"_s}, u"copy: beklenmeyen sözcük: -j"_s},
        {{u"--json=1"_s}, u"copy: --json değer almaz"_s},
        {{u"--json"_s, u"--to"_s}, u"copy: --to bir değer bekler (YOL)"_s},
        {{u"--mode"_s, u"slow"_s},
         u"copy: --mode için geçersiz değer: slow (geçerli: fast, safe)"_s},
    };
    for (const auto& each : cases)
        EXPECT_EQ(messageOf([&] { parse(copy, each.words); }), each.text);
}

TEST(ProgressTest, theLineTellsCountPaceAndNames) {
    const auto transfers = [](const QStringList& names) {
        TransferSnapshot snapshot;
        snapshot.currentSpeedText = u"3.2 MB/s"_s;
        for (const QString& name : names)
            snapshot.items.push_back({.id = name, .fileName = name});
        return snapshot;
    };
    const struct {
        int completed, total, elapsed;
        QStringList names;
        QString line;
    } cases[]{
        {0, 40, 9, {}, u"0/40 (%0) · 3.2 MB/s"_s},
        {12,
         40,
         20,
         {u"a.jpg"_s, u"b.mov"_s},
         u"12/40 (%30) · 3.2 MB/s · kalan 0:46 · a.jpg, b.mov"_s},
        {1, 3, 1, {u"%1 %2.jpg"_s}, u"1/3 (%33) · 3.2 MB/s · kalan 0:02 · %1 %2.jpg"_s},
        {1, 1001, 10, {}, u"1/1.001 (%0) · 3.2 MB/s · kalan 2:46:40"_s},
        {1, 500'000, 10, {}, u"1/500.000 (%0) · 3.2 MB/s · kalan 1388:53:10"_s},
        {30'000'000, 40'000'000, 60, {}, u"30.000.000/40.000.000 (%75) · 3.2 MB/s · kalan 0:20"_s},
        {0, 0, 0, {}, u"Arşiv taranıyor…"_s},
    };
    for (const auto& each : cases)
        EXPECT_EQ(progressLine(each.completed, each.total, std::chrono::seconds(each.elapsed),
                               transfers(each.names)),
                  each.line);
}

} // namespace

} // namespace quorvane::test
