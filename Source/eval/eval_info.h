#pragma once
// The working record of one evaluation: set up by evaluate(), filled by its steps in their order.
//
// Scores are kept per colour as that colour's gain. Steps are templates on the colour they score;
// "own" and "enemy" are from its side.

#include "board/bitboard.h"
#include "board/position.h"
#include "eval/evaluate.h"

namespace quon {

// One attacker of a type in `king_attackers`: three bits for each type's number.
constexpr Table<int, 7> KING_ATTACKER_UNIT = {{0, 0, 1, 8, 64, 512, 0}};

constexpr int attackers_in(int packed, int type) { return packed / KING_ATTACKER_UNIT[type] & 7; }

// evaluate() fills it; what the steps add to starts at 0.
struct EvalInfo {
    EvalInfo(const Position& p, const EvalTables& t, EvalNotes& n, EvalTrace* term_trace)
        : position(p), tables(t), terms(t.terms), notes(n), trace(term_trace), king_attackers{} {}

    const Position& position;
    const EvalTables& tables;
    const EvalTerms& terms;
    EvalNotes& notes;
    EvalTrace* trace;

    Bitboard occupancy;
    int stage;            // 0 with all pieces, 24 with kings and pawns only
    Table<int, 2> phase;  // pieces of the colour, 0..12
    const PawnEntry* pawns;
    Table<Score, 2> material;
    Table<Score, 2> positional;

    Table<Table<Bitboard, 7>, 2> attacks;  // [colour][type], [colour][0] all of them
    Table<Bitboard, 2> double_attacks;     // squares attacked at least twice
    Table<Bitboard, 2> king_zone;          // 3x3 squares, shifted inwards from the edge
    Table<Bitboard, 2> mobility_area;
    Table<Bitboard, 2> outposts;       // own squares that no enemy pawn can ever attack
    Table<Bitboard, 2> blocked_pawns;  // own pawns with an enemy pawn in front
    Table<int, 2> king_attackers;      // packed numbers of the enemy pieces at the king zone
    Table<bool, 2> back_rank;          // enemy king or pawn at its back ranks: a target for rooks
    Bitboard king_files;               // of both kings, and the files beside them
    int knight_pawn_bonus;             // knights like many pawns
};

constexpr Bitboard CENTRAL_FILES = ~(FILE_A | FILE_H);
// Squares where the colour's outposts can be.
template <int Color>
constexpr Bitboard OUTPOST_RANKS = CENTRAL_FILES&(relative_rank_mask(Color, 4) |
                                                  relative_rank_mask(Color, 5));
template <int Color>
constexpr Bitboard ENEMY_HALF = Color == WHITE ? 0xFFFFFFFF00000000 : 0x00000000FFFFFFFF;

// The square or the set one step behind, seen from the colour.
template <int Color>
constexpr Bitboard shift_back(Bitboard b) {
    return shift_forward<Color ^ 1>(b);
}

}  // namespace quon
