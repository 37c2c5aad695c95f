// The late-move reduction tables.

#include <gtest/gtest.h>

#include "eval/eval_params.h"
#include "harness/engine.h"
#include "search/search_params.h"

namespace quon::test {
namespace {

// Reductions of the moves 2, 3, 4, 6, 8, 12, 16, 24 and 31.
std::string row_of(const ReductionTable& table, int depth) {
    std::string text;
    for (const int n : {2, 3, 4, 6, 8, 12, 16, 24, 31}) text += char('0' + table[depth][n]);
    return text;
}

TEST(Reductions, Rows) {
    const struct {
        int strength, depth;
        const char *zero_window, *pv;
    } rows[] = {{100, 2, "000000000", "000000000"},    {100, 3, "111111111", "000000000"},
                {100, 4, "111222222", "000001111"},    {100, 8, "112222333", "000111122"},
                {100, 16, "122233334", "011112222"},   {100, 36, "222333444", "011222222"},
                {-32768, 36, "000000000", "000000000"}};
    EvalParams changed = params;
    for (const auto& row : rows) {
        changed.LMR_strength = i16(row.strength);
        apply_search_params(search_params, changed);
        EXPECT_EQ(row_of(search_params.zero_window_reductions, row.depth), row.zero_window);
        EXPECT_EQ(row_of(search_params.pv_reductions, row.depth), row.pv);
        EXPECT_EQ(search_params.pv_reductions[row.depth][1], 0);
    }
    // Half of 1.2 and more, rounded away from zero; no more than the table's end holds.
    for (const auto& [strength, early, late] : {std::tuple{25, 1, 2}, {32767, 4, 4}}) {
        changed.LMR_strength = i16(strength);
        apply_search_params(search_params, changed);
        EXPECT_EQ(search_params.zero_window_reductions[3][2], early) << strength;
        EXPECT_EQ(search_params.zero_window_reductions[36][31], late) << strength;
    }
    apply_search_params(search_params, params);
}

}  // namespace
}  // namespace quon::test
