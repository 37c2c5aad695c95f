// Shared read-only mappings.

#include "platform/file_map.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quon {

namespace {

// -1 unless it is a regular file; a pipe without a writer must not hold the program up.
int open_regular(const std::string& path, std::size_t& size) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return -1;
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        size = std::size_t(status.st_size);
        return descriptor;
    }
    close(descriptor);
    return -1;
}

}  // namespace

MappedFile map_file(const std::string& path, int* error) {
    if (error) *error = 0;
    std::size_t size = 0;
    const int descriptor = open_regular(path, size);
    if (descriptor < 0) return {};
    void* start = MAP_FAILED;
    if (size > 0) {
        start = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
        if (start == MAP_FAILED && error) *error = errno;
    }
    close(descriptor);  // the mapping stays
    if (start == MAP_FAILED) return {};
    return {static_cast<const std::byte*>(start), size};
}

int unmap_file(MappedFile file) {
    if (file.empty()) return 0;
    return munmap(const_cast<std::byte*>(file.data()), file.size()) == 0 ? 0 : errno;
}

bool readable_file(const std::string& path) {
    std::size_t size = 0;
    const int descriptor = open_regular(path, size);
    if (descriptor < 0) return false;
    close(descriptor);
    return true;
}

}  // namespace quon
