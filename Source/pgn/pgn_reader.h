#pragma once
// The move text of PGN files as words and comments, for everybody who reads games. Who reads them
// decides what counts as a tag, a word and a move: the policies at the end stand side by side.

#include <optional>
#include <string>
#include <string_view>

#include "support/line_reader.h"

namespace quon {

// Where a line is judged to be one of tags, which has no moves.
enum class TagScope : u8 {
    LINES,                   // by its start, for all its pieces
    LINES_OUTSIDE_COMMENTS,  // the same, unless a comment is open
    PIECES,                  // each piece of a long line by its own start; "[%" is move text
};

struct PgnPolicy {
    std::size_t line_limit;  // characters of a piece
    LongLine long_line;
    std::string_view tag_marks;  // a line of tags begins with one of these
    TagScope tag_scope;

    std::string_view blanks;    // between words
    std::string_view brackets;  // braces, and parentheses if variations are passed over; then a
                                // parenthesis in a comment counts as well
    bool words_hold_braces;     // a brace behind a word's first letter belongs to the word
    bool drops_controls;        // control characters are no part of a word
    std::string_view no_move;   // a word that begins with one of these is none
    bool castling_of_zeros;     // "0-" begins a move, as a letter does
    std::size_t word_limit;     // characters; the rest of a longer word is passed over
};

struct PgnReader {
    const PgnPolicy* policy;
    i64 comment_depth = 0;  // open braces; they nest, also across lines
    i64 variation_depth = 0;
    bool in_tags = false;  // the line, or piece, has no moves
    std::string word = {};
};

struct PgnToken {
    // COMMENT_END closes the outermost comment.
    enum Kind : u8 { MOVE, COMMENT, COMMENT_END } kind;
    std::string_view text;  // valid until the next token
};

// Goes on to the next piece of the text; false if it belongs to a line of tags.
[[nodiscard]] bool begin_piece(PgnReader& reader, const LinePiece& piece);
// The text that follows is a new game's, on the next line.
void begin_game(PgnReader& reader);
// Takes the next move or piece of a comment off the front of the text, nothing at its end. A move
// is a word from its first letter on, outside comments and variations; whether it is a legal one is
// not asked.
std::optional<PgnToken> next_token(PgnReader& reader, std::string_view& rest);

// The games of a book.
constexpr PgnPolicy BOOK_GAMES = {.line_limit = 254,
                                  .long_line = LongLine::AT_BLANK,
                                  .tag_marks = "[;",
                                  .tag_scope = TagScope::LINES_OUTSIDE_COMMENTS,
                                  .blanks = " ",
                                  .brackets = "{}()",
                                  .words_hold_braces = false,
                                  .drops_controls = true,
                                  .no_move = "$;",
                                  .castling_of_zeros = true,
                                  .word_limit = std::string_view::npos};

// The games whose comments the scanner reads.
constexpr PgnPolicy SCANNED_GAMES = {.line_limit = 254,
                                     .long_line = LongLine::AT_LIMIT,
                                     .tag_marks = "[",
                                     .tag_scope = TagScope::PIECES,
                                     .blanks = {"\0\t ", 3},
                                     .brackets = "{}",
                                     .words_hold_braces = true,
                                     .drops_controls = false,
                                     .no_move = "",
                                     .castling_of_zeros = false,
                                     .word_limit = 7};

// The game that the console loads.
constexpr PgnPolicy LOADED_GAME = {.line_limit = 1023,
                                   .long_line = LongLine::AT_BLANK,
                                   .tag_marks = "[",
                                   .tag_scope = TagScope::LINES,
                                   .blanks = "\t ",
                                   .brackets = "{}",
                                   .words_hold_braces = false,
                                   .drops_controls = false,
                                   .no_move = "",
                                   .castling_of_zeros = false,
                                   .word_limit = 32};

}  // namespace quon
