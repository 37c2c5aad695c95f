#include "support/tool_support.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

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
    std::ofstream(path_ + "/" + name, std::ios::binary) << content;
}

std::string ToolDirectory::read(const std::string& name) const {
    std::ostringstream content;
    content << std::ifstream(path_ + "/" + name, std::ios::binary).rdbuf();
    return content.str();
}

bool ToolDirectory::make_full(const std::string& name) const {
    std::error_code error;
    if (!std::filesystem::exists("/dev/full", error)) return false;
    std::filesystem::create_symlink("/dev/full", path_ + "/" + name, error);
    return !error;
}

Ending ToolDirectory::run(const Lines& arguments) const { return Process(arguments, path_).wait(); }

}  // namespace quon::test
