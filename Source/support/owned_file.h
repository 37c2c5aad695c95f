#pragma once
// A C stream that is closed when its owner goes.

#include <cstdio>
#include <memory>

namespace quon {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace quon
