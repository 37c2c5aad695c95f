#include "frontend/uci.h"

#include <gtest/gtest.h>

#include <string>

#include "harness/board_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

TEST(UciOptions, NameAndValue) {
    const struct {
        const char *rest, *name_and_value;
    } cases[] = {
        {"name   Hash   value   32   ", "Hash|32"},
        {"name  Clear Hash  ", "Clear Hash|"},
        {"name Clear Hash value true false", "Clear Hash|true"},
        {"name SyzygyPath value ", "SyzygyPath|"},
        {"name SyzygyPath value /a/b c", "SyzygyPath|/a/b"},
        {"nonsense name Log value true", "Log|true"},
        {"namexHash value 1", "Hash|1"},
        {"name value 3", "|3"},
        {"value 3 name Hash", "|"},
    };
    const auto parsed = [](const std::string& rest) {
        const OptionText text = parse_option(rest);
        return std::string(text.name) + "|" + std::string(text.value);
    };
    for (const auto& c : cases) EXPECT_EQ(parsed(c.rest), c.name_and_value) << c.rest;
    for (const char* rest : {"", "value 3", "name", "namevalue"}) EXPECT_EQ(parsed(rest), "|");
}

// Values out of range in options that only store something; the others, and values in range, are
// tried in the sessions of tests/protocol.
TEST(UciOptions, Replies) {
    const EngineOptions kept = options;
    const SearchSettings kept_settings = settings;
    const SearchLimits kept_limits = limits;
    const std::string long_path(129, 'p');
    const std::string no_tables = "\ninfo string found 0 tablebases";
    const struct {
        std::string rest, reply;
    } cases[] = {
        {"Ponder value True", "Ponder set to false"},
        {"Contempt value -151", "Contempt set to -150"},
        {"Contempt value 999999999999999999999", "Contempt set to 150"},
        {"Contempt value 0", "Contempt set to 0"},
        {"MultiPV value 256", "MultiPV set to 255"},
        {"MultiPV value x", "MultiPV set to 1"},
        {"MoveOverhead value 5001", "MoveOverhead set to 5000 ms"},
        {"MoveOverhead value -1", "MoveOverhead set to 0 ms"},
        {"MoveOverhead value 250", "MoveOverhead set to 250 ms"},
        {"SyzygyPath value", "SyzygyPath set to '.'" + no_tables},
        {"SyzygyPath value " + long_path + "q",
         "SyzygyPath set to '" + long_path + "'" + no_tables},
        {"SyzygyPath value <empty>", "SyzygyPath set to '<empty>'"},
        {"SyzygyProbeDepth5 value 0", "SyzygyProbeDepth5 set to 1"},
        {"SyzygyProbeDepth6 value 101", "SyzygyProbeDepth6 set to 100"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(captured_output([&] { setoption_command(engine, "name " + c.rest); }),
                  "info string " + c.reply + "\n");
    }
    EXPECT_DOUBLE_EQ(limits.move_overhead, 0.25) << "seconds";
    for (const std::string& rest : {std::string(), "name " + std::string(4000, 'n') + " value 1"}) {
        EXPECT_EQ(captured_output([&] { setoption_command(engine, rest); }), "");
    }
    options = kept;
    settings = kept_settings;
    limits = kept_limits;
}

}  // namespace
}  // namespace quon::test
