// The printed breakdown of the evaluation. Its figures are those of the trace, which tests/eval
// compares; here it is the form.

#include <gtest/gtest.h>

#include "harness/board_support.h"
#include "harness/console_support.h"

namespace quon::test {
namespace {

// With hung and pinned pieces, and in check, where there is no evaluation; the file was written by
// this program.
TEST(EvalCommand, Form) {
    const ConsoleRig rig;
    std::string text;
    for (const char* fen :
         {"4k3/5p2/2n5/1B1n4/8/3R4/PP6/4K3 w - -", "4k3/4R3/8/8/8/8/PP6/4K3 b - -"}) {
        console(std::string("fen ") + fen);
        text += console("ev");
    }
    EXPECT_EQ(text, read_file(QUON_SOURCE_DIR "/tests/data/evaluation-breakdown.txt"));
    console("fen 8/8/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(console("ev"), "illegal position: Black needs one king\n");
}

}  // namespace
}  // namespace quon::test
