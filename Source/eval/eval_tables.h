#pragma once
// What the evaluation reads: its terms, and the tables derived from the other parameters.
//
// There is one master; every search thread works on a copy of its own, so that a parameter change
// never reaches a running search. Tested against worked figures in tests/eval/eval_tables_test.cpp.

#include <string>

#include "board/types.h"
#include "eval/eval_params.h"

namespace quon {

struct EvalTables {
    EvalTerms terms;
    SquareTables pst;  // [type][square], pawn to king
    // [number of squares reached]
    Table<Pair, 16> knight_mobility;
    Table<Pair, 16> bishop_mobility;
    Table<Pair, 16> rook_mobility;
    Table<Pair, 32> queen_mobility;
    Table<i16, 8> ppawn;        // passed pawn by relative rank
    Table<i16, 7> ppawnx;       // what a safe step forward adds
    Table<i16, 64> KingDanger;  // by attack units / 8
};

// Copies the terms and builds the tables from the parameters.
void init_eval_tables(EvalTables& tables, const EvalParams& params);

// The tables as text, for the console.
std::string eval_tables_text(const EvalTables& tables);

}  // namespace quon
