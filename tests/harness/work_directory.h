#pragma once
// A tool directory that is also the working directory of the test.

#include <filesystem>

#include "harness/tool_support.h"

namespace quon::test {

class WorkDirectory : public ToolDirectory {
public:
    WorkDirectory() : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(path());
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;
    ~WorkDirectory() {
        std::error_code error;
        std::filesystem::current_path(before_, error);
    }

private:
    std::filesystem::path before_;
};

}  // namespace quon::test
