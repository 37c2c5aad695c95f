// Retrograde analysis of king and pawn against king.
//
// White has the pawn, on files a to d. For a pawn and a white king the black king's squares form a
// bitboard, so a pass settles 64 positions at once: White wins with a move to a won position, and a
// move of Black's is lost when every legal one leads to a win. Promotion ends the analysis, so
// pawns are solved from the seventh rank down. What no pass proves a win is a draw.

#include "eval/kpk.h"

#include "board/bitboard.h"

namespace quon {

namespace {

constexpr int KPK_WIN = 800;
constexpr int PAWN_SQUARES = 32;  // file + 4 * rank
constexpr int NEXT_RANK = 4;      // to the same file one rank ahead

// Black king squares where White wins.
using WinTable = Table<Table<Bitboard, 64>, PAWN_SQUARES>;  // [pawn][white king]
Table<WinTable, 2> KPKBitbase;                              // [side to move]

constexpr int pawn_square(int index) { return make_square(index & 3, index >> 2); }

// Black king squares of possible positions with Black to move.
Bitboard possible(int pawn, int white_king) {
    const int square = pawn_square(pawn);
    if (white_king == square) return 0;
    return ~(bit(square) | bit(white_king) | king_attacks[white_king]);
}

// And with White to move: the pawn does not attack the king.
Bitboard possible_for_white(int pawn, int white_king) {
    return possible(pawn, white_king) & ~pawn_attacks[WHITE][pawn_square(pawn)];
}

// Squares a king's move away from the set.
Bitboard king_reach(Bitboard b) {
    const Bitboard beside = shift_east(b) | shift_west(b);
    const Bitboard row = b | beside;
    return beside | row << 8 | row >> 8;
}

// A pawn that has just promoted wins unless the black king takes it.
void set_promoted(int pawn, int white_king) {
    const int square = pawn_square(pawn);
    const bool guarded = has(king_attacks[white_king], square);
    KPKBitbase[WHITE][pawn][white_king] = possible_for_white(pawn, white_king);
    KPKBitbase[BLACK][pawn][white_king] =
        possible(pawn, white_king) & (guarded ? ~Bitboard{0} : ~king_attacks[square]);
}

Bitboard won_for_white(int pawn, int white_king) {
    const WinTable& after = KPKBitbase[BLACK];
    const int pushed = pawn + NEXT_RANK;
    Bitboard won = after[pushed][white_king];
    if (pawn_square(pawn) < make_square(0, 2)) {
        won |= after[pushed + NEXT_RANK][white_king] & possible(pushed, white_king);
    }
    for (Bitboard moves = king_attacks[white_king]; moves;) won |= after[pawn][pop_square(moves)];
    return won & possible_for_white(pawn, white_king);
}

Bitboard lost_for_black(int pawn, int white_king) {
    const int square = pawn_square(pawn);
    const Bitboard won = KPKBitbase[WHITE][pawn][white_king];
    Bitboard escapes = possible_for_white(pawn, white_king) & ~won;
    if (!has(king_attacks[white_king], square)) escapes |= bit(square);  // the pawn hangs
    // Without a move it is stalemate.
    return possible(pawn, white_king) & king_reach(won) & ~king_reach(escapes);
}

bool settle(Bitboard& known, Bitboard proven) {
    const bool changed = known != proven;
    known = proven;
    return changed;
}

void solve(int pawn) {
    for (bool changed = true; changed;) {
        changed = false;
        for (int king = 0; king < 64; ++king) {
            changed |= settle(KPKBitbase[WHITE][pawn][king], won_for_white(pawn, king));
        }
        for (int king = 0; king < 64; ++king) {
            changed |= settle(KPKBitbase[BLACK][pawn][king], lost_for_black(pawn, king));
        }
    }
}

}  // namespace

void build_kpk_bitbase() {
    constexpr int promoted = 7 * NEXT_RANK;
    KPKBitbase = {};
    for (int pawn = promoted; pawn < PAWN_SQUARES; ++pawn) {
        for (int king = 0; king < 64; ++king) set_promoted(pawn, king);
    }
    for (int pawn = promoted - 1; pawn >= NEXT_RANK; --pawn) solve(pawn);
}

int kpk_probe(const KpkPosition& squares) {
    int flip = squares.strong == WHITE ? 0 : 63;
    if (file_of(squares.pawn ^ flip) > 3) flip ^= 7;
    const int pawn = squares.pawn ^ flip;
    const bool strong_moves = squares.side == squares.strong;
    const WinTable& table = KPKBitbase[strong_moves ? WHITE : BLACK];
    const Bitboard wins = table[file_of(pawn) + 4 * rank_of(pawn)][squares.strong_king ^ flip];
    if (!has(wins, squares.weak_king ^ flip)) return 0;
    return strong_moves ? KPK_WIN : -KPK_WIN;
}

int kpk_probe(const Position& p, int side) {
    const int strong = p.bb[WHITE][PAWN] ? WHITE : BLACK;
    return kpk_probe({strong, lsb_index(p.bb[strong][PAWN]), king_square(p, strong),
                      king_square(p, strong ^ 1), side});
}

}  // namespace quon
