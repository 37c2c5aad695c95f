#pragma once
// The words on the command line.

#include <optional>
#include <string>
#include <vector>

namespace quon {

// What the process does once it has started.
struct RunMode {
    int bench_variant = 0;  // 0: the protocol loop, otherwise the benchmark
    bool bench_single_thread = false;
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
CommandLine read_command_line(const std::vector<std::string>& words);

// Applies the switches in their order, over what the parameter file has set.
RunMode apply_command_line(const CommandLine& line);

}  // namespace quon
