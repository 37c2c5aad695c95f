// The benchmark's node totals, against another program's.

#include "tools/bench.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"
#include "harness/process.h"
#include "harness/search_support.h"

namespace quon::test {
namespace {

TEST(Bench, Signature) {
    const struct {
        const char* variant;
        std::string nodes;
    } cases[] = {{"-bench", "101415"}, {"-bench2", "245952"}};
    for (const auto& [variant, nodes] : cases) {
        const Ending ending = run_to_end({variant, "-d", "6", "-nolog"}, "");
        ASSERT_FALSE(ending.lines.empty());
        const std::string& total = ending.lines.back();
        EXPECT_TRUE(matches(total, "total time= .*, nodes= " + nodes + ", nps= .*")) << total;
    }
}

TEST(Bench, EveryPositionAtEveryDepth) {
    const std::vector<std::string> rows = shared_lines("/reference/bench.csv");
    const SearchRig rig(64);
    for (int depth = 1; depth <= scaled(10); ++depth) {
        const std::vector<std::string> cells = split(rows.at(std::size_t(depth)), ';');
        for (int i = 0; i < BENCH_POSITIONS; ++i) {
            const u64 nodes = SearchRig::search(bench_positions[i], depth).nodes;
            ASSERT_EQ(std::to_string(nodes), cells.at(std::size_t(i) + 1))
                << "position " << i << " depth " << depth;
        }
    }
}

}  // namespace
}  // namespace quon::test
