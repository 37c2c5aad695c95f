#include "harness/tool_support.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "harness/files.h"

namespace quon::test {

ToolDirectory::ToolDirectory()
    : path_(std::filesystem::temp_directory_path() / "quon-tool-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) std::abort();
}

ToolDirectory::~ToolDirectory() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

void ToolDirectory::write(const std::string& name, const std::string& content) const {
    write_file(path_ + "/" + name, content);
}

std::string ToolDirectory::read(const std::string& name) const {
    return read_file(path_ + "/" + name);
}

bool ToolDirectory::make_full(const std::string& name) const {
    std::error_code error;
    if (!std::filesystem::exists("/dev/full", error)) return false;
    std::filesystem::create_symlink("/dev/full", path_ + "/" + name, error);
    return !error;
}

Ending ToolDirectory::run(const Lines& arguments) const { return Process(arguments, path_).wait(); }

}  // namespace quon::test
