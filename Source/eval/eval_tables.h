#pragma once
// What the evaluation reads: tables and terms derived from the parameters.
//
// There is one master; every search thread works on a copy of its own, so that a parameter change
// never reaches a running search. Tested against worked figures in tests/eval/eval_tables_test.cpp.

#include "board/types.h"
#include "eval/eval_params.h"

namespace quon {

struct EvalTables {
    Table<Pair, 7> piece_value;  // [type], pawn to queen
    Pair bishop_pair;
    SquareTables pst;  // [type][square], pawn to king
    // [number of squares reached]
    Table<Pair, 16> knight_mobility;
    Table<Pair, 16> bishop_mobility;
    Table<Pair, 16> rook_mobility;
    Table<Pair, 32> queen_mobility;
    Pair pawn_doubled;
    Pair pawn_backward;
    Pair pawn_isolated;
    Pair pawn_weak;
    Pair rook_open_file;
    Pair rook_half_open_file;
    Pair rook_rank7;
    Table<i16, 8> ppawn;        // passed pawn by relative rank
    Table<i16, 7> ppawnx;       // what a safe step forward adds
    Table<i16, 64> KingDanger;  // by attack units / 8
    Pair hung;
    Pair pinned;
    i16 contempt;
    i16 pawn_candidate;  // ending
    i16 knight_outpost;  // opening
    i16 rook_trapped;    // opening
    i16 queen_rank7;     // ending
    i16 pawn_shield;     // opening
    i16 pawn_storm;      // opening
};

// Builds the tables from the parameters.
void init_eval_tables(EvalTables& tables, const EvalParams& params);

}  // namespace quon
