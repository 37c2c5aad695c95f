#pragma once
// Files that tests write and read whole.

#include <string>

namespace quon::test {

void write_file(const std::string& path, const std::string& bytes);
std::string read_file(const std::string& path);  // empty when it is not there

}  // namespace quon::test
