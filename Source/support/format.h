#pragma once
// printf into a string.

#include <string>

namespace quon {

[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);

}  // namespace quon
