// Move flags, and the threat test against a literal slow one.

#include <gtest/gtest.h>

#include <cstdlib>

#include "board/fen.h"
#include "board/legality.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "search/move_flags.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

MoveEntry entry_of(const Position& p, Move move) {
    return {move, 0, p.board[move_from(move)], p.board[move_to(move)]};
}

TEST(MoveFlags, Cases) {
    const struct {
        const char* fen;
        const char* move;
        int flags;
    } cases[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", "e2e4", 0},
        {"4k3/1p6/8/3n4/8/4N3/8/4K3 w - -", "e3d5", CAPTURE},
        {"r3k3/8/8/8/8/8/8/R3K3 w - -", "a1a8", CAPTURE | CHECK},
        {"4k3/2p5/8/3pP3/8/8/8/4K3 w - d6", "e5d6", CAPTURE},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6", CAPTURE | PASSED_PAWN_PUSH},
        {"4k3/8/8/3p4/4P3/8/8/4K3 w - -", "e4d5", CAPTURE | PASSED_PAWN_PUSH},
        {"4k3/8/8/8/4N3/8/8/4K3 w - -", "e4d6", CHECK},
        {"4k3/8/8/8/4N3/8/8/K3R3 w - -", "e4c5", CHECK | DISCOVERED_CHECK},
        {"4k3/8/8/8/4N3/8/8/K3R3 w - -", "e4d6", CHECK | DISCOVERED_CHECK},
        {"4k3/2n5/8/8/4B3/8/8/K3R3 w - -", "e4c6", CHECK | DISCOVERED_CHECK},
        {"4k3/8/2n5/8/4B3/8/8/K3R3 w - -", "e4c6", CAPTURE | CHECK | DISCOVERED_CHECK},
        {"5k2/8/8/8/8/8/8/4K2R w K -", "e1g1", 0},  // the rook's check is not looked at
        {"8/8/2P5/8/8/k7/8/4K3 w - -", "c6c7", PAWN_TO_SEVENTH},
        {"3k4/8/2P5/8/8/8/8/4K3 w - -", "c6c7", CHECK | PAWN_TO_SEVENTH},
        {"8/3n4/2P5/8/8/k7/8/4K3 w - -", "c6d7", CAPTURE | PAWN_TO_SEVENTH},
        {"8/2P5/8/8/8/k7/8/4K3 w - -", "c7c8q", QUEEN_PROMOTION},
        {"8/2P5/8/8/8/k7/8/4K3 w - -", "c7c8r", 0},
        {"1r6/2P5/8/8/8/k7/8/4K3 w - -", "c7b8q", CAPTURE | QUEEN_PROMOTION},
        {"1r6/2P5/8/8/8/k7/8/4K3 w - -", "c7b8n", CAPTURE},
        {"k7/2P5/8/8/8/8/8/4K3 w - -", "c7c8q", CHECK | QUEEN_PROMOTION},
        {"k7/2P5/8/8/8/8/8/4K3 w - -", "c7c8r", CHECK},
        {"4k3/8/8/8/P7/8/8/4K3 w - -", "a4a5", PASSED_PAWN_PUSH},
        {"4k3/8/8/P7/8/8/8/4K3 w - -", "a5a6", PASSED_PAWN_PUSH},
        {"4k3/8/8/8/8/P7/8/4K3 w - -", "a3a4", 0},
        {"4k3/8/8/1p6/P7/8/8/4K3 w - -", "a4a5", PASSED_PAWN_PUSH},  // the neighbour is passed by
        {"4k3/8/1p6/8/P7/8/8/4K3 w - -", "a4a5", 0},
        {"4k3/p7/8/8/P7/8/8/4K3 w - -", "a4a5", 0},
        {"4k3/8/P7/8/P7/8/8/4K3 w - -", "a4a5", PASSED_PAWN_PUSH},  // an own pawn does not matter
        {"4k3/1p6/8/p7/1P6/8/8/4K3 w - -", "b4a5", CAPTURE},
    };
    for (const auto& c : cases) {
        const auto game = make_game(c.fen);
        const Move move = parse_coordinates(game->position, c.move);
        ASSERT_NE(move, NO_MOVE) << c.move;
        EXPECT_EQ(move_flags(game->position, entry_of(game->position, move)), c.flags)
            << c.fen << " " << c.move;
        const auto flipped = make_game(flip_colors(game->position));
        const Move mirrored = Move(move ^ (56 | 56 << 8));
        EXPECT_EQ(move_flags(flipped->position, entry_of(flipped->position, mirrored)), c.flags)
            << "flipped: " << c.fen << " " << c.move;
    }
}

