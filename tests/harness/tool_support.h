#pragma once
// A directory of its own in which a tool of the program reads and writes files.

#include "harness/files.h"
#include "harness/process.h"

namespace quon::test {

struct ToolDirectory : Directory {
    using Directory::Directory;

    // The program, with a standard input that stays open.
    Ending run(const Lines& arguments) const { return Process(arguments, path()).wait(); }
};

}  // namespace quon::test
