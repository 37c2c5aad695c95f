// The benchmark's node totals, against another program's.

#include <gtest/gtest.h>

#include "frontend/output.h"
#include "support/process.h"

namespace quon::test {
namespace {

TEST(Bench, Signature) {
    const struct {
        const char* variant;
        const char* depth;
        int nodes;
    } cases[] = {{"-bench", "6", 101415}, {"-bench2", "5", 103716}};
    for (const auto& c : cases) {
        const Ending ending = run_to_end({c.variant, "-d", c.depth, "-nolog"}, "");
        ASSERT_FALSE(ending.lines.empty());
        EXPECT_TRUE(
            matches(ending.lines.back(), format("total time= .*, nodes= %d, nps= .*", c.nodes)))
            << ending.lines.back();
    }
}

}  // namespace
}  // namespace quon::test
