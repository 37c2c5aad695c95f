// The readers of games over the same lines.

#include "pgn/pgn_reader.h"

#include "harness/board_support.h"

namespace quon::test {
namespace {

// What a reader takes from lines: moves, comments in braces, "#" for a line of tags.
std::string tokens_of(const PgnPolicy& policy, const std::string& text) {
    PgnReader reader{&policy};
    std::string found;
    for (const std::string& line : split(text, '\n')) {
        if (!begin_piece(reader, {line, true, true})) {
            found += "#|";
            continue;
        }
        std::string_view rest = line;
        while (const auto token = next_token(reader, rest)) {
            if (token->kind == PgnToken::COMMENT_END) continue;
            const std::string taken(token->text);
            found += token->kind == PgnToken::MOVE ? taken + "|" : "{" + taken + "}|";
        }
        EXPECT_TRUE(rest.empty());
    }
    return found;
}

TEST(PgnReader, Policies) {
    const struct {
        std::string text, book, scanned, loaded;
    } cases[] = {
        {"", "", "", ""},
        {"  12.Nf3   $1 1-0 ", "Nf3|", "Nf3|", "Nf3|"},
        {"0-0 $O-O 0-1", "0-0|0-1|", "O-O|", "O-O|"},
        {"e4{a}e5", "e4|{a}|e5|", "e4{a}e5|", "e4|{a}|e5|"},
        {"1.{{a}b\nc}} d4", "{a}|{b}|{c}|d4|", "{a}|{b}|{c}|d4|", "{a}|{b}|{c}|d4|"},
        {"(d4 (d5)) e4 {:(} e5", "e4|{:}|", "d4|d5))|e4|{:(}|e5|", "d4|d5))|e4|{:(}|e5|"},
        {"Nf\t3 e\r5\x1f", "Nf3|e5|", "Nf|e\r5\x1f|", "Nf|e\r5\x1f|"},
        {std::string("a\0b", 3), "ab|", "a|b|", std::string("a\0b|", 4)},
        {"longtoken", "longtoken|", "longtok|", "longtoken|"},
        {";a\n[b\n[%c\n [d", "#|#|#|d|", "a|#|c|d|", "a|#|#|d|"},
        {"{\n[a\n}[b", "{[a}|b|", "#|b|", "#|b|"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(tokens_of(BOOK_GAMES, c.text), c.book) << c.text;
        EXPECT_EQ(tokens_of(SCANNED_GAMES, c.text), c.scanned) << c.text;
        EXPECT_EQ(tokens_of(LOADED_GAME, c.text), c.loaded) << c.text;
    }
}

// Pieces of a long line of tags, "[b" the second one: the scanner judges it for itself.
TEST(PgnReader, LongLines) {
    for (const PgnPolicy* policy : {&BOOK_GAMES, &SCANNED_GAMES, &LOADED_GAME}) {
        const bool scanned = policy == &SCANNED_GAMES;
        PgnReader reader{policy};
        EXPECT_FALSE(begin_piece(reader, {"[a ", true, false}));
        EXPECT_EQ(begin_piece(reader, {"e4 ", false, false}), scanned);
        EXPECT_TRUE(begin_piece(reader, {"e4 ", true, false}));
        EXPECT_EQ(begin_piece(reader, {"[b", false, true}), !scanned);
    }
}

}  // namespace
}  // namespace quon::test
