#include "frontend/command_line.h"

#include <gtest/gtest.h>

#include "eval/eval_params.h"
#include "frontend/engine_options.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

using Words = std::vector<std::string>;

// Settings before and after are those of a fresh start.
struct CommandLineTest : testing::Test {
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        options = {};
        limits = {};
        params = {};
    }
    static RunMode apply(const Words& words) {
        reset();
        const CommandLine line = read_command_line(words);
        EXPECT_FALSE(line.exit_status.has_value());
        return apply_command_line(line);
    }
};

TEST_F(CommandLineTest, Numbers) {
    const struct {
        Words words;
        double setting;
        double (*get)();
    } cases[] = {
        {{"-hash", "9000"}, 8192, [] { return double(options.hash_mb); }},
        {{"-hash", "-5"}, 0, [] { return double(options.hash_mb); }},
        {{"-hash", "16"}, 16, [] { return double(options.hash_mb); }},
        {{"-hash", "big"}, 0, [] { return double(options.hash_mb); }},
        {{"-threads", "0"}, 1, [] { return double(options.threads); }},
        {{"-threads", "200"}, 80, [] { return double(options.threads); }},
        {{"-threads", "300"}, 44, [] { return double(options.threads); }},
        {{"-threads", "8", "-threads", "3"}, 3, [] { return double(options.threads); }},
        {{"-d", "100"}, 66, [] { return double(limits.depth_limit); }},
        {{"-d", "1000"}, 66, [] { return double(limits.depth_limit); }},
        {{"-d", "12"}, 12, [] { return double(limits.depth_limit); }},
        {{"-d", "12"}, 10000, [] { return limits.fixed_time; }},
        {{"-n", "5000"}, 5000, [] { return double(limits.max_nodes); }},
        {{"-n", "5000"}, 1000, [] { return limits.fixed_time; }},
        {{"-t", "2.5"}, 2.5, [] { return limits.fixed_time; }},
        {{"-noise", "0.5"}, 0.5, [] { return options.output_delay.get(); }},
        {{"-quiet"}, 9999, [] { return options.output_delay.get(); }},
        {{"-quiet"}, 0, [] { return double(options.log_enabled.get()); }},
        {{"-nolog"}, 0, [] { return double(options.log_enabled.get()); }},
        {{"-c"}, 0, [] { return double(options.uci_mode.get()); }},
        {{"-c", "-uci"}, 1, [] { return double(options.uci_mode.get()); }},
        {{"-numa"}, 1, [] { return double(options.numa); }},
        {{"-uci_extra"}, 1, [] { return double(options.uci_extra.get()); }},
        // Unknown words are passed over; the word behind a switch is its argument, whatever it is.
        {{"-HASH", "1", "-hash 1", "hash", "1", ""}, 64, [] { return double(options.hash_mb); }},
        {{"-hash", "-threads", "3"}, 1, [] { return double(options.threads); }},
    };
    for (const auto& c : cases) {
        apply(c.words);
        EXPECT_EQ(c.get(), c.setting) << testing::PrintToString(c.words);
    }
}

TEST_F(CommandLineTest, NodeRate) {
    EXPECT_EQ(captured_output([] { apply({"-nps", "1000000"}); }), "Elo= 2870\n");
    EXPECT_EQ(params.limit_strength, 1);
    EXPECT_EQ(params.elo, 2870);
    EXPECT_EQ(options.target_nps, 1000000.0);
}

TEST_F(CommandLineTest, Benchmark) {
    EXPECT_EQ(apply({}).bench_variant, 0);
    EXPECT_EQ(apply({"-bench"}).bench_variant, 1);
    EXPECT_EQ(apply({"-bench", "-bench2"}).bench_variant, 2);
    const RunMode mode = apply({"-pbench"});
    EXPECT_EQ(mode.bench_variant, 1);
    EXPECT_TRUE(mode.bench_single_thread);
}

TEST_F(CommandLineTest, RefusedOrAnswered) {
    const struct {
        Words words;
        int status;
        std::string output, error;
    } cases[] = {
        {{"--version"}, 0, "id name Quon 3.60\n", ""},
        {{"-c", "--version", "-hash"}, 0, "id name Quon 3.60\n", ""},
        {{"-hash"}, 1, "", "-hash"},
        {{"-bench", "-d"}, 1, "", "-d"},
        {{"-nps", "21"}, 1, "", "-nps"},
        {{"-nps", "20"}, 1, "", "-nps"},
        {{"-nps", "-1e400"}, 1, "", "-nps"},
        {{"-nps", "fast"}, 1, "", "-nps"},
        {{"-nps", "nan"}, 1, "", "-nps"},
    };
    for (const auto& c : cases) {
        CommandLine line;
        testing::internal::CaptureStderr();
        const std::string output = captured_output([&] { line = read_command_line(c.words); });
        const std::string error = testing::internal::GetCapturedStderr();
        EXPECT_EQ(line.exit_status, c.status) << testing::PrintToString(c.words);
        EXPECT_EQ(output, c.output);
        EXPECT_EQ(error.empty(), c.error.empty());
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace quon::test
