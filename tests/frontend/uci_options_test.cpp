#include "frontend/uci_options.h"

#include <gtest/gtest.h>

#include <string>

#include "frontend/engine_options.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

TEST(UciOptions, NameAndValue) {
    const struct {
        std::string rest, name, value;
    } cases[] = {
        {"name Hash value 32", "Hash", "32"},
        {"name   Hash   value   32   ", "Hash", "32"},
        {"name Clear Hash", "Clear Hash", ""},
        {"name  Clear Hash  ", "Clear Hash", ""},
        {"name Clear Hash value", "Clear Hash", ""},
        {"name Clear Hash value true false", "Clear Hash", "true"},
        {"name SyzygyPath value ", "SyzygyPath", ""},
        {"name SyzygyPath value /a/b c", "SyzygyPath", "/a/b"},
        {"nonsense name Log value true", "Log", "true"},
        {"namexHash value 1", "Hash", "1"},
        // Without a name before the value there is neither.
        {"", "", ""},
        {"value 3", "", ""},
        {"value 3 name Hash", "", ""},
        {"name", "", ""},
        {"namevalue", "", ""},
        {"name value 3", "", "3"},
    };
    for (const auto& c : cases) {
        const OptionText text = parse_option(c.rest);
        EXPECT_EQ(text.name, c.name) << c.rest;
        EXPECT_EQ(text.value, c.value) << c.rest;
    }
}

// Options that only store something; those that act are tried in the sessions of tests/protocol.
TEST(UciOptions, Replies) {
    const EngineOptions kept = options;
    const SearchLimits kept_limits = limits;
    const struct {
        std::string rest, reply;
    } cases[] = {
        {"name Ponder value true", "info string Ponder set to true\n"},
        {"name Ponder value True", "info string Ponder set to false\n"},
        {"name Contempt value -151", "info string Contempt set to -150\n"},
        {"name Contempt value 999999999999999999999", "info string Contempt set to 150\n"},
        {"name Contempt value 0", "info string Contempt set to 0\n"},
        {"name MultiPV value 0", "info string MultiPV set to 1\n"},
        {"name MultiPV value 256", "info string MultiPV set to 255\n"},
        {"name MultiPV value x", "info string MultiPV set to 1\n"},
        {"name MoveOverhead value 5001", "info string MoveOverhead set to 5000 ms\n"},
        {"name MoveOverhead value -1", "info string MoveOverhead set to 0 ms\n"},
        {"name OwnBook value true", "info string OwnBook set to true\n"},
        {"name SyzygyPath value", "info string SyzygyPath set to '.'\n"},
        {"name SyzygyPath", "info string SyzygyPath set to '.'\n"},
        {"name SyzygyPath value " + std::string(300, 'p'),
         "info string SyzygyPath set to '" + std::string(129, 'p') + "'\n"},
        {"name SyzygyProbeDepth5 value 0", "info string SyzygyProbeDepth5 set to 1\n"},
        {"name SyzygyProbeDepth6 value 101", "info string SyzygyProbeDepth6 set to 100\n"},
        {"name clear hash", ""},
        {"name Unknown value 1", ""},
        {"name " + std::string(4000, 'n') + " value 1", ""},
        {"", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(captured_output([&] { setoption_command(c.rest); }), c.reply) << c.rest;
    }
    options = kept;
    limits = kept_limits;
}

TEST(UciOptions, OverheadIsStoredInSeconds) {
    const SearchLimits kept = limits;
    captured_output([] { setoption_command("name MoveOverhead value 250"); });
    EXPECT_DOUBLE_EQ(limits.move_overhead, 0.25);
    limits = kept;
}

}  // namespace
}  // namespace quon::test
