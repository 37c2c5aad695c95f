#pragma once
// The table of the parameters: one row each, from which the parameter file, the tuners and the
// console's "set" know them. Adding a parameter is adding a field (eval_params.h) and a row.

#include <span>

#include "eval/eval_params.h"

namespace quon {

// What of a parameter the tuners move.
enum class Tuned : u8 { NOTHING, ALL, OPENING, ENDING };

struct Parameter {
    const char* key;  // of the parameter file, and the tuners' name unless they have another one
    // The field, one of the three.
    i16 EvalParams::*number = nullptr;
    Pair EvalParams::*pair = nullptr;  // opening and ending half
    int passed_pawn_rank = 0;          // 1..8

    Tuned tuned = Tuned::NOTHING;
    i16 step = 0;  // of the tuners, in the parameter's unit
    const char* tuned_name = nullptr;
    bool console = false;  // "set" changes it
};

// In the order in which the tuners number them.
std::span<const Parameter> parameters();

// The number in a record; the parameter is no pair.
i16& number_of(const Parameter& parameter, EvalParams& record);

}  // namespace quon
