#pragma once
// Pawn structure: what depends on the pawns alone, computed once per pawn configuration and kept in
// a cache of the thread's own.

#include "board/bitboard.h"
#include "board/types.h"

namespace quon {

struct EvalInfo;

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
    Table<i16, 2> op;
    Table<i16, 2> en;
    Table<u16, 2> files;  // files with a pawn of the colour, bit 0 = file a
};

// Computes the entry anew from the position of `info`; its tables, stage and trace mode must be
// set.
void fill_pawn_entry(const EvalInfo& info, PawnEntry& entry);

}  // namespace quon
