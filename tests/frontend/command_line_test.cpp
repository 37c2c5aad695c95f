#include "frontend/command_line.h"

#include <gtest/gtest.h>

#include "engine/output.h"
#include "eval/eval_params.h"
#include "harness/board_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

// Settings before and after are those of a fresh start. Refusals and switches that end the program
// are tried on the program itself, in tests/protocol.
struct CommandLineTest : testing::Test {
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        options = {};
        settings = {};
        limits = {};
        params = {};
    }
    // Words are separated by '|'.
    static RunMode apply(const std::string& words) {
        reset();
        return apply_command_line(engine, read_command_line(engine, split(words, '|')));
    }
};

TEST_F(CommandLineTest, Numbers) {
    const struct {
        double (*get)();
        std::vector<std::pair<const char*, double>> settings;
    } cases[] = {
        // Unknown words are passed over; the word behind a switch is its argument, whatever it is.
        {[] { return double(settings.hash_mb); },
         {{"-hash|9000", 8192},
          {"-hash|-5", 0},
          {"-hash|16", 16},
          {"-hash|big", 0},
          {"-HASH|1|-hash 1|hash|1|", 64}}},
        {[] { return double(settings.threads); },
         {{"-threads|0", 1},
          {"-threads|200", 80},
          {"-threads|300", 44},
          {"-threads|8|-threads|3", 3},
          {"-hash|-threads|3", 1}}},
        {[] { return double(limits.depth_limit); },
         {{"-d|100", 66}, {"-d|1000", 66}, {"-d|12", 12}}},
        {[] { return double(limits.max_nodes); }, {{"-n|5000", 5000}}},
        {[] { return limits.fixed_time; }, {{"-d|12", 10000}, {"-n|5000", 1000}, {"-t|2.5", 2.5}}},
        {[] { return options.output_delay.get(); }, {{"-noise|0.5", 0.5}, {"-quiet", 9999}}},
        {[] { return double(log_enabled()); }, {{"-quiet", 0}, {"-nolog", 0}}},
        {[] { return double(options.uci_mode.get()); }, {{"-c", 0}, {"-c|-uci", 1}}},
        {[] { return double(settings.numa); }, {{"-numa", 1}}},
        {[] { return double(options.uci_extra.get()); }, {{"-uci_extra", 1}}},
    };
    for (const auto& c : cases) {
        for (const auto& [words, setting] : c.settings) {
            apply(words);
            EXPECT_EQ(c.get(), setting) << words;
        }
    }
    EXPECT_EQ(captured_output([] { apply("-nps|1000000"); }), "Elo= 2870\n");
    EXPECT_EQ(params.limit_strength, 1);
    EXPECT_EQ(params.elo, 2870);
    EXPECT_EQ(settings.target_nps, 1000000.0);
}

// Of several jobs one wins, whatever their order on the command line.
TEST_F(CommandLineTest, Jobs) {
    const struct {
        const char* words;
        Job job;
        int scan_variant;
    } cases[] = {
        {"", Job::PROTOCOL, 0},
        {"-bench", Job::BENCH, 0},
        {"-bench|-scan_pgn2|games", Job::PGN_SCAN, 2},
        {"-scan_pgn4|games|-scan_pgn1|games|-bench", Job::PGN_SCAN, 1},
        {"-scan_pgn1|-anepd|-scan_pgn3|games", Job::PGN_SCAN, 3},
        {"-scan_pgn3|a|-anepd|suite", Job::TEST_SUITE, 3},
        // A variant that there is not runs nothing, but takes its file name.
        {"-scan_pgn|games", Job::PROTOCOL, 0},
        {"-scan_pgn5|-bench", Job::PROTOCOL, 0},
        {"no-scan_pgn1|-bench", Job::PROTOCOL, 0},
        {"-scan_pgn2|a|x-scan_pgnx|games", Job::PGN_SCAN, 2},
    };
    for (const auto& c : cases) {
        const RunMode mode = apply(c.words);
        EXPECT_EQ(mode.job, c.job) << c.words;
        EXPECT_EQ(mode.scan_variant, c.scan_variant) << c.words;
        if (mode.job == Job::PGN_SCAN) {
            EXPECT_EQ(mode.scan_file, "games") << c.words;
        }
    }
    EXPECT_EQ(apply("-bench|-bench2").bench_variant, 2);
    EXPECT_EQ(apply("-pbench").bench_variant, 1);
    EXPECT_TRUE(apply("-pbench").bench_single_thread);
    const std::string longest(140, 'n');
    apply("-anepd|first|-anepd|" + longest);
    EXPECT_EQ(options.tune_file, longest);
}

}  // namespace
}  // namespace quon::test
