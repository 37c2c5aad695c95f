// The rows.

#include "eval/parameters.h"

namespace quon {

namespace {

using E = EvalParams;

constexpr Parameter PARAMETERS[] = {
    // Material: what a piece is worth, and two bishops beyond that.
    {.key = "pawn_value", .pair = &E::pawn_value, .tuned = Tuned::ALL, .step = 100},
    {.key = "knight_value", .pair = &E::knight_value, .tuned = Tuned::ALL, .step = 300},
    {.key = "bishop_value", .pair = &E::bishop_value, .tuned = Tuned::ALL, .step = 300},
    {.key = "rook_value", .pair = &E::rook_value, .tuned = Tuned::ALL, .step = 500},
    {.key = "queen_value", .pair = &E::queen_value, .tuned = Tuned::ALL, .step = 900},
    {.key = "bishop_pair", .pair = &E::bishop_pair, .tuned = Tuned::ALL, .step = 40},
    // Mobility: between the fewest and the most squares.
    {.key = "knight_mobility", .pair = &E::knight_mobility, .tuned = Tuned::ALL, .step = 50},
    {.key = "bishop_mobility", .pair = &E::bishop_mobility, .tuned = Tuned::ALL, .step = 50},
    {.key = "rook_mobility", .pair = &E::rook_mobility, .tuned = Tuned::ALL, .step = 50},
    {.key = "queen_mobility", .pair = &E::queen_mobility, .tuned = Tuned::ALL, .step = 50},
    // Passed pawns by rank, ending.
    {.key = "passed_pawn_rank2",
     .passed_pawn_rank = 2,
     .tuned = Tuned::ALL,
     .step = 10,
     .tuned_name = "ppawn_r2"},
    {.key = "passed_pawn_rank3",
     .passed_pawn_rank = 3,
     .tuned = Tuned::ALL,
     .step = 20,
     .tuned_name = "ppawn_r3"},
    {.key = "passed_pawn_rank4",
     .passed_pawn_rank = 4,
     .tuned = Tuned::ALL,
     .step = 30,
     .tuned_name = "ppawn_r4"},
    {.key = "passed_pawn_rank5",
     .passed_pawn_rank = 5,
     .tuned = Tuned::ALL,
     .step = 40,
     .tuned_name = "ppawn_r5"},
    {.key = "passed_pawn_rank6",
     .passed_pawn_rank = 6,
     .tuned = Tuned::ALL,
     .step = 50,
     .tuned_name = "ppawn_r6"},
    {.key = "passed_pawn_rank7",
     .passed_pawn_rank = 7,
     .tuned = Tuned::ALL,
     .step = 60,
     .tuned_name = "ppawn_r7"},
    {.key = "pawn_candidate", .pair = &E::pawn_candidate, .tuned = Tuned::ENDING, .step = 50},
    // Pawns.
    {.key = "pawn_doubled", .pair = &E::pawn_doubled, .tuned = Tuned::ALL, .step = 10},
    {.key = "pawn_backward", .pair = &E::pawn_backward, .tuned = Tuned::ALL, .step = 10},
    {.key = "pawn_isolated", .pair = &E::pawn_isolated, .tuned = Tuned::ALL, .step = 10},
    {.key = "pawn_weak", .pair = &E::pawn_weak, .tuned = Tuned::ALL, .step = 10},
    // Pieces.
    {.key = "knight_outpost", .pair = &E::knight_outpost, .tuned = Tuned::OPENING, .step = 15},
    {.key = "rook_open_file", .pair = &E::rook_open_file, .tuned = Tuned::ALL, .step = 15},
    {.key = "rook_half_open_file",
     .pair = &E::rook_half_open_file,
     .tuned = Tuned::ALL,
     .step = 10},
    {.key = "rook_rank7", .pair = &E::rook_rank7, .tuned = Tuned::ALL, .step = 10},
    {.key = "rook_trapped", .pair = &E::rook_trapped, .tuned = Tuned::OPENING, .step = 20},
    {.key = "queen_rank7", .pair = &E::queen_rank7, .tuned = Tuned::ALL, .step = 10},
    // Kings.
    {.key = "king_safety", .pair = &E::king_safety, .tuned = Tuned::OPENING, .step = 100},
    {.key = "pawn_shield", .pair = &E::pawn_shield, .tuned = Tuned::OPENING, .step = 10},
    {.key = "pawn_storm", .pair = &E::pawn_storm, .tuned = Tuned::OPENING, .step = 10},
    // Threats.
    {.key = "hung", .pair = &E::hung, .tuned = Tuned::ALL, .step = 20},
    {.key = "pinned", .pair = &E::pinned, .tuned = Tuned::ALL, .step = 20},
    // Spare: no term reads them; free for a new term.
    {.key = "positional_bonus", .pair = &E::positional_bonus, .tuned = Tuned::ALL, .step = 20},
    {.key = "tune", .number = &E::tune, .tuned = Tuned::ALL, .step = 100},

    // What a draw costs the side at the root.
    {.key = "contempt", .number = &E::contempt},

    // The search: depths in plies, margins in centipawns.
    {.key = "SingularExtension", .number = &E::SingularExtension},
    {.key = "NMP_depth", .number = &E::NMP_depth, .console = true},  // null move
    {.key = "SEP_depth", .number = &E::SEP_depth, .console = true},  // reverse futility
    {.key = "SEP_margin", .number = &E::SEP_margin},
    {.key = "FP_depth", .number = &E::FP_depth, .console = true},  // razoring
    {.key = "FP_margin", .number = &E::FP_margin},
    {.key = "LMP_depth", .number = &E::LMP_depth, .console = true},  // late-move pruning
    {.key = "LMP_count", .number = &E::LMP_count},
    {.key = "LMR_depth", .number = &E::LMR_depth, .console = true},        // late-move reductions
    {.key = "LMR_strength", .number = &E::LMR_strength, .console = true},  // percent
};

}  // namespace

std::span<const Parameter> parameters() { return PARAMETERS; }

i16& number_of(const Parameter& parameter, EvalParams& record) {
    if (parameter.number) return record.*parameter.number;
    return record.passed_pawn[parameter.passed_pawn_rank - 1];
}

}  // namespace quon
