// Tokens of PGN move text.

#include "pgn/pgn_token.h"

#include <algorithm>
#include <iterator>

namespace quon {

namespace {

bool is_bracket(char c) { return c == '(' || c == ')' || c == '{' || c == '}'; }
bool ends_token(char c) { return c == ' ' || is_bracket(c); }
bool is_control(char c) { return static_cast<unsigned char>(c) < 32; }

}  // namespace

bool next_pgn_token(std::string_view& rest, std::string& token) {
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    if (rest.empty()) return false;
    const auto* const end =
        is_bracket(rest[0]) ? rest.begin() + 1 : std::find_if(rest.begin(), rest.end(), ends_token);
    token.clear();
    std::remove_copy_if(rest.begin(), end, std::back_inserter(token), is_control);
    rest.remove_prefix(std::size_t(end - rest.begin()));
    return true;
}

}  // namespace quon
