// Generators, legality and check tests against a generator that steps over the squares.

#include "board/movegen.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

struct Lists {
    std::vector<Move> captures, promotions, quiets;
};

void slow_pawn_moves(const Position& p, Lists& out) {
    const int us = p.side;
    const int up = us == WHITE ? 1 : -1;
    const int pawn = us * 8 + PAWN;
    const int last = us == WHITE ? 7 : 0;
    const auto enemy = [&](int s) { return p.board[s] != 0 && color_of(p.board[s]) != us; };
    const auto beside = [](int a, int b) { return std::abs(file_of(a) - file_of(b)) == 1; };
    for (const int side_step : {-1, 1}) {
        for (int to = 0; to < 64; ++to) {
            const int from = to - 8 * up - side_step;
            if (rank_of(to) == last || rank_of(to) == 7 - last || !beside(from, to)) continue;
            if (p.board[from] == pawn && (enemy(to) || to == p.ep)) {
                out.captures.push_back(make_code(from, to));
            }
        }
    }
    for (int from = 0; from < 64; ++from) {
        const int ahead = from + 8 * up;
        if (p.board[from] != pawn || ahead < 0 || ahead > 63) continue;
        if (rank_of(ahead) != last) {
            if (p.board[ahead]) continue;
            out.quiets.push_back(make_code(from, ahead));
            const bool home = rank_of(from) == (us == WHITE ? 1 : 6);
            if (home && p.board[ahead + 8 * up] == 0) {
                out.quiets.push_back(make_code(from, ahead + 8 * up));
            }
            continue;
        }
        for (const int step : {0, -1, 1}) {
            const int to = ahead + step;
            if (step == 0 ? p.board[to] != 0 : !beside(from, to) || !enemy(to)) continue;
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
        for (const u8* from = p.plist[us * 8 + type].begin(); *from != NO_SQUARE; ++from) {
            const Bitboard reached = reach_by_steps(type, *from, occupied(p));
            for (int to = 0; to < 64; ++to) {
                if (!has(reached, to)) continue;
                if (p.board[to] == 0) {
                    out.quiets.push_back(make_code(*from, to));
                } else if (color_of(p.board[to]) != us) {
                    out.captures.push_back(make_code(*from, to));
                }
            }
        }
    }
    const int home = us == WHITE ? 4 : 60;
    const auto empty = [&](int s) { return p.board[s] == 0; };
    const int rights = us == WHITE ? p.castle : p.castle >> 2;
    if (p.board[home] == us * 8 + KING) {
        if ((rights & 1) && empty(home + 1) && empty(home + 2)) {
            out.quiets.push_back(make_code(home, home + 2));
        }
        if ((rights & 2) && empty(home - 1) && empty(home - 2) && empty(home - 3)) {
            out.quiets.push_back(make_code(home, home - 2));
        }
    }
    return out;
}

std::vector<Move> moves_of(const Position& p, const MoveEntry* list, const MoveEntry* end) {
    std::vector<Move> moves;
    for (; list != end; ++list) {
        moves.push_back(list->move);
        EXPECT_EQ(list->piece, p.board[move_from(list->move)]);
        EXPECT_EQ(list->captured, p.board[move_to(list->move)]);
    }
    return moves;
}

TEST(Generators, SetAndOrder) {
    visit_random_positions(scaled(20000), 21, [](Game& game) {
        const Position& p = game.position;
        const Lists slow = slow_lists(p);
        MoveEntry list[MAX_LIST];
        ASSERT_EQ(moves_of(p, list, gen_captures(p, list)), slow.captures) << position_to_fen(p);
        ASSERT_EQ(moves_of(p, list, gen_promotions(p, true, list)), slow.promotions);
        ASSERT_EQ(moves_of(p, list, gen_quiets(p, list)), slow.quiets) << position_to_fen(p);

        std::vector<Move> queens = slow.promotions;
        std::erase_if(queens, [](Move move) { return (move & 0x40) == 0; });
        ASSERT_EQ(moves_of(p, list, gen_promotions(p, false, list)), queens);

        std::vector<Move> all = slow.captures;
        all.insert(all.end(), slow.promotions.begin(), slow.promotions.end());
        all.insert(all.end(), slow.quiets.begin(), slow.quiets.end());
        const MoveEntry* end = gen_all(p, list);
        ASSERT_EQ(moves_of(p, list, end), all);
        ASSERT_EQ(end->move, 0xFFFF);
    });
}

// Legal or not, by making the move and looking at the board.
bool slow_legal(Game& game, Move move) {
    Position& p = game.position;
    const int us = p.side;
    const int from = move_from(move);
    const int to = move_to(move);
    if (type_of(p.board[from]) == KING && std::abs(to - from) == 2) {
        for (const int square : {from, (from + to) / 2, to}) {
            if (attackers_by_steps(p, square, us ^ 1)) return false;
        }
    }
    make_move(p, move);
    const bool safe = attackers_by_steps(p, king_square(p, us), us ^ 1) == 0;
    unmake_move(p);
    return safe;
}

TEST(Legality, AgreesWithMakingTheMove) {
    visit_random_positions(scaled(20000), 22, [](Game& game) {
        Position& p = game.position;
        MoveEntry list[MAX_LIST];
        const MoveEntry* end = gen_all(p, list);
        bool any = false;
        for (const MoveEntry* entry = list; entry != end; ++entry) {
            const bool legal = slow_legal(game, entry->move);
            ASSERT_EQ(is_legal(p, entry->move), legal) << position_to_fen(p) << " " << entry->move;
            any = any || legal;
        }
        ASSERT_EQ(has_legal_move(p), any);
    });
}

TEST(GivesCheck, AgreesWithMakingTheMove) {
    visit_random_positions(scaled(20000), 23, [](Game& game) {
        Position& p = game.position;
        MoveEntry list[MAX_LIST];
        const MoveEntry* end = gen_all(p, list);
        for (const MoveEntry* entry = list; entry != end; ++entry) {
            const int us = p.side;
            const int from = move_from(entry->move);
            const int to = move_to(entry->move);
            const int type = type_of(entry->piece);
            // These can check along lines that are deliberately not looked at.
            const bool special = (type == KING && std::abs(to - from) == 2) ||
                                 (type == PAWN && to == p.ep) || promotion_type(entry->move);
            const int answer = gives_check(p, *entry);
            make_move(p, entry->move);
            Bitboard checkers = attackers_by_steps(p, king_square(p, us ^ 1), us);
            if (type == KING) checkers &= ~bit(to);  // kings side by side are no check
            unmake_move(p);
            const int expected = checkers & ~bit(to) ? 2 : checkers ? 1 : 0;
            if (special) {
                ASSERT_LE(answer, expected) << position_to_fen(p) << " " << entry->move;
            } else {
                ASSERT_EQ(answer, expected) << position_to_fen(p) << " " << entry->move;
            }
        }
    });
}

TEST(GivesCheck, KnownCases) {
    struct Case {
        const char* fen;
        Move move;
        int answer;
    };
    const Case cases[] = {
        {"8/4P3/3k4/8/8/8/8/4K3 w - -", make_code(52, 60, PROMOTE_KNIGHT), 1},
        {"8/4P3/3k4/8/8/8/8/4K3 w - -", make_code(52, 60, PROMOTE_QUEEN), 0},
        {"7k/8/8/8/3R4/8/8/Q3K3 w - -", make_code(27, 28), 2},
        {"7k/8/8/8/3R4/8/8/Q3K3 w - -", make_code(27, 59), 2},  // from both
        {"5k2/8/8/8/8/8/8/4K2R w K -", make_code(4, 6), 0},     // the castling rook checks
        {"8/8/8/3pP2k/8/8/8/K2R4 w - d6", make_code(36, 43), 0},
        {"8/8/8/R2pP2k/8/8/8/K7 w - d6", make_code(36, 43), 0},  // the taken pawn leaves the rank
        {"8/1k6/8/3pP3/8/8/6B1/K7 w - d6", make_code(36, 43), 0},
        {"4k3/8/8/3pP3/8/8/8/K3R3 w - d6", make_code(36, 43), 2},
        {"8/4P3/8/8/4k3/8/8/K7 w - -", make_code(52, 60, PROMOTE_QUEEN), 0},  // its origin hides it
        {"8/4P3/8/8/4k3/8/8/K7 w - -", make_code(52, 60, PROMOTE_ROOK), 0},
        {"8/4P3/8/8/k7/8/8/4K3 w - -", make_code(52, 60, PROMOTE_BISHOP), 1},
        {"4k3/8/8/8/4K3/8/8/4R3 w - -", make_code(28, 27), 2},
    };
    for (const Case& row : cases) {
        const auto game = make_game(row.fen);
        const MoveEntry entry{row.move, 0, game->position.board[move_from(row.move)], 0};
        EXPECT_EQ(gives_check(game->position, entry), row.answer) << row.fen << " " << row.move;
    }
}

TEST(PseudoLegal, AllCodes) {
    visit_random_positions(scaled(200), 24, [](Game& game) {
        const Position& p = game.position;
        MoveEntry list[MAX_LIST];
        const std::vector<Move> all = moves_of(p, list, gen_all(p, list));
        std::vector<bool> generated(65536);
        for (const Move move : all) generated[move] = true;
        for (int code = 0; code < 65536; ++code) {
            ASSERT_EQ(is_pseudo_legal(p, Move(code)), bool(generated[std::size_t(code)]))
                << position_to_fen(p) << " " << code;
        }
    });
}

}  // namespace
}  // namespace quon::test
