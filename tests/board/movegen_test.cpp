// Generators against each other, legality and checks against making the move.

#include "board/movegen.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

// The set of moves is counted by perft, its order shows in node counts; here the parts are those of
// the whole, and only generated codes are pseudo-legal.
TEST(Generators, PartsAndPseudoLegality) {
    int visited = 0;
    visit_random_positions(scaled(20000), 21, [&](Game& game) {
        const Position& p = game.position;
        MoveEntry all[MAX_LIST];
        const MoveEntry* const end = gen_all(p, all);
        ASSERT_EQ(end->move, 0xFFFF);
        MoveEntry parts[MAX_LIST];
        MoveEntry* last = parts;
        last = gen_captures(p, last);
        last = gen_promotions(p, true, last);
        last = gen_quiets(p, last);
        ASSERT_EQ(last - parts, end - all) << position_to_fen(p);
        std::vector<bool> generated(65536, false);
        int underpromotions = 0;
        for (int i = 0; i < end - all; ++i) {
            const Move move = all[i].move;
            ASSERT_EQ(move, parts[i].move) << position_to_fen(p);
            ASSERT_EQ(all[i].piece, p.board[move_from(move)]);
            ASSERT_EQ(all[i].captured, p.board[move_to(move)]);
            ASSERT_FALSE(generated[move]) << position_to_fen(p) << move;
            generated[move] = true;
            underpromotions += promotion_type(move) != 0 && promotion_type(move) != QUEEN;
        }
        MoveEntry promotions[MAX_LIST];
        const auto every = gen_promotions(p, true, promotions) - promotions;
        ASSERT_EQ(every - (gen_promotions(p, false, promotions) - promotions), underpromotions);
        if (visited++ % 100) return;
        for (int code = 0; code < 65536; ++code) {
            ASSERT_EQ(is_pseudo_legal(p, Move(code)), generated[std::size_t(code)])
                << position_to_fen(p) << code;
        }
    });
}

// Legality and check by making the move and looking at the board.
TEST(Legality, AgreesWithMakingTheMove) {
    visit_random_positions(scaled(20000), 22, [](Game& game) {
        Position& p = game.position;
        const int us = p.side;
        const std::string fen = position_to_fen(p);
        MoveEntry list[MAX_LIST];
        const MoveEntry* end = gen_all(p, list);
        bool any = false;
        for (const MoveEntry* entry = list; entry != end; ++entry) {
            const Move move = entry->move;
            const int from = move_from(move);
            const int to = move_to(move);
            const int type = type_of(entry->piece);
            const bool castling = type == KING && std::abs(to - from) == 2;
            // These can check along lines that are deliberately not looked at.
            const bool special = castling || (type == PAWN && to == p.ep) || promotion_type(move);
            bool legal = true;
            for (const int square : {from, (from + to) / 2}) {
                if (castling && attackers_by_steps(p, square, us ^ 1)) legal = false;
            }
            const bool answer = is_legal(p, move);
            const int check = gives_check(p, *entry);
            make_move(p, move);
            if (attackers_by_steps(p, king_square(p, us), us ^ 1)) legal = false;
            Bitboard checkers = attackers_by_steps(p, king_square(p, us ^ 1), us);
            unmake_move(p);
            ASSERT_EQ(answer, legal) << fen << " " << move;
            any = any || legal;
            if (type == KING) checkers &= ~bit(to);  // kings side by side are no check
            const int expected = checkers & ~bit(to) ? 2 : checkers ? 1 : 0;
            ASSERT_TRUE(special ? check <= expected : check == expected) << fen << " " << move;
        }
        ASSERT_EQ(has_legal_move(p), any);
    });
}

TEST(GivesCheck, SpecialMoves) {
    const std::tuple<const char*, Move, int> cases[] = {
        {"8/4P3/3k4/8/8/8/8/4K3 w - -", make_code(52, 60, PROMOTE_KNIGHT), 1},
        {"8/4P3/3k4/8/8/8/8/4K3 w - -", make_code(52, 60, PROMOTE_QUEEN), 0},
        {"8/4P3/8/8/4k3/8/8/K7 w - -", make_code(52, 60, PROMOTE_ROOK), 0},  // its origin hides it
        {"8/4P3/8/8/k7/8/8/4K3 w - -", make_code(52, 60, PROMOTE_BISHOP), 1},
        {"5k2/8/8/8/8/8/8/4K2R w K -", make_code(4, 6), 0},      // the castling rook checks
        {"8/8/8/R2pP2k/8/8/8/K7 w - d6", make_code(36, 43), 0},  // the taken pawn leaves the rank
        {"8/1k6/8/3pP3/8/8/6B1/K7 w - d6", make_code(36, 43), 0},
        {"4k3/8/8/3pP3/8/8/8/K3R3 w - d6", make_code(36, 43), 2},
    };
    for (const auto& [fen, move, answer] : cases) {
        const auto game = make_game(fen);
        const MoveEntry entry{move, 0, game->position.board[move_from(move)], 0};
        EXPECT_EQ(gives_check(game->position, entry), answer) << fen << " " << move;
    }
}

}  // namespace
}  // namespace quon::test
