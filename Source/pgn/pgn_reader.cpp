// Tokens of PGN move text.

#include "pgn/pgn_reader.h"

#include <algorithm>
#include <iterator>

#include "support/text.h"

namespace quon {

namespace {

bool is_one_of(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }
bool is_control(char c) { return static_cast<unsigned char>(c) < 32; }

bool starts_with_one_of(std::string_view set, std::string_view text) {
    return !text.empty() && is_one_of(set, text[0]);
}

// True if the bracket closes the outermost comment.
bool take_bracket(PgnReader& reader, char bracket) {
    if (bracket == '{') ++reader.comment_depth;
    if (bracket == '(') ++reader.variation_depth;
    if (bracket == ')' && reader.variation_depth > 0) --reader.variation_depth;
    return bracket == '}' && reader.comment_depth > 0 && --reader.comment_depth == 0;
}

// What of a word may be a move; empty if nothing is.
std::string_view move_part(const PgnPolicy& policy, std::string_view word) {
    if (starts_with_one_of(policy.no_move, word)) return {};
    std::size_t start = word.size() - from_first_letter(word).size();
    if (policy.castling_of_zeros) start = std::min(start, word.find("0-"));
    return word.substr(start, policy.word_limit);
}

// The word at the front of the text, which is not empty.
std::string_view take_word(PgnReader& reader, std::string_view& rest) {
    const PgnPolicy& policy = *reader.policy;
    const auto* const end = std::find_if(rest.begin(), rest.end(), [&policy](char c) {
        return is_one_of(policy.blanks, c) || is_one_of(policy.brackets, c);
    });
    std::string_view word = rest.substr(0, std::size_t(end - rest.begin()));
    if (policy.words_hold_braces && !from_first_letter(word).empty()) {
        word = rest.substr(0, rest.find_first_of(policy.blanks));
    }
    rest.remove_prefix(word.size());
    if (!policy.drops_controls) return word;
    reader.word.clear();
    std::remove_copy_if(word.begin(), word.end(), std::back_inserter(reader.word), is_control);
    return reader.word;
}

}  // namespace

bool begin_piece(PgnReader& reader, const LinePiece& piece) {
    const PgnPolicy& policy = *reader.policy;
    const bool pieces = policy.tag_scope == TagScope::PIECES;
    if (piece.starts_line || pieces) {
        const bool hidden =
            policy.tag_scope == TagScope::LINES_OUTSIDE_COMMENTS && reader.comment_depth > 0;
        const bool text = pieces && piece.text.starts_with("[%");
        reader.in_tags = !hidden && !text && starts_with_one_of(policy.tag_marks, piece.text);
    }
    return !reader.in_tags;
}

void begin_game(PgnReader& reader) {
    reader.comment_depth = reader.variation_depth = 0;
    reader.in_tags = true;
}

std::optional<PgnToken> next_token(PgnReader& reader, std::string_view& rest) {
    const PgnPolicy& policy = *reader.policy;
    while (!rest.empty()) {
        const char c = rest[0];
        if (is_one_of(policy.brackets, c)) {
            rest.remove_prefix(1);
            if (take_bracket(reader, c)) return PgnToken{PgnToken::COMMENT_END, {}};
        } else if (reader.comment_depth > 0) {
            const std::string_view text = rest.substr(0, rest.find_first_of(policy.brackets));
            rest.remove_prefix(text.size());
            return PgnToken{PgnToken::COMMENT, text};
        } else if (is_one_of(policy.blanks, c)) {
            rest.remove_prefix(1);
        } else {
            const std::string_view move = move_part(policy, take_word(reader, rest));
            if (!move.empty() && reader.variation_depth == 0) {
                return PgnToken{PgnToken::MOVE, move};
            }
        }
    }
    return std::nullopt;
}

}  // namespace quon
