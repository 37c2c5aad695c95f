#pragma once
// The terms of the evaluation, each group in a file of its own: pawns, pieces, king, passed,
// threats, endgame. All but the cached pawn entry add their scores to the EvalInfo.

#include "board/bitboard.h"
#include "board/position.h"
#include "board/types.h"
#include "eval/score_pair.h"

namespace quon {

struct EvalInfo;
struct EvalNotes;
struct EvalTrace;

// pawns.cpp. Pawn structure: what depends on the pawns alone, computed once per pawn configuration
// and kept in a cache of the thread's own.

// Squares strictly ahead of a square on its own and the neighbouring files, [colour][square].
extern const Table<Table<Bitboard, 64>, 2> passed_span;

// The same on its own file alone.
inline Bitboard squares_ahead(int color, int square) {
    return passed_span[color][square] & file_mask(file_of(square));
}

struct PawnEntry {
    u64 key;                  // pawn key of the position
    Table<Bitboard, 2> span;  // squares that the colour's pawns attack now or after advancing
    Bitboard passed;          // both colours
    Bitboard candidates;      // both colours
    Table<Pair, 2> score;
    Table<u16, 2> files;  // files with a pawn of the colour, bit 0 = file a
};

// Computes the entry anew from the position of `info`; its tables, stage and trace mode must be
// set.
void fill_pawn_entry(const EvalInfo& info, PawnEntry& entry);

// pieces.cpp. Knights, bishops, rooks and queens.

// Scores the pieces of both colours and fills their attack maps, the double attacks and the numbers
// of king attackers.
void evaluate_pieces(EvalInfo& info);

// king.cpp. The kings: their safety while the enemy has pieces, their activity in the ending.

// Scores both kings from the finished attack maps; notes a threat where a queen can give a safe
// check right beside a king.
void evaluate_kings(EvalInfo& info);

// passed.cpp. Passed pawns and pawns that may become passed.

// Scores the passed pawns of both colours; a sound push adds to the threat against the other side.
void evaluate_passed(EvalInfo& info);
// Scores the candidates, in the ending only.
void evaluate_candidates(EvalInfo& info);

// threats.cpp. Pieces that stand badly right now: attacked pawns, hung pieces, pinned pieces.

// Scores weak pawns and hung pieces of both colours; the threat against a colour becomes at least
// the value of its most valuable hung piece.
void evaluate_threats(EvalInfo& info);
// Scores pieces pinned to their king or to a lone queen.
void evaluate_pins(EvalInfo& info);

// endgame.cpp. What is known about endings: material that settles the score at once, and how far a
// score can be believed when little material is left.

// True when the material decides; `score` is then final, from the side to move's view, and
// notes.eval_final says that it is a dead draw. Adds to the trace, if there is one.
[[nodiscard]] bool material_shortcut(const Position& p, EvalNotes& notes, EvalTrace* trace,
                                     int& score);

// The factor in [0.05, 1.0] that the score, from the side to move's view, is worth. Needs the
// attack maps of `info`.
[[nodiscard]] double scale_factor(const EvalInfo& info, int score);

}  // namespace quon
