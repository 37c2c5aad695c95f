#pragma once
// The words on the command line.

#include <optional>
#include <string>
#include <vector>

#include "board/types.h"

namespace quon {

struct Engine;

// What the process does once it has started. When several are asked for the first of this list
// runs.
enum class Job : u8 { TEST_SUITE, PGN_SCAN, MATCH, BENCH, TUNING_SET, TUNE, PROTOCOL };

struct RunMode {
    Job job = Job::PROTOCOL;
    int bench_variant = 1;  // of Job::BENCH
    bool bench_single_thread = false;
    int scan_variant = 0;  // of Job::PGN_SCAN, 1..4
    std::string scan_file;
};

struct Switch;

struct GivenSwitch {
    const Switch* row;
    std::string argument;
};

struct CommandLine {
    std::vector<GivenSwitch> switches;
    std::optional<int> exit_status;  // the program ends with it before it starts
};

// Recognises the switches and changes nothing yet. Help, version and wrong arguments are answered
// here and end the program.
CommandLine read_command_line(Engine& engine, const std::vector<std::string>& words);

// Applies the switches in their order, over what the parameter file has set.
RunMode apply_command_line(Engine& engine, const CommandLine& line);

}  // namespace quon
