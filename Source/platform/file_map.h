#pragma once
// Files as memory: the whole of a file, read-only, loaded page by page as it is read.

#include <cstddef>
#include <span>
#include <string>

namespace quon {

// A mapping that lives until unmap_file; empty when the file cannot be opened or mapped, or is
// empty.
using MappedFile = std::span<const std::byte>;

MappedFile map_file(const std::string& path);
void unmap_file(MappedFile file);

}  // namespace quon
