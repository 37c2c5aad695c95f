#pragma once
// A text file that a tool or a command writes. The first write that fails is remembered, so that
// the tool can end, and is told once when the file is closed.

#include <string>
#include <string_view>

#include "support/owned_file.h"

namespace quon {

struct OutputFile {
    std::string name;
    OwnedFile file;
    bool failed = false;
};

// True, and said on standard error, if a tool would overwrite the file that it reads.
bool overwrites_input(const std::string& input, const std::string& output);
// An empty file in place of an older one; false if it cannot be created.
bool create_output(OutputFile& output, const std::string& name);
// Goes on behind what is in the file, if there is one; false if it cannot be opened.
bool append_to_output(OutputFile& output, const std::string& name);
void write_text(OutputFile& output, std::string_view text);
// Hands everything to the system: what is written survives the end of the process.
void flush_output(OutputFile& output);
// False if anything could not be written; says so on standard error.
bool close_output(OutputFile& output);

}  // namespace quon
