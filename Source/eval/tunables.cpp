// The registry of tunable parameters, in the order in which the tuners number them.

#include "eval/tunables.h"

#include <utility>

#include "board/fen.h"
#include "eval/parameters.h"

namespace quon {

namespace {

void add(Tunables& tunables, std::string name, i16& field, int step) {
    tunables.push_back({std::move(name), &field, i16(step), double(field), 0.0, 0});
}

void add(Tunables& tunables, const std::string& name, Pair& pair, int step) {
    add(tunables, name + "_op", pair.op, step);
    add(tunables, name + "_en", pair.en, step);
}

void add(Tunables& tunables, const Parameter& parameter, EvalParams& params) {
    const std::string name = parameter.tuned_name ? parameter.tuned_name : parameter.key;
    if (!parameter.pair) return add(tunables, name, number_of(parameter, params), parameter.step);
    Pair& pair = params.*parameter.pair;
    if (parameter.tuned == Tuned::ALL) return add(tunables, name, pair, parameter.step);
    add(tunables, name, parameter.tuned == Tuned::OPENING ? pair.op : pair.en, parameter.step);
}

void add_square_table_factors(Tunables& tunables, EvalParams& params) {
    for (int type = PAWN; type <= KING; ++type) {
        add(tunables, std::string("PST_") + PIECE_LETTERS[type], params.pst_scale[type], 10);
    }
}

void add_square_values(Tunables& tunables, EvalParams& params) {
    for (int i = 0; i < params.pst_squares_op.size(); ++i) {
        const std::string square = {char('a' + i % 4), char('1' + i / 4)};
        add(tunables, "pst_" + square + "_op", params.pst_squares_op[i], 20);
    }
}

void add_numbered(Tunables& tunables, EvalParams& params) {
    for (int i = 0; i < params.p.size(); ++i)
        add(tunables, "p" + std::to_string(i + 1), params.p[i], 10);
}

}  // namespace

void register_tunables(Tunables& tunables, EvalParams& params) {
    if (!tunables.empty()) return;
    for (const Parameter& parameter : parameters()) {
        if (parameter.tuned != Tuned::NOTHING) add(tunables, parameter, params);
        if (parameter.pair == &EvalParams::pinned) add_square_table_factors(tunables, params);
        if (parameter.pair == &EvalParams::positional_bonus) {
            add_square_values(tunables, params);
            add_numbered(tunables, params);
        }
    }
}

}  // namespace quon
