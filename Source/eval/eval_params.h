#pragma once
// Every number of the evaluation that can be changed without rebuilding, with the search's and the
// strength limit's own parameters beside them.
//
// Values are centipawns unless noted; a pair holds a term's opening and ending half. The parameter
// file (param_file.h), the console and the tuners write the record; the search reads it, the
// evaluation what init_eval_tables has made of it.

#include "board/types.h"
#include "eval/score_pair.h"

namespace quon {

// Square tables of a parameter file, [type][square] from White's side; entry 0 is storage only.
using SquareTables = Table<Table<Pair, 64>, 7>;
constexpr i16 UNSET = -1000;  // marks an entry that no file has set

constexpr SquareTables unset_square_tables() {
    SquareTables tables{};
    for (auto& table : tables) {
        for (Pair& entry : table) entry = {UNSET, UNSET};
    }
    return tables;
}

// The terms that the evaluation reads as they are.
struct EvalTerms {
    i16 contempt = 0;
    Pair pawn_value = {90, 110};
    Pair knight_value = {380, 350};
    Pair bishop_value = {390, 360};
    Pair rook_value = {530, 630};
    Pair queen_value = {1180, 1180};
    Pair bishop_pair = {30, 50};
    Pair pawn_candidate = {0, 45};
    Pair pawn_isolated = {-8, -8};
    Pair pawn_backward = {-4, -4};
    Pair pawn_doubled = {-5, -5};
    Pair pawn_weak = {-8, -8};
    Pair knight_outpost = {16, 0};
    Pair rook_open_file = {14, 7};
    Pair rook_half_open_file = {7, 7};
    Pair rook_rank7 = {14, 14};
    Pair rook_trapped = {-25, 0};
    Pair queen_rank7 = {0, 10};
    Pair pawn_shield = {60, 0};
    Pair pawn_storm = {-10, 0};
    Pair hung = {-24, -24};
    Pair pinned = {-18, -18};
};

struct EvalParams : EvalTerms {
    i16 limit_strength = 0;  // 0 or 1
    i16 elo = 3000;
    // Read by the search.
    i16 SingularExtension = 0;
    i16 SEP_depth = 3;
    i16 NMP_depth = 3;
    i16 FP_depth = 3;
    i16 LMP_depth = 5;
    i16 LMR_depth = 3;
    i16 LMP_count = 3;
    i16 LMR_strength = 100;
    i16 SEP_margin = 75;
    i16 FP_margin = 125;
    // What tables are made from.
    Table<i16, 8> passed_pawn = {{0, 6, 6, 18, 38, 78, 138, 250}};  // by rank
    Pair knight_mobility = {46, 54};
    Pair bishop_mobility = {46, 54};
    Pair rook_mobility = {34, 44};
    Pair queen_mobility = {40, 90};
    Pair king_safety = {100, 0};  // percent
    SquareTables pst = unset_square_tables();
    // Factors of the built-in square tables, [type]; a table's own divisor leaves it as it is.
    Table<Pair, 7> pst_scale = {{{0, 0}, {16, 8}, {42, 42}, {12, 12}, {8, 0}, {15, 30}, {48, 60}}};
    // Spare.
    Pair positional_bonus = {25, 25};
    Table<i16, 32> pst_squares_op = {};  // files a to d within each rank
    Table<i16, 15> p = {{36, 28, 44, 44, 34, 36, 18, 9, 15, 0, 0, 0, 0, 0, 0}};
    i16 tune = 256;
};

// True if every entry of the record's own square tables is set; otherwise the built-in ones serve.
[[nodiscard]] inline bool has_square_tables(const EvalParams& record) {
    for (int type = PAWN; type <= KING; ++type) {
        for (const Pair& entry : record.pst[type]) {
            if (entry.op == UNSET || entry.en == UNSET) return false;
        }
    }
    return true;
}

}  // namespace quon
