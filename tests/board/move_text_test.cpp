// Moves as text: the written forms, reading SAN, reading coordinates.

#include "board/move_text.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/movegen.h"
#include "frontend/engine_options.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

TEST(MoveText, CoordinatesOfBothModes) {
    struct Case {
        Move move;
        const char* uci;
        const char* console;
    };
    const Case cases[] = {
        {NO_MOVE, "null", "null"},
        {make_code(12, 28), "e2e4", "e2e4"},
        {make_code(52, 60, PROMOTE_QUEEN), "e7e8q", "e7e8=Q"},
        {make_code(52, 60, PROMOTE_KNIGHT), "e7e8n", "e7e8=N"},
        {make_code(12, 5, PROMOTE_BISHOP), "e2f1b", "e2f1=B"},
        {make_code(52, 60, PROMOTE_ROOK), "e7e8r", "e7e8=R"},
    };
    for (const bool uci : {false, true}) {
        options.uci_mode = uci;
        for (const Case& row : cases) {
            EXPECT_EQ(move_to_text(row.move), uci ? row.uci : row.console);
        }
    }
}

TEST(MoveText, Forms) {
    struct Case {
        const char* fen;
        Move move;
        MoveForms forms;
    };
    const Case cases[] = {
        {START_FEN, make_code(12, 28), {"e2e4", "e4", "", ""}},
        {START_FEN, make_code(6, 21), {"g1f3", "Nf3", "Ngf3", "N1f3"}},
        {"4k3/8/8/3p4/4P3/8/8/4K3 w - -", make_code(28, 35), {"e4d5", "exd5", "ed", ""}},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", make_code(36, 43), {"e5d6", "exd6", "ed", ""}},
        {"8/8/4k3/3p4/4P3/8/8/4K3 w - -", make_code(28, 35), {"e4d5+", "exd5+", "ed+", "+"}},
        {"r6k/1P6/8/8/8/8/8/4K3 w - -",
         make_code(49, 56, PROMOTE_QUEEN),
         {"b7a8=Q+", "bxa8=Q+", "ba=Q+", "+"}},
        {"8/1P5k/8/8/8/8/8/4K3 w - -",
         make_code(49, 57, PROMOTE_KNIGHT),
         {"b7b8=N", "b8=N", "=N", ""}},
        {"4k3/8/8/R7/8/8/8/R3K3 w - -", make_code(0, 16), {"a1a3", "R1a3", "Raa3", "R1a3"}},
        {"4k3/8/8/8/8/8/1K6/R6R w - -", make_code(0, 4), {"a1e1+", "Rae1+", "Rae1+", "R1e1+"}},
        {"4k3/8/8/8/8/5N2/8/1N2K3 w - -", make_code(1, 11), {"b1d2", "Nd2", "Nbd2", "N1d2"}},
        // One rival on the file and one on the rank: the rank digit wins.
        {"k7/8/8/8/Q6Q/8/8/4K2Q w - -",
         make_code(31, 4 * 8 - 4),
         {"h4e4+", "Q4e4+", "Qhe4+", "Q4e4+"}},
        {"4k3/3r4/8/8/8/8/8/3QK3 w - -", make_code(3, 51), {"d1d7+", "Qxd7+", "Qdxd7+", "Q1xd7+"}},
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", make_code(4, 6), {"e1g1", "o-o", "O-O", "0-0"}},
        {"r3k2r/8/8/8/8/8/8/R3K2R b KQkq -",
         make_code(60, 58),
         {"e8c8", "o-o-o", "O-O-O", "0-0-0"}},
    };
    for (const bool uci : {false, true}) {
        options.uci_mode = uci;  // makes no difference
        for (const Case& row : cases) {
            const auto game = make_game(row.fen);
            const Position& p = game->position;
            const MoveForms forms = move_forms(
                p, {row.move, 0, p.board[move_from(row.move)], p.board[move_to(row.move)]});
            const auto texts = [](const MoveForms& f) {
                return std::vector<std::string>{f.coord, f.san, f.file, f.rank};
            };
            EXPECT_EQ(texts(forms), texts(row.forms)) << row.fen;
        }
    }
}

