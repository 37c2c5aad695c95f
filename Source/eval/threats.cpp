// Threats and pins, from the finished attack maps.

#include "eval/terms.h"

#include <algorithm>

#include "board/see.h"
#include "eval/eval_info.h"
#include "eval/eval_trace.h"

namespace quon {

namespace {

constexpr Pair WEAK_PAWN = {-3, -12};  // attacked by a piece and defended by pieces only
constexpr int FURTHER_HUNG = 15;       // each further hung piece costs so much more than the last

template <int Color>
void evaluate_threats_to(EvalInfo& info) {
    const auto& pieces = info.position.bb[Color];
    const auto& own = info.attacks[Color];
    const auto& enemy = info.attacks[Color ^ 1];
    if (!(pieces[0] & enemy[0])) return;
    Score& score = info.positional[Color];

    const Bitboard piece_attacked = enemy[0] & ~enemy[PAWN];
    const int weak = popcount64(pieces[PAWN] & piece_attacked & own[0] & ~own[PAWN]);
    score += WEAK_PAWN * weak;

    const Bitboard minors = pieces[KNIGHT] | pieces[BISHOP];
    const Bitboard by_minor = enemy[PAWN] | enemy[KNIGHT] | enemy[BISHOP];
    const Bitboard hung = (pieces[PAWN] & piece_attacked & ~own[0]) |
                          (minors & (enemy[PAWN] | (enemy[0] & ~own[0]))) |
                          (pieces[ROOK] & by_minor) | (pieces[QUEEN] & (by_minor | enemy[ROOK]));
    if (!hung) return;
    const int count = popcount64(hung);
    const int further = FURTHER_HUNG * (count * (count - 1) / 2);
    score += info.terms.hung * count;
    score += -further;

    int dearest = QUEEN;
    while (!(hung & pieces[dearest])) --dearest;
    i16& threat = info.notes.threat[Color];
    threat = std::max(threat, i16(SEE_VALUE[dearest]));
    if (info.trace) info.trace->hung |= hung;
}

template <int Color>
void evaluate_pins_of(EvalInfo& info) {
    const auto& own = info.position.bb[Color];
    const auto& enemy = info.position.bb[Color ^ 1];
    const int king = king_square(info.position, Color);
    Bitboard blockers =
        lone_blockers(king, aligned_sliders(info.position, Color ^ 1, king), info.occupancy);
    if (own[QUEEN] && !more_than_one(own[QUEEN])) {
        const int queen = lsb_index(own[QUEEN]);
        blockers |= lone_blockers(
            queen, (diag_lines[queen] & enemy[BISHOP]) | (orth_lines[queen] & enemy[ROOK]),
            info.occupancy);
    }
    const Bitboard pinned = blockers & own[0] & ~own[PAWN];
    if (!pinned) return;
    const int count = popcount64(pinned);
    info.positional[Color] += info.terms.pinned * count;
    if (info.trace) info.trace->pinned |= pinned;
}

}  // namespace

void evaluate_threats(EvalInfo& info) {
    evaluate_threats_to<WHITE>(info);
    evaluate_threats_to<BLACK>(info);
}

void evaluate_pins(EvalInfo& info) {
    evaluate_pins_of<WHITE>(info);
    evaluate_pins_of<BLACK>(info);
}

}  // namespace quon
