#include "support/file.h"

#include <cerrno>

namespace quon {

// errno is that of the step just done.
void File::check(bool done) {
    if (!done && !error_) error_ = {errno != 0 ? errno : EIO, std::generic_category()};
}

bool File::open(const std::string& path, FileMode mode) {
    const char* const modes[] = {"rb", "wb", "ab"};
    stream_.reset();
    path_ = path;
    error_.clear();
    stream_.reset(std::fopen(path.c_str(), modes[int(mode)]));
    check(is_open());
    return is_open();
}

std::size_t File::read(void* bytes, std::size_t count) {
    const std::size_t taken = std::fread(bytes, 1, count, stream_.get());
    check(std::ferror(stream_.get()) == 0);
    return taken;
}

void File::seek(long offset) { check(std::fseek(stream_.get(), offset, SEEK_SET) == 0); }

void File::write(const void* bytes, std::size_t count) {
    check(std::fwrite(bytes, 1, count, stream_.get()) == count);
}

void File::flush() { check(std::fflush(stream_.get()) == 0); }

void File::close() { check(std::fclose(stream_.release()) == 0); }

}  // namespace quon
