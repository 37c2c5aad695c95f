// Retrograde analysis of king and pawn against king.
//
// White has the pawn, on files a to d. Every position starts unknown; passes over the board settle
// those whose moves are settled, until nothing changes. What is still unknown then is a draw.

#include "eval/kpk.h"

#include <vector>

#include "board/bitboard.h"

namespace quon {

namespace {

constexpr int WIN_SCORE = 800;
constexpr int PAWN_SQUARES = 32;  // file + 4 * rank

// The finished table: a bit for each black king square where White wins.
using WinTable = Table<Table<Bitboard, 64>, PAWN_SQUARES>;  // [pawn][white king]
Table<WinTable, 2> KPKBitbase;                              // [side to move]

// Values of a position under construction; a bit each, so that moves can be gathered with OR.
constexpr u8 ILLEGAL = 0;
constexpr u8 DRAW = 1;
constexpr u8 WIN = 2;
constexpr u8 UNKNOWN = 4;

constexpr int pawn_square(int index) { return make_square(index & 3, index >> 2); }

struct Builder {
    // [pawn][white king][black king] as one index
    std::vector<u8> white_to_move = std::vector<u8>(PAWN_SQUARES * 64 * 64);
    std::vector<u8> black_to_move = std::vector<u8>(PAWN_SQUARES * 64 * 64);

    static std::size_t at(int pawn, int white_king, int black_king) {
        return std::size_t((pawn * 64 + white_king) * 64 + black_king);
    }

    void set_start(int pawn, int white_king, int black_king) {
        const std::size_t here = at(pawn, white_king, black_king);
        const int square = pawn_square(pawn);
        const bool impossible = white_king == black_king || white_king == square ||
                                black_king == square || has(king_attacks[white_king], black_king);
        white_to_move[here] = black_to_move[here] = impossible ? ILLEGAL : UNKNOWN;
        if (impossible) return;
        if (has(pawn_attacks[WHITE][square], black_king)) {
            white_to_move[here] = ILLEGAL;
        } else if (rank_of(square) == 7) {
            white_to_move[here] = WIN;
            const bool safe =
                !has(king_attacks[black_king], square) || has(king_attacks[white_king], square);
            if (safe) black_to_move[here] = WIN;
        }
    }

    [[nodiscard]] u8 after_white(int pawn, int white_king, int black_king) const {
        u8 reached = black_to_move[at(pawn + 4, white_king, black_king)];
        if (pawn < 8 && reached != ILLEGAL) {
            reached |= black_to_move[at(pawn + 8, white_king, black_king)];
        }
        for (Bitboard moves = king_attacks[white_king]; moves;) {
            reached |= black_to_move[at(pawn, pop_square(moves), black_king)];
        }
        if (reached & WIN) return WIN;
        return reached & UNKNOWN ? UNKNOWN : DRAW;
    }

    [[nodiscard]] u8 after_black(int pawn, int white_king, int black_king) const {
        const int square = pawn_square(pawn);
        u8 reached = 0;
        for (Bitboard moves = king_attacks[black_king]; moves;) {
            const int to = pop_square(moves);
            const bool takes = to == square && !has(king_attacks[white_king], square);
            reached |= takes ? DRAW : white_to_move[at(pawn, white_king, to)];
        }
        if (reached & DRAW) return DRAW;
        if (reached & UNKNOWN) return UNKNOWN;
        return reached & WIN ? WIN : DRAW;
    }

    // Settles what can be settled of one side's positions; true if anything was.
    template <typename After>
    bool pass(std::vector<u8>& values, After after) {
        bool changed = false;
        for (int pawn = 4; pawn < 28; ++pawn) {
            for (int white_king = 0; white_king < 64; ++white_king) {
                for (int black_king = 0; black_king < 64; ++black_king) {
                    u8& value = values[at(pawn, white_king, black_king)];
                    if (value != UNKNOWN) continue;
                    value = after(pawn, white_king, black_king);
                    changed |= value != UNKNOWN;
                }
            }
        }
        return changed;
    }

    void solve() {
        for (int pawn = 0; pawn < PAWN_SQUARES; ++pawn) {
            for (int white_king = 0; white_king < 64; ++white_king) {
                for (int black_king = 0; black_king < 64; ++black_king) {
                    set_start(pawn, white_king, black_king);
                }
            }
        }
        const auto white = [this](int p, int w, int b) { return after_white(p, w, b); };
        const auto black = [this](int p, int w, int b) { return after_black(p, w, b); };
        bool changed = true;
        while (changed) {
            changed = pass(white_to_move, white);
            changed |= pass(black_to_move, black);
        }
    }
};

void keep_wins(WinTable& table, const std::vector<u8>& values) {
    for (int pawn = 0; pawn < PAWN_SQUARES; ++pawn) {
        for (int white_king = 0; white_king < 64; ++white_king) {
            Bitboard wins = 0;
            for (int black_king = 0; black_king < 64; ++black_king) {
                const bool win = values[Builder::at(pawn, white_king, black_king)] == WIN;
                wins |= u64{win} << black_king;
            }
            table[pawn][white_king] = wins;
        }
    }
}

}  // namespace

void build_kpk_bitbase() {
    Builder builder;
    builder.solve();
    keep_wins(KPKBitbase[WHITE], builder.white_to_move);
    keep_wins(KPKBitbase[BLACK], builder.black_to_move);
}

int kpk_probe(const KpkPosition& squares) {
    int flip = squares.strong == WHITE ? 0 : 63;
    if (file_of(squares.pawn ^ flip) > 3) flip ^= 7;
    const int pawn = squares.pawn ^ flip;
    const bool strong_moves = squares.side == squares.strong;
    const WinTable& table = KPKBitbase[strong_moves ? WHITE : BLACK];
    const Bitboard wins = table[file_of(pawn) + 4 * rank_of(pawn)][squares.strong_king ^ flip];
    if (!has(wins, squares.weak_king ^ flip)) return 0;
    return strong_moves ? WIN_SCORE : -WIN_SCORE;
}

int kpk_probe(const Position& p, int side) {
    const int strong = p.bb[WHITE][PAWN] ? WHITE : BLACK;
    return kpk_probe({strong, lsb_index(p.bb[strong][PAWN]), king_square(p, strong),
                      king_square(p, strong ^ 1), side});
}

}  // namespace quon
