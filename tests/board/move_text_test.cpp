// Moves as text: the written forms, reading SAN, reading coordinates.

#include "engine/report.h"
#include "harness/board_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

// Rows of a position and "text:move" for each text, the move empty when the text is refused.
using TextRows = std::vector<std::pair<const char*, const char*>>;

void expect_reading(const TextRows& rows, Move (*read)(const Position&, std::string_view)) {
    options.uci_mode = true;
    for (const auto& [fen, texts] : rows) {
        const auto game = make_game(fen);
        for (const std::string& pair : split(texts, ' ')) {
            const Lines sides = split(pair, ':');
            const std::string expected = sides[1].empty() ? "null" : sides[1];
            EXPECT_EQ(move_to_text(read(game->position, sides[0])), expected) << fen << " " << pair;
        }
    }
}

constexpr char PROMOTION[] = "3r3k/4P3/8/8/8/8/8/4K3 w - -";
constexpr char CASTLING[] = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";

TEST(ParseSan, Cases) {
    const TextRows rows = {
        {START_FEN, "e4:e2e4 e2e4:e2e4 Nf3:g1f3 Ngf3:g1f3 N1f3+:g1f3 Nf3#:g1f3"},
        {START_FEN, "Nf3!?: Ke2: nf3: : +: Q: null:"},
        {"4k3/8/8/8/8/5N2/8/1N2K3 w - -", "Nd2: Nbd2:b1d2 Nfd2:f3d2 N3d2:f3d2"},
        {"4k3/8/8/8/2N5/5N2/8/1N2K3 w - -", "Nd2:"},  // all three could
        {"4k3/8/8/R7/8/8/8/R3K3 w - -", "Ra3: R1a3:a1a3 R5a3:a5a3 Raa3:"},
        {PROMOTION, "e8=Q+:e7e8q e8Q:e7e8q e8q:e7e8q e8=n:e7e8n e7e8r#:e7e8r exd8=B:e7d8b"},
        {PROMOTION, "edb:e7d8b e8: e8=K:"},
        {CASTLING, "O-O:e1g1 0-0:e1g1 o-o:e1g1 O-0:e1g1 O-O-O+:e1c1 0-0-0:e1c1 e1g1:e1g1 Kg1:"},
        {"4r1k1/8/8/8/8/8/8/R3K2R w KQ -", "O-O: Ra2:"},    // generated, but not legal
        {"4k3/8/8/1p6/P7/8/8/4K3 w - -", "axb5:a4b5 ab:"},  // "b" promotes to a bishop
    };
    const std::string output = captured_output([&] {
        expect_reading(rows, [](const Position& p, std::string_view text) {
            Move move = 1;
            const bool found = read_move(p, text, move);
            EXPECT_EQ(found, move != NO_MOVE) << text;
            return move;
        });
    });
    EXPECT_EQ(output, "ambiguous move\nambiguous move\n");  // Nd2 and Raa3
}

TEST(ParseSan, WrittenMovesAreReadBack) {
    captured_output([] {
        visit_random_positions(scaled(150), 61, [](Game& game) {
            const Position& p = game.position;
            int refused = 0;
            for (const Move move : legal_moves(p)) {
                const MoveForms forms = move_forms(p, {move, 0, p.board[move_from(move)], 0});
                Move read = NO_MOVE;
                ASSERT_TRUE(read_move(p, forms.coord, read)) << position_to_fen(p) << forms.coord;
                ASSERT_EQ(read, move);
                // Two pieces apart in file and rank share the bare letter.
                if (!read_move(p, forms.san, read)) ++refused;
                ASSERT_TRUE(read == move || read == NO_MOVE) << position_to_fen(p) << forms.san;
            }
            ASSERT_LT(refused, 40);
        });
    });
}

TEST(ParseCoordinates, Cases) {
    const TextRows rows = {
        {START_FEN, "e2e4:e2e4 g1f3xyz:g1f3 e2e5: e7e5: e4e5: e2e4q: a1a1: e2e: :"},
        {START_FEN, "e2e9: i2i4: E2E4: 0000: \xff\xfe\x01\x02\x03:"},
        {PROMOTION, "e7e8q:e7e8q e7e8n:e7e8n e7d8b:e7d8b e7d8r:e7d8r e7e8: e7e8k: e7f8q:"},
        {CASTLING, "e1g1:e1g1 e1c1:e1c1 e1h1:e1g1 e1a1:e1c1 e1b1: h1e1:"},
        {"r3k2r/8/8/8/8/8/8/R3K2R w kq -", "e1g1: e1h1:"},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6:e5d6"},
        {"4k3/8/8/4P3/8/8/8/4K3 w - d6", "e5d6:"},  // no pawn has passed
        {"4k3/8/3r4/3pP3/8/8/8/4K3 w - d6", "e5d6:"},
        {"4k3/8/8/8/8/8/P7/4K3 w - a3", "a2a3: a2a4:a2a4"},  // a push is no capture
        {"4k3/8/8/8/8/8/8/R3K2K w Q -", "h1f1: e1c1:e1c1"},  // only the king at home castles
        {"4k3/8/8/8/4K3/8/8/R3K2R w KQ -", "e4g4: e4c4: e1g1: e1c1:"},
        {"4k3/1p6/8/8/8/8/8/4K3 b - h8", "b7h8:"},
        {"4k3/8/8/8/8/8/4r3/4K3 w - -", "e1d1:e1d1"},  // legality is the caller's business
        {"4k3/8/8/8/8/8/8/4RK2 w - -", "e1e8:"},       // takes a king
    };
    expect_reading(rows, parse_coordinates);
}

}  // namespace
}  // namespace quon::test
