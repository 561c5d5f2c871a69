#include "sync/ProductState.h"

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using Phase = RunState::Phase;
using End = RunState::End;
using Library = ProductFacts::Library;
using enum FaultCode;

RunState waitingFor(FaultCode code) {
    return {.phase = Phase::waiting, .fault = Fault{.code = code}};
}

RunState ended(End end, std::optional<FaultCode> code = {}) {
    return {.phase = Phase::ended,
            .end = end,
            .fault = code ? std::optional(Fault{.code = *code}) : std::nullopt};
}

TEST(ProductStateTest, followsFromTheFacts) {
    struct Row {
        const char* title;
        ProductFacts facts;
        const char* state;
    };
    const Library open = Library::open;
    const RunState lapsed = ended(End::world, sessionEnded);
    const RunState running{.phase = Phase::running};
    const std::vector<Row> table{
        {"Giriş yapılmadı", {false, Library::away, 5, 5, 5, 5, running}, "signed-out"},
        {"Arşiv bağlı değil", {true, Library::away, 5, 0, 0, 0, lapsed}, "library-away"},
        {"842 öğe giriş bekliyor", {true, open, 842, 0, 0, 0, lapsed}, "session-lapsed"},
        {"Giriş bekleniyor", {true, open, 0, 0, 0, 0, lapsed}, "session-lapsed"},
        {"Arşiv seçilmedi", {true, Library::none, 0, 0, 0, 0}, "no-library"},
        {"Eşitleme Devam Ediyor", {true, open, 5, 0, 3, 2, running}, "running"},
        {"Ağ bekleniyor", {true, open, 5, 9, 0, 0, waitingFor(unreachable)}, "waiting"},
        {"Google bekleniyor", {true, open, 5, 9, 0, 0, waitingFor(rateLimited)}, "waiting"},
        {"Google'ın günlük sınırı doldu",
         {true, open, 5, 9, 0, 0, waitingFor(dailyQuota)},
         "waiting-quota"},
        {"Eşitleme Uyarısı", {true, open, 0, 9, 0, 0, ended(End::world, storageFull)}, "failed"},
        {"Eşitleme Uyarısı", {true, open, 5, 9, 0, 0, ended(End::machine)}, "failed"},
        {"Eşitleme Uyarısı", {true, open, 5, 9, 0, 0, ended(End::albumFull)}, "failed"},
        {"5 yeni öğe eşitlenmeyi bekliyor",
         {true, open, 5, 9, 3, 0, ended(End::stopped)},
         "stopped"},
        {"Arşiviniz Güncel ve Güvende",
         {true, open, 0, 9, 0, 0, ended(End::stopped)},
         "up-to-date"},
        {"2.340 yeni öğe eşitlenmeyi bekliyor", {true, open, 2340, 0, 0, 0}, "never-backed-up"},
        {"Henüz yedeklenen öğe yok", {true, open, 0, 0, 0, 0}, "never-backed-up"},
        {"1 yeni öğe eşitlenmeyi bekliyor",
         {true, open, 1, 9, 3, 2, ended(End::itemsLeft)},
         "items-waiting"},
        {"İnceleme Bekleyen Öğeler Var",
         {true, open, 0, 0, 0, 2, ended(End::itemsLeft)},
         "held-back"},
        {"Eşitleme Tamamlandı", {true, open, 0, 9, 0, 0, ended(End::complete)}, "finished"},
        {"1 yeni öğe eşitlenmeyi bekliyor",
         {true, open, 1, 9, 0, 0, ended(End::complete)},
         "items-waiting"},
        {"Arşiviniz Güncel ve Güvende", {true, open, 0, 9, 0, 0}, "up-to-date"},
    };
    for (const Row& row : table) {
        const ProductState state = productState(row.facts);
        EXPECT_EQ(rawValue(state).toStdString(), row.state) << row.title;
        EXPECT_EQ(titleOf(state, row.facts).toStdString(), row.title) << row.state;
    }
}

} // namespace

} // namespace quorvane::test