TEST(ParseSan, Cases) {
    constexpr char KNIGHTS[] = "4k3/8/8/8/8/5N2/8/1N2K3 w - -";
    constexpr char THREE[] = "4k3/8/8/8/2N5/5N2/8/1N2K3 w - -";
    constexpr char ROOKS[] = "4k3/8/8/R7/8/8/8/R3K3 w - -";
    constexpr char PROMOTION[] = "3r3k/4P3/8/8/8/8/8/4K3 w - -";
    constexpr char CASTLING[] = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";
    constexpr char CHECKED[] = "4r1k1/8/8/8/8/8/8/R3K2R w KQ -";
    struct Case {
        const char* fen;
        const char* text;
        const char* move;  // in coordinates, empty when the text is refused
        bool ambiguous = false;
    };
    const Case cases[] = {
        {START_FEN, "e4", "e2e4"},
        {START_FEN, "e2e4", "e2e4"},
        {START_FEN, "Nf3", "g1f3"},
        {START_FEN, "Ngf3", "g1f3"},
        {START_FEN, "N1f3+", "g1f3"},
        {START_FEN, "Nf3#", "g1f3"},
        {START_FEN, "Nf3!?", ""},
        {START_FEN, "Ke2", ""},
        {START_FEN, "nf3", ""},
        {START_FEN, "", ""},
        {START_FEN, "+", ""},
        {START_FEN, "Q", ""},
        {START_FEN, "null", ""},
        {KNIGHTS, "Nd2", "", true},
        {KNIGHTS, "Nbd2", "b1d2"},
        {KNIGHTS, "Nfd2", "f3d2"},
        {KNIGHTS, "N3d2", "f3d2"},
        {THREE, "Nd2", ""},  // all three could
        {ROOKS, "Ra3", ""},
        {ROOKS, "R1a3", "a1a3"},
        {ROOKS, "R5a3", "a5a3"},
        {ROOKS, "Raa3", "", true},
        {PROMOTION, "e8=Q+", "e7e8q"},
        {PROMOTION, "e8Q", "e7e8q"},
        {PROMOTION, "e8q", "e7e8q"},
        {PROMOTION, "e8=n", "e7e8n"},
        {PROMOTION, "e7e8r#", "e7e8r"},
        {PROMOTION, "exd8=B", "e7d8b"},
        {PROMOTION, "edb", "e7d8b"},
        {PROMOTION, "e8", ""},
        {PROMOTION, "e8=K", ""},
        {CASTLING, "O-O", "e1g1"},
        {CASTLING, "0-0", "e1g1"},
        {CASTLING, "o-o", "e1g1"},
        {CASTLING, "O-0", "e1g1"},
        {CASTLING, "O-O-O+", "e1c1"},
        {CASTLING, "0-0-0", "e1c1"},
        {CASTLING, "e1g1", "e1g1"},
        {CASTLING, "Kg1", ""},
        {CHECKED, "O-O", ""},  // generated, but not legal
        {CHECKED, "Ra2", ""},
        {"4k3/8/8/1p6/P7/8/8/4K3 w - -", "axb5", "a4b5"},
        {"4k3/8/8/1p6/P7/8/8/4K3 w - -", "ab", ""},  // ends like a promotion to a bishop
        {"4k3/8/8/8/1b6/2N5/8/N3K3 w - -", "Nb3", "a1b3"},
    };
    for (const Case& row : cases) {
        const auto game = make_game(row.fen);
        Move move = 1;
        bool found = false;
        const std::string output =
            captured_output([&] { found = parse_san(game->position, row.text, move); });
        options.uci_mode = true;
        EXPECT_EQ(found, *row.move != '\0') << row.fen << " " << row.text;
        EXPECT_EQ(found ? move_to_text(move) : "", row.move) << row.fen << " " << row.text;
        EXPECT_EQ(output, row.ambiguous ? "ambiguous move\n" : "") << row.fen << " " << row.text;
        if (!found) {
            EXPECT_EQ(move, NO_MOVE);
        }
    }
}

