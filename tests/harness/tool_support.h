#pragma once
// A directory of its own in which a tool of the program reads and writes files.

#include <string>

#include "harness/process.h"

namespace quon::test {

class ToolDirectory {
public:
    ToolDirectory();
    ToolDirectory(const ToolDirectory&) = delete;
    ToolDirectory& operator=(const ToolDirectory&) = delete;
    ~ToolDirectory();

    void write(const std::string& name, const std::string& content) const;
    std::string read(const std::string& name) const;  // "" if it is not there
    // Makes a file for whose content there is no room; false where the system has no such device.
    bool make_full(const std::string& name) const;

    // The program, with a standard input that stays open.
    Ending run(const Lines& arguments) const;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace quon::test