bool on_line(bool diagonal, int a, int b) {
    const int files = std::abs(file_of(a) - file_of(b));
    const int ranks = std::abs(rank_of(a) - rank_of(b));
    return a != b && (diagonal ? files == ranks : files == 0 || ranks == 0);
}

// Nothing between the two squares of a line but pieces of the set.
bool clear_but_for(const Position& p, int from, int to, Bitboard passable) {
    const auto sign = [](int n) { return n > 0 ? 1 : n < 0 ? -1 : 0; };
    const int step = sign(rank_of(to) - rank_of(from)) * 8 + sign(file_of(to) - file_of(from));
    for (int square = from + step; square != to; square += step) {
        if (p.board[square] != 0 && !has(passable, square)) return false;
    }
    return true;
}

struct SlowThreat {
    const Position& p;
    int us, from, to, type;

    int type_at(int square) const { return type_of(p.board[square]); }
    bool enemy_at(int square) const {
        return p.board[square] != 0 && color_of(p.board[square]) != us;
    }
    bool gained(bool diagonal, int square) const {
        return square != from && on_line(diagonal, to, square) && !on_line(diagonal, from, square);
    }
    // The mover attacks the square once the piece has really moved.
    bool attacked_after(int square) const {
        Position moved = p;
        for (const int kind : {0, type}) {
            moved.bb[us][kind] &= ~bit(from);
            moved.bb[us][kind] |= bit(to);
        }
        return square_attacked(moved, square, us);
    }
    bool attacks_zone(bool diagonal) const {
        const auto& own = p.bb[us];
        const Bitboard sliders = own[QUEEN] | own[diagonal ? BISHOP : ROOK];
        for (int square = 0; square < 64; ++square) {
            if (king_distance[square][king_square(p, us ^ 1)] != 1) continue;
            if (gained(diagonal, square) && clear_but_for(p, to, square, sliders) &&
                attacked_after(square)) {
                return true;
            }
        }
        return false;
    }
    bool attacks_piece(bool diagonal, int least_type) const {
        for (int square = 0; square < 64; ++square) {
            if (enemy_at(square) && type_at(square) >= least_type && type_at(square) <= QUEEN &&
                gained(diagonal, square) && clear_but_for(p, to, square, 0)) {
                return true;
            }
        }
        return false;
    }
    bool step_attacks(Bitboard attacked, int least_type) const {
        for (int square = 0; square < 64; ++square) {
            if (!has(attacked, square)) continue;
            if (king_distance[square][king_square(p, us ^ 1)] == 1) return true;
            if (enemy_at(square) && type_at(square) >= least_type && type_at(square) <= QUEEN)
                return true;
        }
        return false;
    }
    bool operator()() const {
        switch (type) {
            case PAWN: return step_attacks(pawn_attacks[us][to], KNIGHT);
            case KNIGHT: return step_attacks(reach_by_steps(KNIGHT, to, 0), ROOK);
            case BISHOP: return attacks_piece(true, ROOK) || attacks_zone(true);
            case ROOK: return attacks_piece(false, QUEEN) || attacks_zone(false);
            case QUEEN: return attacks_zone(true) || attacks_zone(false);
            default: return false;
        }
    }
};

TEST(Threat, AgreesWithTheSlowTest) {
    int threats = 0;
    visit_random_positions(scaled(15000), 31, [&](Game& game) {
        const Position& p = game.position;
        if (in_check(p)) return;
        MoveEntry list[MAX_LIST];
        for (const MoveEntry *entry = list, *end = gen_quiets(p, list); entry != end; ++entry) {
            const int from = move_from(entry->move);
            const bool slow =
                SlowThreat{p, p.side, from, move_to(entry->move), type_of(entry->piece)}();
            threats += slow;
            ASSERT_EQ(is_threat(p, *entry), slow)
                << position_to_fen(p) << " " << move_to_text(entry->move);
        }
    });
    EXPECT_GT(threats, 0);
}

TEST(Threat, Castling) {
    const auto game = make_game("4k3/8/8/8/8/8/8/R3K2R w KQ -");
    for (const auto& [move, castling] : {std::pair{"e1g1", true},
                                         {"e1c1", true},
                                         {"e1f1", false},
                                         {"e1d2", false},
                                         {"h1g1", false}}) {
        const MoveEntry entry = entry_of(game->position, parse_coordinates(game->position, move));
        EXPECT_EQ(is_castling_move(entry), castling) << move;
        EXPECT_FALSE(castling && is_threat(game->position, entry)) << move;
    }
}

}  // namespace
}  // namespace quon::test
