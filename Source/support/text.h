#pragma once
// Words and numbers of text lines, read and written. A blank is the space alone.

#include <string>
#include <string_view>

#include "support/integers.h"

namespace quon {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";  // what some editors begin a text with

// Skips leading blanks; the characters up to a blank, a carriage return, a line feed or the end, at
// most 128 of them.
std::string_view first_word(std::string_view text);

// Both read leading digits with an optional sign, 0 when there are none. A number out of range
// becomes the nearest one inside.
i64 to_integer(std::string_view text);
double to_real(std::string_view text);

// Takes the next run of characters that are no delimiters off the front; empty at the end.
std::string_view take_token(std::string_view& rest, std::string_view delimiters);

std::string_view without_leading_blanks(std::string_view text);
std::string_view without_trailing_blanks(std::string_view text);

inline bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The text from its first letter on; empty without one. What stands before a move in a game, such
// as its number, goes.
std::string_view from_first_letter(std::string_view text);

// The text from a place on; empty beyond the end.
inline std::string_view text_from(std::string_view text, std::size_t start) {
    return start < text.size() ? text.substr(start) : std::string_view();
}

// printf into a string.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);

}  // namespace quon
