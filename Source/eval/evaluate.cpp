// The evaluation's steps in their order, from the caches to the blend.

#include "eval/evaluate.h"

#include <algorithm>
#include <cassert>

#include "board/keys.h"
#include "eval/eval_info.h"
#include "eval/eval_trace.h"
#include "eval/terms.h"

namespace quon {

namespace {

constexpr Pair TEMPO = {14, 7};
constexpr int LONE_QUEEN_EN = -50;
constexpr int OBSTRUCTED_PAWN = -2;          // any piece in front
constexpr int OBSTRUCTED_CENTRE_PAWN = -12;  // further, at home on the d- or e-file
constexpr Bitboard CENTRE_FILES = file_mask(3) | file_mask(4);

constexpr Table<int, 7> PHASE_WEIGHT = {{0, 0, 1, 1, 2, 4, 0}};
constexpr int MAX_PHASE = 12;

// The 3x3 block round each king square, shifted inwards from the edge.
constexpr Table<Bitboard, 64> KING_ZONE = [] {
    Table<Bitboard, 64> zones{};
    for (int square = 0; square < 64; ++square) {
        const int file = std::clamp(file_of(square), 1, 6);
        const int rank = std::clamp(rank_of(square), 1, 6);
        zones[square] = Bitboard{0x70707} << make_square(file - 1, rank - 1);
    }
    return zones;
}();

// A king's file and the files beside it, by king file.
constexpr Table<Bitboard, 8> KING_FILES = [] {
    Table<Bitboard, 8> files{};
    for (int file = 0; file < 8; ++file) {
        const Bitboard own = file_mask(file);
        files[file] = own | shift_east(own) | shift_west(own);
    }
    return files;
}();

// The count of a type in a material signature.
template <int Type>
int count_in(u32 sig) {
    return int(sig / SIG_UNIT[Type] & 15);
}

int phase_of(u32 sig) {
    const int phase = PHASE_WEIGHT[KNIGHT] * count_in<KNIGHT>(sig) +
                      PHASE_WEIGHT[BISHOP] * count_in<BISHOP>(sig) +
                      PHASE_WEIGHT[ROOK] * count_in<ROOK>(sig) +
                      PHASE_WEIGHT[QUEEN] * count_in<QUEEN>(sig);
    return std::min(phase, MAX_PHASE);
}

Score material_of(const EvalTerms& terms, u32 sig) {
    Score score;
    score += terms.pawn_value * count_in<PAWN>(sig);
    score += terms.knight_value * count_in<KNIGHT>(sig);
    score += terms.bishop_value * count_in<BISHOP>(sig);
    score += terms.rook_value * count_in<ROOK>(sig);
    score += terms.queen_value * count_in<QUEEN>(sig);
    if (count_in<BISHOP>(sig) >= 2) score += terms.bishop_pair;  // the bishop pair
    if ((sig & ~u32{15}) == SIG_UNIT[QUEEN]) score.en += LONE_QUEEN_EN;
    return score;
}

void set_up_material(EvalInfo& info) {
    const Position& p = info.position;
    for (const int color : {WHITE, BLACK}) {
        info.material[color] = material_of(info.terms, p.sig[color]);
        info.phase[color] = phase_of(p.sig[color]);
    }
    info.stage = FULL_STAGE - info.phase[WHITE] - info.phase[BLACK];
}

// The pawn entry of the position, from the cache while an iteration is under way.
void find_pawns(EvalState& state, EvalInfo& info, bool iterating) {
    PawnEntry& entry = state.pawn_hash[pawn_hash_index(info.position.pawn_key)];
    state.pawn_probes.add(1);
    if (iterating && entry.key == info.position.pawn_key) {
        state.pawn_hits.add(1);
    } else {
        fill_pawn_entry(info, entry);
    }
    info.pawns = &entry;
    for (const int color : {WHITE, BLACK}) info.positional[color] = entry.score[color];
}

template <int Color>
void set_up_color(EvalInfo& info) {
    constexpr int ENEMY = Color ^ 1;
    const auto& own = info.position.bb[Color];
    const auto& enemy = info.position.bb[ENEMY];
    const int king = king_square(info.position, Color);
    const Bitboard by_pawns = pawn_set_attacks<Color>(own[PAWN]);
    const Bitboard by_king = king_attacks[king];
    auto& maps = info.attacks[Color];
    maps[0] = by_pawns | by_king;
    maps[PAWN] = by_pawns;
    maps[KING] = by_king;
    info.double_attacks[Color] = by_pawns & by_king;
    info.king_zone[Color] = KING_ZONE[king];
    info.mobility_area[Color] = ~(pawn_set_attacks<ENEMY>(enemy[PAWN]) | own[PAWN] | own[KING]);
    info.outposts[Color] = OUTPOST_RANKS<Color> & ~info.pawns->span[ENEMY];
    info.blocked_pawns[Color] = own[PAWN] & shift_back<Color>(enemy[PAWN]);
    info.back_rank[Color] = ((enemy[PAWN] | enemy[KING]) &
                             (relative_rank_mask(Color, 6) | relative_rank_mask(Color, 7))) != 0;
}

void set_up_info(EvalInfo& info) {
    const Position& p = info.position;
    set_up_color<WHITE>(info);
    set_up_color<BLACK>(info);
    info.king_files =
        KING_FILES[file_of(king_square(p, WHITE))] | KING_FILES[file_of(king_square(p, BLACK))];
    const int pawns = pawn_count(p, WHITE) + pawn_count(p, BLACK);
    info.knight_pawn_bonus = 2 * std::max(pawns - 7, 0);
}

template <int Color>
void evaluate_obstructed_pawns(EvalInfo& info) {
    const Bitboard obstructed = info.position.bb[Color][PAWN] & shift_back<Color>(info.occupancy);
    const Bitboard at_home = obstructed & CENTRE_FILES & relative_rank_mask(Color, 1);
    info.positional[Color] += OBSTRUCTED_PAWN * popcount64(obstructed);
    info.positional[Color] += OBSTRUCTED_CENTRE_PAWN * popcount64(at_home);
}

// White's sum less Black's. A colour's sum is 16 bits wide.
Score difference(const Table<Score, 2>& sums) {
    return Score(to_pair(sums[WHITE])) - Score(to_pair(sums[BLACK]));
}

// White's view.
int blended_score(const EvalInfo& info) {
    return blend(difference(info.material) + difference(info.positional) * 154 / 128, info.stage);
}

// White's view: a bonus for the side at the root that grows with the material of the side that
// should avoid the draw.
int contempt_score(const EvalState& state, const Position& p) {
    const int contempt = state.tables.terms.contempt;
    if (contempt == 0 || !state.contempt_active) return 0;
    const int holder = contempt > 0 ? state.root_side : state.root_side ^ 1;
    const int material = std::min(2 * pawn_count(p, holder), 12) + std::max(p.npm[holder] - 3, 0);
    const int amount = contempt * material / 41;
    return state.root_side == WHITE ? amount : -amount;
}

void trace_result(const EvalInfo& info, double factor) {
    EvalTrace& trace = *info.trace;
    trace.stage = info.stage;
    trace.factor = factor;
    for (const int color : {WHITE, BLACK}) {
        trace_total(trace, color, TRACE_MATERIAL, blend(info.material[color], info.stage));
        trace_total(trace, color, TRACE_POSITIONAL, blend(info.positional[color], info.stage));
    }
}

}  // namespace

int evaluate(EvalState& state, const Position& p, EvalNotes& notes, const EvalCall& call) {
    assert(p.board[king_square(p, WHITE)] == make_piece(WHITE, KING));
    assert(p.board[king_square(p, BLACK)] == make_piece(BLACK, KING));
    if (call.in_check) return EVAL_IN_CHECK;

    int score = 0;
    if (material_shortcut(p, notes, call.trace, score)) return score;
    state.evaluations.add(1);

    const u64 key = full_key(p);
    EvalHashEntry& cached = state.eval_hash[eval_hash_index(key, p.side)];
    if (cached.key == key && call.ply >= 2 && call.iterating) {
        state.eval_hits.add(1);
        notes.threat = cached.threat;
        return cached.score;
    }

    EvalInfo info(p, state.tables, notes, call.trace);
    info.occupancy = occupied(p);
    set_up_material(info);
    find_pawns(state, info, call.iterating);
    set_up_info(info);
    evaluate_obstructed_pawns<WHITE>(info);
    evaluate_obstructed_pawns<BLACK>(info);
    evaluate_pieces(info);
    evaluate_kings(info);
    evaluate_passed(info);
    evaluate_candidates(info);
    evaluate_threats(info);
    evaluate_pins(info);
    info.positional[p.side] += TEMPO;

    score = blended_score(info) + contempt_score(state, p);
    if (p.side == BLACK) score = -score;
    const double factor = scale_factor(info, score);
    score = i16(int(score * factor));  // as the cache keeps it

    cached = {key, notes.threat, i16(score)};
    if (call.trace) trace_result(info, factor);
    return score;
}

}  // namespace quon