TEST(ParseSan, WrittenMovesAreReadBack) {
    const std::string output = captured_output([] {
        visit_random_positions(scaled(150), 61, [](Game& game) {
            const Position& p = game.position;
            int refused = 0;
            for (const Move move : legal_moves(p)) {
                const MoveForms forms = move_forms(p, {move, 0, p.board[move_from(move)], 0});
                Move read = NO_MOVE;
                ASSERT_TRUE(parse_san(p, forms.coord, read)) << position_to_fen(p) << forms.coord;
                ASSERT_EQ(read, move);
                if (parse_san(p, forms.san, read)) {
                    ASSERT_EQ(read, move) << position_to_fen(p) << forms.san;
                } else {
                    ++refused;  // two pieces apart in file and rank share the bare letter
                }
            }
            ASSERT_LT(refused, 40);
        });
    });
}

TEST(ParseCoordinates, Cases) {
    constexpr char PROMOTION[] = "3r3k/4P3/8/8/8/8/8/4K3 w - -";
    constexpr char CASTLING[] = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";
    struct Case {
        const char* fen;
        std::string_view text;
        Move move;
    };
    const Case cases[] = {
        {START_FEN, "e2e4", make_code(12, 28)},
        {START_FEN, "e2e4 ", make_code(12, 28)},
        {START_FEN, "g1f3xyz", make_code(6, 21)},
        {START_FEN, "e2e5", NO_MOVE},
        {START_FEN, "e7e5", NO_MOVE},   // not his turn
        {START_FEN, "e4e5", NO_MOVE},   // empty square
        {START_FEN, "e2e4q", NO_MOVE},  // no promotion there
        {START_FEN, "a1a1", NO_MOVE},
        {START_FEN, std::string_view("e2e4", 3), NO_MOVE},
        {START_FEN, "", NO_MOVE},
        {START_FEN, "e2e9", NO_MOVE},
        {START_FEN, "i2i4", NO_MOVE},
        {START_FEN, "E2E4", NO_MOVE},
        {START_FEN, "0000", NO_MOVE},
        {START_FEN, "\xff\xfe\x01\x02\x03", NO_MOVE},
        {PROMOTION, "e7e8q", make_code(52, 60, PROMOTE_QUEEN)},
        {PROMOTION, "e7e8n", make_code(52, 60, PROMOTE_KNIGHT)},
        {PROMOTION, "e7d8b", make_code(52, 59, PROMOTE_BISHOP)},
        {PROMOTION, "e7d8r", make_code(52, 59, PROMOTE_ROOK)},
        {PROMOTION, "e7e8", NO_MOVE},
        {PROMOTION, "e7e8k", NO_MOVE},
        {PROMOTION, "e7f8q", NO_MOVE},
        {CASTLING, "e1g1", make_code(4, 6)},
        {CASTLING, "e1c1", make_code(4, 2)},
        {CASTLING, "e1h1", NO_MOVE},
        {"r3k2r/8/8/8/8/8/8/R3K2R w kq -", "e1g1", NO_MOVE},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6", make_code(36, 43)},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - -", "e5d6", NO_MOVE},
        {"4k3/8/8/4P3/8/8/8/4K3 w - d6", "e5d6", NO_MOVE},      // no pawn has passed
        {"4k3/8/3r4/3nP3/8/8/8/4K3 w - d6", "e5d6", NO_MOVE},
        {"4k3/8/8/8/8/8/4r3/4K3 w - -", "e1d1",
         make_code(4, 3)},                                // legality is the caller's business
        {"4k3/8/8/8/8/8/8/4RK2 w - -", "e1e8", NO_MOVE},  // takes a king
    };
    for (const Case& row : cases) {
        const auto game = make_game(row.fen);
        EXPECT_EQ(parse_coordinates(game->position, row.text), row.move)
            << row.fen << " " << row.text;
    }
}

}  // namespace
}  // namespace quon::test
