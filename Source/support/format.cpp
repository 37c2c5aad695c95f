// printf into a string.

#include "support/format.h"

#include <cstdarg>
#include <cstdio>

namespace quon {

std::string format(const char* pattern, ...) {
    std::va_list arguments;
    va_start(arguments, pattern);
    std::va_list again;
    va_copy(again, arguments);
    const int size = std::vsnprintf(nullptr, 0, pattern, arguments);
    va_end(arguments);
    std::string text(size > 0 ? std::size_t(size) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, pattern, again);
    va_end(again);
    return text;
}

}  // namespace quon
