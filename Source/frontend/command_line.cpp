// The command line: one table of switches, from which words are recognised and the help is printed.

#include "frontend/command_line.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "engine/engine.h"
#include "engine/output.h"
#include "eval/eval_params.h"
#include "search/strength.h"
#include "support/status_line.h"
#include "support/text.h"

namespace quon {

// What follows the word. MAYBE_INTEGER: a number, or nothing. ENDS: nothing, and the program ends
// after the switch.
enum class Takes { NOTHING, INTEGER, MAYBE_INTEGER, REAL, FILE_NAME, ENDS };

struct Argument {
    std::string text;
    i64 integer;
    double real;
};

struct Switch {
    std::string_view word;
    Takes takes;
    const char* argument_name;
    void (*apply)(Engine& engine, const Argument& argument, RunMode& mode);
    const char* help;
    double above = -std::numeric_limits<double>::infinity();  // refuses numbers that are not
    bool anywhere = false;  // the word may stand inside a longer one; not listed in the help
};

namespace {

constexpr double FIXED_DEPTH_SECONDS = 10000;
constexpr double FIXED_NODES_SECONDS = 1000;

void fix_time(Engine& engine, double seconds) {
    engine.limits.fixed_time = seconds;
    engine.limits.time_mode = FIXED_TIME;
}

void be_quiet(Engine& engine, const Argument&, RunMode&) {
    set_log_enabled(false);
    engine.options.output_delay = NEVER;
}

void set_depth(Engine& engine, const Argument& argument, RunMode&) {
    engine.limits.depth_limit = to_depth_limit(argument.integer);
    fix_time(engine, FIXED_DEPTH_SECONDS);
}

void set_nodes(Engine& engine, const Argument& argument, RunMode&) {
    engine.limits.max_nodes = std::max<i64>(argument.integer, 0);
    fix_time(engine, FIXED_NODES_SECONDS);
}

void set_node_rate(Engine& engine, const Argument& argument, RunMode&) {
    constexpr double MAX_ELO = std::numeric_limits<i16>::max();
    engine.params.limit_strength = 1;
    engine.settings.target_nps = argument.real;
    engine.params.elo = i16(std::min(nps_to_elo(argument.real), MAX_ELO));
    print_unlogged(format("Elo= %d\n", engine.params.elo));
}

void set_calibration(Engine& engine, const Argument& argument, RunMode&) {
    engine.options.calibration_nps = std::min(argument.real, NO_NPS_LIMIT);
}

void set_hash(Engine& engine, const Argument& argument, RunMode&) {
    engine.settings.hash_mb = i16(std::clamp<i64>(argument.integer, 0, MAX_HASH_MB));
}

void set_threads(Engine& engine, const Argument& argument, RunMode&) {
    const int low_byte = int(argument.integer & 255);
    engine.settings.threads = u8(std::clamp(low_byte, 1, MAX_THREADS));
}

void choose(RunMode& mode, Job job) { mode.job = std::min(mode.job, job); }

template <int VARIANT, bool SINGLE_THREAD = false>
void choose_bench(Engine&, const Argument&, RunMode& mode) {
    choose(mode, Job::BENCH);
    mode.bench_variant = VARIANT;
    mode.bench_single_thread |= SINGLE_THREAD;
}

void choose_bench_to_depth(Engine& engine, const Argument& argument, RunMode& mode) {
    choose_bench<1>(engine, argument, mode);
    if (!argument.text.empty()) set_depth(engine, argument, mode);
}

template <Job JOB>
void choose_with_tune_file(Engine& engine, const Argument& argument, RunMode& mode) {
    choose(mode, JOB);
    engine.options.tune_file = argument.text;
}

template <int VARIANT>
void choose_scan(Engine&, const Argument& argument, RunMode& mode) {
    choose(mode, Job::PGN_SCAN);
    mode.scan_variant = VARIANT;
    mode.scan_file = argument.text;
}

void show_help(Engine&, const Argument&, RunMode&);
void show_version(Engine&, const Argument&, RunMode&);

constexpr Switch SWITCHES[] = {
    {"-uci", Takes::NOTHING, "",
     [](Engine& engine, const Argument&, RunMode&) { set_uci_mode(engine, true); },
     "talk UCI (as it does by default)"},
    {"-c", Takes::NOTHING, "",
     [](Engine& engine, const Argument&, RunMode&) { set_uci_mode(engine, false); },
     "console mode: commands typed by a person"},
    {"-hash", Takes::INTEGER, "MB", set_hash, "size of the hash table, 0 to 8192"},
    {"-threads", Takes::INTEGER, "N", set_threads, "search threads, 1 to 80"},
    {"-numa", Takes::NOTHING, "",
     [](Engine& engine, const Argument&, RunMode&) { engine.settings.numa = true; },
     "place the search threads on the machine's memory nodes"},
    {"-d", Takes::INTEGER, "DEPTH", set_depth, "search to this depth, 66 at most"},
    {"-t", Takes::REAL, "SECONDS",
     [](Engine& engine, const Argument& a, RunMode&) { fix_time(engine, a.real); },
     "time for each move; front ends and the benchmark set their own"},
    {"-n", Takes::INTEGER, "NODES", set_nodes, "search this many positions"},
    {"-nps", Takes::REAL, "N", set_node_rate,
     "limit the strength to N positions a second in each thread; above 21", MIN_NPS},
    {"-calibration", Takes::REAL, "N", set_calibration,
     "the machine's speed, N positions a second, in place of measuring it; above 21", MIN_NPS},
    {"-seed", Takes::INTEGER, "N",
     [](Engine& engine, const Argument& a, RunMode&) { seed(engine.random, u64(a.integer)); },
     "start the random choices of book, match and tuner from N instead of the clock"},
    {"-nolog", Takes::NOTHING, "",
     [](Engine&, const Argument&, RunMode&) { set_log_enabled(false); },
     "write nothing into quon.log"},
    {"-noise", Takes::REAL, "SECONDS",
     [](Engine& engine, const Argument& a, RunMode&) { engine.options.output_delay = a.real; },
     "no progress lines before a search is this old"},
    {"-quiet", Takes::NOTHING, "", be_quiet, "neither log nor progress lines"},
    {"-uci_extra", Takes::NOTHING, "",
     [](Engine& engine, const Argument&, RunMode&) { engine.options.uci_extra = true; },
     "mark progress lines with the search thread"},
    {"-bench", Takes::NOTHING, "", choose_bench<1>,
     "search ten positions to depth 17 (or -d), print times, and end"},
    {"-bench2", Takes::NOTHING, "", choose_bench<2>, "the same with twenty positions"},
    {"-pbench", Takes::NOTHING, "", choose_bench<1, true>,
     "-bench in the main thread alone, always to depth 17"},
    {"bench", Takes::MAYBE_INTEGER, "[DEPTH]", choose_bench_to_depth,
     "as -bench, or as -bench -d DEPTH"},
    {"-anepd", Takes::FILE_NAME, "FILE", choose_with_tune_file<Job::TEST_SUITE>,
     "search the positions of an EPD test suite, count solutions, and end"},
    {"-match", Takes::FILE_NAME, "FILE",
     [](Engine& engine, const Argument& a, RunMode& mode) {
         choose(mode, Job::MATCH);
         engine.options.match_file = a.text;
     },
     "play the parameters of test1.rc against those of the start, games to FILE, and end"},
    {"-mktune", Takes::FILE_NAME, "FILE", choose_with_tune_file<Job::TUNING_SET>,
     "write the positions of an EPD file that tuning can use to tune_new.epd"},
    {"-tune", Takes::FILE_NAME, "FILE", choose_with_tune_file<Job::TUNE>,
     "fit parameters to the results in an EPD file, and end"},
    {"-scan_pgn1", Takes::FILE_NAME, "FILE", choose_scan<1>,
     "write the games with blunders marked to tmp.pgn and tmpX.epd"},
    {"-scan_pgn2", Takes::FILE_NAME, "FILE", choose_scan<2>,
     "write positions with the games' results to tmp.epd"},
    {"-scan_pgn3", Takes::FILE_NAME, "FILE", choose_scan<3>,
     "write positions up to the decisive one to tmp.epd"},
    {"-scan_pgn4", Takes::FILE_NAME, "FILE", choose_scan<4>,
     "write rook endings with one pawn to tmp.epd"},
    // Without a variant it runs nothing, but a file name behind it is no switch.
    {.word = "-scan_pgn",
     .takes = Takes::FILE_NAME,
     .argument_name = "FILE",
     .apply = [](Engine&, const Argument& a, RunMode& mode) { mode.scan_file = a.text; },
     .help = "",
     .anywhere = true},
    {"--help", Takes::ENDS, "", show_help, "print this text and end"},
    {"-h", Takes::ENDS, "", show_help, "the same"},
    {"help", Takes::ENDS, "", show_help, "the same"},
    {"--version", Takes::ENDS, "", show_version, "print the engine's name and end"},
    {"version", Takes::ENDS, "", show_version, "the same"},
};

void show_version(Engine&, const Argument&, RunMode&) { engine_print(ENGINE_NAME); }

void show_help(Engine&, const Argument&, RunMode&) {
    std::string text = "usage: quon [switch ...]\n\n";
    for (const Switch& row : SWITCHES) {
        if (row.anywhere) continue;
        const std::string word = std::string(row.word) + " " + row.argument_name;
        text += format("  %-18s %s\n", word.c_str(), row.help);
    }
    text +=
        "\nOther words are ignored. Without a benchmark or another tool, commands are read from "
        "standard input.";
    engine_print(text);
}

const Switch* find_switch(std::string_view word) {
    const auto* const row =
        std::find_if(std::begin(SWITCHES), std::end(SWITCHES), [&](const Switch& s) {
            return s.anywhere ? word.find(s.word) != std::string_view::npos : s.word == word;
        });
    return row == std::end(SWITCHES) ? nullptr : row;
}

Argument to_argument(const std::string& text) { return {text, to_integer(text), to_real(text)}; }

// Says on standard error why the program cannot start.
int refuse(const std::string& reason) {
    error_line(format("quon: %s", reason.c_str()));
    return 1;
}

// Why a switch cannot take the argument; "" if it can.
std::string argument_problem(const Switch& row, const std::string& argument) {
    const std::string word(row.word);
    if (row.takes == Takes::FILE_NAME && argument.size() > MAX_TOOL_FILE_NAME) {
        return format("%s takes a file name of at most %d characters", word.c_str(),
                      int(MAX_TOOL_FILE_NAME));
    }
    if (row.takes != Takes::FILE_NAME && to_real(argument) <= row.above) {
        return format("%s needs a number above %.0f, not '%s'", word.c_str(), row.above,
                      argument.c_str());
    }
    return "";
}

bool number_follows(const std::vector<std::string>& words, std::size_t i) {
    return i + 1 < words.size() && std::isdigit(static_cast<unsigned char>(words[i + 1][0])) != 0;
}

}  // namespace

CommandLine read_command_line(Engine& engine, const std::vector<std::string>& words) {
    CommandLine line;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const Switch* const row = find_switch(words[i]);
        if (row == nullptr) continue;
        const std::string& word = words[i];
        std::string argument;
        if (row->takes == Takes::ENDS) {
            RunMode unused;
            row->apply(engine, {}, unused);
            line.exit_status = 0;
            return line;
        }
        const bool stands_alone = row->takes == Takes::NOTHING ||
                                  (row->takes == Takes::MAYBE_INTEGER && !number_follows(words, i));
        if (!stands_alone) {
            if (++i == words.size()) {
                line.exit_status = refuse(word + " needs an argument: " + row->argument_name);
                return line;
            }
            argument = words[i];
            const std::string problem = argument_problem(*row, argument);
            if (!problem.empty()) {
                line.exit_status = refuse(problem);
                return line;
            }
        }
        line.switches.push_back({row, argument});
    }
    return line;
}

RunMode apply_command_line(Engine& engine, const CommandLine& line) {
    RunMode mode;
    for (const GivenSwitch& given : line.switches) {
        given.row->apply(engine, to_argument(given.argument), mode);
    }
    return mode;
}

}  // namespace quon
