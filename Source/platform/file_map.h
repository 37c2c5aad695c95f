#pragma once
// Files as memory: the whole of a file, read-only, loaded page by page as it is read.

#include <cstddef>
#include <span>
#include <string>

namespace quon {

// A mapping that lives until unmap_file; empty when the file cannot be opened or mapped, or is
// empty.
using MappedFile = std::span<const std::byte>;

// `error`, if given, receives the system's error when an opened file cannot be mapped, else 0.
MappedFile map_file(const std::string& path, int* error = nullptr);
// 0, or the system's error.
int unmap_file(MappedFile file);

// A file (no directory, no device) that can be opened for reading.
bool readable_file(const std::string& path);

}  // namespace quon
