// Generators, legality and check tests against a generator that steps over the squares.

#include "board/movegen.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

using Moves = std::vector<Move>;

struct Lists {
    Moves captures, promotions, quiets;
};

void slow_pawn_moves(const Position& p, Lists& out) {
    const int us = p.side;
    const int up = us == WHITE ? 8 : -8;
    const auto enemy = [&](int s) { return has(p.bb[us ^ 1][0], s); };
    const auto beside = [](int a, int b) { return std::abs(file_of(a) - file_of(b)) == 1; };
    const auto row = [&](int s) { return us == WHITE ? rank_of(s) : 7 - rank_of(s); };
    for (const int step : {-1, 1}) {
        for (int to = 0; to < 64; ++to) {
            const int from = to - up - step;
            if (row(to) < 2 || row(to) == 7 || !beside(from, to)) continue;
            if (has(p.bb[us][PAWN], from) && (enemy(to) || to == p.ep)) {
                out.captures.push_back(make_code(from, to));
            }
        }
    }
    for (int from = 8; from < 56; ++from) {
        if (!has(p.bb[us][PAWN], from)) continue;
        const int ahead = from + up;
        for (int to = ahead; row(from) < 6 && p.board[to] == 0; to += up) {
            out.quiets.push_back(make_code(from, to));
            if (row(to) != 2) break;
        }
        for (const int to : {ahead, ahead - 1, ahead + 1}) {
            const bool possible = to == ahead ? p.board[to] == 0 : beside(from, to) && enemy(to);
            if (row(from) != 6 || !possible) continue;
            for (const int kind : {0x40, 0x80, 0x4000, 0x8000}) {
                out.promotions.push_back(make_code(from, to, Move(kind)));
            }
        }
    }
}

Lists slow_lists(const Position& p) {
    Lists out;
    slow_pawn_moves(p, out);
    const int us = p.side;
    for (int type = KNIGHT; type <= KING; ++type) {
        for (const int from : piece_squares(p, us * 8 + type)) {
            const Bitboard reached = reach_by_steps(type, from, occupied(p));
            for (int to = 0; to < 64; ++to) {
                if (!has(reached, to) || has(p.bb[us][0], to)) continue;
                (p.board[to] ? out.captures : out.quiets).push_back(make_code(from, to));
            }
        }
    }
    const int home = us == WHITE ? 4 : 60;
    const auto empty = [&](int s) { return p.board[s] == 0; };
    const int rights = us == WHITE ? p.castle : p.castle >> 2;
    if ((rights & 1) && empty(home + 1) && empty(home + 2)) {
        out.quiets.push_back(make_code(home, home + 2));
    }
    if ((rights & 2) && empty(home - 1) && empty(home - 2) && empty(home - 3)) {
        out.quiets.push_back(make_code(home, home - 2));
    }
    return out;
}

Moves moves_of(const Position& p, const MoveEntry* list, const MoveEntry* end) {
    Moves moves;
    for (; list != end; ++list) {
        moves.push_back(list->move);
        EXPECT_EQ(list->piece, p.board[move_from(list->move)]);
        EXPECT_EQ(list->captured, p.board[move_to(list->move)]);
    }
    return moves;
}

TEST(Generators, SetAndOrder) {
    int visited = 0;
    visit_random_positions(scaled(20000), 21, [&](Game& game) {
        const Position& p = game.position;
        Lists slow = slow_lists(p);
        MoveEntry list[MAX_LIST];
        ASSERT_EQ(moves_of(p, list, gen_captures(p, list)), slow.captures) << position_to_fen(p);
        ASSERT_EQ(moves_of(p, list, gen_promotions(p, true, list)), slow.promotions);
        ASSERT_EQ(moves_of(p, list, gen_quiets(p, list)), slow.quiets) << position_to_fen(p);
        Moves all = slow.captures;
        all.insert(all.end(), slow.promotions.begin(), slow.promotions.end());
        all.insert(all.end(), slow.quiets.begin(), slow.quiets.end());
        const MoveEntry* end = gen_all(p, list);
        ASSERT_EQ(moves_of(p, list, end), all);
        ASSERT_EQ(end->move, 0xFFFF);
        std::erase_if(slow.promotions, [](Move move) { return (move & 0x40) == 0; });
        ASSERT_EQ(moves_of(p, list, gen_promotions(p, false, list)), slow.promotions);
        if (visited++ % 100) return;
        for (int code = 0; code < 65536; ++code) {
            const bool generated = std::find(all.begin(), all.end(), code) != all.end();
            ASSERT_EQ(is_pseudo_legal(p, Move(code)), generated) << position_to_fen(p) << code;
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
