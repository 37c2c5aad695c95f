// Shared read-only mappings.

#include "platform/file_map.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quon {

MappedFile map_file(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return {};
    struct stat status {};
    void* start = MAP_FAILED;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
        start = mmap(nullptr, std::size_t(status.st_size), PROT_READ, MAP_SHARED, descriptor, 0);
    }
    close(descriptor);  // the mapping stays
    if (start == MAP_FAILED) return {};
    return {static_cast<const std::byte*>(start), std::size_t(status.st_size)};
}

void unmap_file(MappedFile file) {
    if (!file.empty()) munmap(const_cast<std::byte*>(file.data()), file.size());
}

}  // namespace quon
