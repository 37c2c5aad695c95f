// The late-move reduction tables.

#include <gtest/gtest.h>

#include <string>

#include "eval/eval_params.h"
#include "harness/engine.h"
#include "search/search_params.h"

namespace quon::test {
namespace {

struct Reductions : testing::Test {
    const EvalParams saved = params;
    ~Reductions() override { set_strength(saved.LMR_strength); }
    static void set_strength(i16 strength) {
        params.LMR_strength = strength;
        apply_search_params(search_params, params);
    }
};

TEST_F(Reductions, Rows) {
    constexpr int MOVES[] = {2, 3, 4, 6, 8, 12, 16, 24, 31};
    const struct {
        int depth;
        const char *zero_window, *pv;
    } rows[] = {{3, "111111111", "000000000"},
                {4, "111222222", "000001111"},
                {8, "112222333", "000111122"},
                {16, "122233334", "011112222"},
                {36, "222333444", "011222222"}};
    set_strength(100);
    for (const auto& row : rows) {
        std::string zero_window;
        std::string pv;
        for (const int n : MOVES) {
            zero_window += char('0' + search_params.zero_window_reductions[row.depth][n]);
            pv += char('0' + search_params.pv_reductions[row.depth][n]);
        }
        EXPECT_EQ(zero_window, row.zero_window) << row.depth;
        EXPECT_EQ(pv, row.pv) << row.depth;
    }
    for (const ReductionTable* table :
         {&search_params.zero_window_reductions, &search_params.pv_reductions}) {
        for (int n = 0; n < 32; ++n) EXPECT_EQ((*table)[0][n] + (*table)[1][n] + (*table)[2][n], 0);
        for (const auto& row : *table) EXPECT_EQ(row[0] + row[1], 0);
    }
}

TEST_F(Reductions, Strength) {
    const struct {
        i16 strength;
        int early, zero_window, pv;
    } cases[] = {{0, 0, 0, 0}, {-1, 0, 0, 0}, {-32768, 0, 0, 0}, {25, 1, 2, 2}, {32767, 4, 4, 2}};
    for (const auto& c : cases) {  // at 25, half of 1.2 and more, rounded away from zero
        set_strength(c.strength);
        EXPECT_EQ(search_params.zero_window_reductions[3][2], c.early) << c.strength;
        EXPECT_EQ(search_params.zero_window_reductions[36][31], c.zero_window) << c.strength;
        EXPECT_EQ(search_params.pv_reductions[36][31], c.pv) << c.strength;
    }
}

}  // namespace
}  // namespace quon::test
