// Sliders and keys, generators against each other and against published counts, legality and checks
// against making the move.

#include "board/bitboard.h"
#include "board/keys.h"
#include "board/perft.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

TEST(Bitboard, SlidersStopAtTheFirstBlocker) {
    Random random(2);
    for (int square = 0; square < 64; ++square) {
        ASSERT_EQ(orth_lines[square], reach_by_steps(ROOK, square, 0));
        ASSERT_EQ(diag_lines[square], reach_by_steps(BISHOP, square, 0));
        for (int i = scaled(1000); i > 0; --i) {
            Bitboard men = random();
            for (int thin = pick(random, 4); thin > 0; --thin) men &= random();
            ASSERT_EQ(rook_attacks(square, men), reach_by_steps(ROOK, square, men)) << square;
            ASSERT_EQ(bishop_attacks(square, men), reach_by_steps(BISHOP, square, men)) << square;
        }
    }
}

// The first word by hand; a signature of the rest, which slow drawing by the definition confirmed.
TEST(Keys, AreTheStream) {
    u64 signature = 0;
    for (const auto& row : piece_sq_keys) {
        for (const u64 key : row) signature = signature * 31 + key;
    }
    for (const u64 key : state_keys) signature = signature * 31 + key;
    EXPECT_EQ(piece_sq_keys[0][0] >> 32, 36969U * 65536U + 18000U);
    EXPECT_EQ(signature, 12009177996388126485U);
}

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

// Published move path counts.

// Checks those counts of a line "FEN ;D1 n ;D2 n ..." that are at most `bound`; at least one.
void check_counts(const std::string& line, u64 bound) {
    const Lines parts = split(line, ';');
    const auto game = make_game(parts[0]);
    int checked = 0;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        int depth = 0;
        unsigned long long count = 0;
        ASSERT_EQ(std::sscanf(parts[i].c_str(), "D%d %llu", &depth, &count), 2) << line;
        if (count > bound) continue;
        EXPECT_EQ(perft(game->position, depth), count) << parts[0] << "depth " << depth;
        ++checked;
    }
    EXPECT_GT(checked, 0) << line;
    EXPECT_EQ(perft(game->position, 0), 0U);
}

TEST(Perft, SharedSuites) {
    for (const char* name : {"/data/perft.epd", "/data/perft-special.epd"}) {
        const Lines lines = shared_lines(name);
        ASSERT_GT(lines.size(), 100U) << name;
        for (const std::string& line : lines) check_counts(line, u64(scaled(1000000)));
    }
}

}  // namespace
}  // namespace quon::test
