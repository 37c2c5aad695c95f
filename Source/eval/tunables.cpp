// The registry of tunable parameters, in the order in which the tuners number them.

#include "eval/tunables.h"

#include <utility>

#include "board/fen.h"

namespace quon {

Tunables tunables;

namespace {

void add(std::string name, i16& field, int step) {
    tunables.push_back({std::move(name), &field, i16(step), double(field), 0.0, 0});
}

void add(const std::string& name, Pair& pair, int step) {
    add(name + "_op", pair.op, step);
    add(name + "_en", pair.en, step);
}

void add_passed_pawns() {
    for (int rank = 2; rank <= 7; ++rank) {
        add("ppawn_r" + std::to_string(rank), params.passed_pawn[rank - 1], 10 * (rank - 1));
    }
}

void add_square_values() {
    for (int i = 0; i < params.pst_squares_op.size(); ++i) {
        const std::string square = {char('a' + i % 4), char('1' + i / 4)};
        add("pst_" + square + "_op", params.pst_squares_op[i], 20);
    }
}

void add_numbered() {
    for (int i = 0; i < params.p.size(); ++i) add("p" + std::to_string(i + 1), params.p[i], 10);
}

}  // namespace

void register_tunables() {
    if (!tunables.empty()) return;
    add("pawn_value", params.pawn_value, 100);
    add("knight_value", params.knight_value, 300);
    add("bishop_value", params.bishop_value, 300);
    add("rook_value", params.rook_value, 500);
    add("queen_value", params.queen_value, 900);
    add("bishop_pair", params.bishop_pair, 40);
    add("knight_mobility", params.knight_mobility, 50);
    add("bishop_mobility", params.bishop_mobility, 50);
    add("rook_mobility", params.rook_mobility, 50);
    add("queen_mobility", params.queen_mobility, 50);
    add_passed_pawns();
    add("pawn_candidate", params.pawn_candidate.en, 50);
    add("pawn_doubled", params.pawn_doubled, 10);
    add("pawn_backward", params.pawn_backward, 10);
    add("pawn_isolated", params.pawn_isolated, 10);
    add("pawn_weak", params.pawn_weak, 10);
    add("knight_outpost", params.knight_outpost.op, 15);
    add("rook_open_file", params.rook_open_file, 15);
    add("rook_half_open_file", params.rook_half_open_file, 10);
    add("rook_rank7", params.rook_rank7, 10);
    add("rook_trapped", params.rook_trapped.op, 20);
    add("queen_rank7", params.queen_rank7, 10);
    add("king_safety", params.king_safety.op, 100);
    add("pawn_shield", params.pawn_shield.op, 10);
    add("pawn_storm", params.pawn_storm.op, 10);
    add("hung", params.hung, 20);
    add("pinned", params.pinned, 20);
    for (int type = PAWN; type <= KING; ++type) {
        add(std::string("PST_") + PIECE_LETTERS[type], params.pst_scale[type], 10);
    }
    add("positional_bonus", params.positional_bonus, 20);
    add_square_values();
    add_numbered();
    add("tune", params.tune, 100);
}

}  // namespace quon
