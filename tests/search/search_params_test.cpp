// The late-move reduction tables.

#include <gtest/gtest.h>

#include <algorithm>

#include "eval/eval_params.h"
#include "search/search_params.h"

namespace quon::test {
namespace {

struct SearchParamsTest : testing::Test {
    const EvalParams saved = params;
    ~SearchParamsTest() override {
        params = saved;
        apply_search_params();
    }
    static void set_strength(i16 strength) {
        params.LMR_strength = strength;
        apply_search_params();
    }
    static int highest(const ReductionTable& table) {
        int most = 0;
        for (const auto& row : table)
            most = std::max<int>(most, *std::max_element(row.begin(), row.end()));
        return most;
    }
};

TEST_F(SearchParamsTest, ReductionRows) {
    constexpr int MOVES[] = {2, 3, 4, 6, 8, 12, 16, 24, 31};
    const struct {
        int depth;
        int zero_window[9], pv[9];
    } rows[] = {
        {3, {1, 1, 1, 1, 1, 1, 1, 1, 1}, {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {4, {1, 1, 1, 2, 2, 2, 2, 2, 2}, {0, 0, 0, 0, 0, 1, 1, 1, 1}},
        {8, {1, 1, 2, 2, 2, 2, 3, 3, 3}, {0, 0, 0, 1, 1, 1, 1, 2, 2}},
        {16, {1, 2, 2, 2, 3, 3, 3, 3, 4}, {0, 1, 1, 1, 1, 2, 2, 2, 2}},
        {36, {2, 2, 2, 3, 3, 3, 4, 4, 4}, {0, 1, 1, 2, 2, 2, 2, 2, 2}},
    };
    set_strength(100);
    for (const auto& row : rows) {
        for (int i = 0; i < 9; ++i) {
            EXPECT_EQ(zero_window_reductions[row.depth][MOVES[i]], row.zero_window[i])
                << row.depth << " " << MOVES[i];
            EXPECT_EQ(pv_reductions[row.depth][MOVES[i]], row.pv[i])
                << row.depth << " " << MOVES[i];
        }
    }
}

TEST_F(SearchParamsTest, StrengthAtItsExtremes) {
    const struct {
        i16 strength;
        int zero_window, pv;  // the highest entries
    } cases[] = {{0, 0, 0}, {-1, 0, 0}, {-32768, 0, 0}, {100, 4, 2}, {32767, 4, 2}};
    for (const auto& c : cases) {
        set_strength(c.strength);
        EXPECT_EQ(highest(zero_window_reductions), c.zero_window) << c.strength;
        EXPECT_EQ(highest(pv_reductions), c.pv) << c.strength;
        for (const ReductionTable* table : {&zero_window_reductions, &pv_reductions}) {
            for (int n = 0; n < 32; ++n)
                EXPECT_EQ((*table)[0][n] + (*table)[1][n] + (*table)[2][n], 0);
            for (const auto& row : *table) EXPECT_EQ(row[0] + row[1], 0);
        }
    }
    // 0.1 * sqrt(25) = 0.5: half of 1.2 and more, rounded away from zero.
    set_strength(25);
    EXPECT_EQ(zero_window_reductions[3][2], 1);
    EXPECT_EQ(zero_window_reductions[36][31], 2);
    EXPECT_EQ(pv_reductions[36][31], 2);
}

}  // namespace
}  // namespace quon::test
