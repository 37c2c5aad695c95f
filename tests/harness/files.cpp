#include "harness/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quon::test {

void write_file(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string read_file(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

void make_pipe(const std::string& path) {
    if (mkfifo(path.c_str(), 0600) != 0) std::abort();
}

Directory::Directory(bool entered) : path_(std::filesystem::temp_directory_path() / "quon-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) std::abort();
    if (!entered) return;
    left_ = std::filesystem::current_path();
    std::filesystem::current_path(path_);
}

Directory::~Directory() {
    std::error_code error;
    if (!left_.empty()) std::filesystem::current_path(left_, error);
    std::filesystem::remove_all(path_, error);
}

FullDisk::FullDisk(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
}

FullDisk::~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, SIG_DFL);
}

}  // namespace quon::test
