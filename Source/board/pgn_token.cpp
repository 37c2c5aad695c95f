// Tokens of PGN move text.

#include "board/pgn_token.h"

#include <algorithm>

namespace quon {

namespace {

constexpr std::string_view BRACKETS = "(){}";
constexpr std::string_view TOKEN_ENDS = " (){}";

bool is_control(char c) { return static_cast<unsigned char>(c) < 32; }

}  // namespace

bool next_pgn_token(std::string_view& rest, std::string& token) {
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    if (rest.empty()) return false;
    const bool bracket = BRACKETS.find(rest[0]) != std::string_view::npos;
    const std::size_t length = bracket ? 1 : std::min(rest.find_first_of(TOKEN_ENDS), rest.size());
    token.clear();
    std::remove_copy_if(rest.begin(), rest.begin() + std::ptrdiff_t(length),
                        std::back_inserter(token), is_control);
    rest.remove_prefix(length);
    return true;
}

}  // namespace quon
