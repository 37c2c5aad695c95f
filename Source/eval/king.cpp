// King safety counts attack units: attackers of the king zone, pressure on its squares, safe
// checks, a torn pawn shield. Their sum indexes the KingDanger table.

#include "eval/terms.h"

#include <algorithm>
#include <bit>

#include "eval/eval_info.h"
#include "eval/eval_trace.h"

namespace quon {

namespace {

constexpr int SAFETY_PHASE = 4;   // enemy pieces below this endanger no king
constexpr int ENDING_STAGE = 14;  // beyond it the king's own activity counts

constexpr Table<int, 8> SHIELD_CENTRE = {{1, 1, 2, 3, 4, 5, 6, 6}};  // by king file
constexpr int FULL_SHIELD = 9;
constexpr int SHIELD_DIVISOR = 10;
constexpr int SAFE_CHECK = -8;
constexpr int CONTACT_CHECK_OP = 12;
constexpr int CONTACT_CHECK_THREAT = 5000;

// Attack units.
constexpr Table<int, 7> ATTACKER_UNITS = {{0, 0, 36, 26, 46, 46, 0}};
constexpr int CHECK_UNITS = 32;
constexpr int ZONE_UNITS = 16;
constexpr int STORM_UNITS = 6;
constexpr int SHIELD_UNITS = 8;
constexpr int FAR_QUEEN_CHECK_UNITS = 17;  // safe check of a queen that is not at the zone
constexpr int NO_QUEEN_CHECK_UNITS = 15;
constexpr int FAR_PIECE_CHECK_UNITS = 32;
constexpr int UNITS_PER_ENTRY = 8;
constexpr int OWN_MOVE_ENTRIES = 2;

constexpr Table<int, 8> KING_RANK_BONUS = {{0, 0, 4, 8, 8, 8, 4, 0}};  // ending, by relative rank
constexpr int NO_INNER_MOVE_EN = -10;
constexpr int OUTSIDE_PAWNS_EN = -10;  // per file
constexpr Bitboard INNER_SQUARES = CENTRAL_FILES & ~(RANK_1 | RANK_8);

// Castled corners are no reason to worry.
constexpr int exposed(int relative) {
    return relative == A1 || relative == B1 || relative == G1 || relative == H1 ? 0 : 1;
}

// 3, 2 or 1 for the hindmost guard of each shield file, 1 for a pawn next to the king: 0..10.
template <int Color>
int shield_strength(Bitboard own_pawns, int king, int centre) {
    int strength = king_attacks[king] & own_pawns ? 1 : 0;
    for (int file = centre - 1; file <= centre + 1; ++file) {
        const Bitboard guards = own_pawns & file_mask(file);
        if (!guards) continue;
        if (guards & relative_rank_mask(Color, 1)) {
            strength += 3;
        } else {
            strength += guards & relative_rank_mask(Color, 2) ? 2 : 1;
        }
    }
    return strength;
}

// Shield files on which the enemy's pawn has left its half, or is gone.
template <int Color>
int stormed_files(Bitboard enemy_pawns, int centre) {
    int files = 0;
    for (int file = centre - 1; file <= centre + 1; ++file) {
        if (!(enemy_pawns & file_mask(file) & ENEMY_HALF<Color>)) ++files;
    }
    return files;
}

// What the attacker can do around the king.
struct Pressure {
    int zone;  // squares of the king zone, counted once for each way in which they are weak
    bool knight_check;
    bool bishop_check;
    bool rook_check;
    bool queen_check;
    bool contact;  // safe queen check on a square next to the king

    [[nodiscard]] int checks() const {
        return knight_check + bishop_check + rook_check + queen_check;
    }
};

template <int Color>
Pressure measure_pressure(const EvalInfo& info, int king) {
    constexpr int ENEMY = Color ^ 1;
    const auto& attacks = info.attacks[ENEMY];
    const auto& own = info.attacks[Color];
    const Bitboard doubled = info.double_attacks[ENEMY];
    const Bitboard zone = info.king_zone[Color];
    const Bitboard minor_guarded = own[PAWN] | own[KNIGHT] | own[BISHOP];
    const Bitboard guarded = minor_guarded | own[ROOK] | own[QUEEN];

    Pressure pressure{};
    pressure.zone = popcount64(zone & attacks[0]) + popcount64(zone & doubled) +
                    popcount64(zone & attacks[KNIGHT] & ~own[PAWN]) +
                    popcount64(zone & attacks[BISHOP] & ~own[PAWN]) +
                    popcount64(zone & attacks[ROOK] & ~minor_guarded) +
                    popcount64(zone & attacks[QUEEN] & ~guarded);

    const Bitboard ring = king_attacks[king];
    const Bitboard safe = ~(guarded | info.position.bb[ENEMY][0] | (ring & ~doubled));
    const Bitboard diagonal = safe & diag_lines[king];
    const Bitboard straight = safe & orth_lines[king];
    pressure.knight_check = (attacks[KNIGHT] & knight_attacks[king] & safe) != 0;
    pressure.bishop_check = (attacks[BISHOP] & diagonal) != 0;
    pressure.rook_check = (attacks[ROOK] & straight) != 0;
    pressure.queen_check = (attacks[QUEEN] & (diagonal | straight)) != 0;
    pressure.contact = (attacks[QUEEN] & ring & safe) != 0;
    return pressure;
}

template <int Color>
void add_king_safety(EvalInfo& info, int king, Score& score) {
    constexpr int ENEMY = Color ^ 1;
    const Position& p = info.position;
    const EvalTerms& terms = info.terms;
    const int centre = SHIELD_CENTRE[file_of(king)];

    const int shield = shield_strength<Color>(p.bb[Color][PAWN], king, centre);
    score.op += terms.pawn_shield.op * (shield - FULL_SHIELD) / SHIELD_DIVISOR;

    int storm = 2 * exposed(relative_square(Color, king));
    const int apart = centre - file_of(king_square(p, ENEMY));
    if (apart > 2 || apart < -2) {
        const int files = stormed_files<Color>(p.bb[ENEMY][PAWN], centre);
        score.op += terms.pawn_storm.op * files;
        storm += files;
    }

    const Pressure pressure = measure_pressure<Color>(info, king);
    score += SAFE_CHECK * pressure.checks();
    if (pressure.contact) {
        info.notes.threat[Color] = CONTACT_CHECK_THREAT;
        score.op += CONTACT_CHECK_OP;
    }

    const int packed = info.king_attackers[Color];
    const int knights = attackers_in(packed, KNIGHT);
    const int bishops = attackers_in(packed, BISHOP);
    const int rooks = attackers_in(packed, ROOK);
    const int queens = attackers_in(packed, QUEEN);
    int units = ATTACKER_UNITS[KNIGHT] * knights + ATTACKER_UNITS[BISHOP] * bishops +
                ATTACKER_UNITS[ROOK] * rooks + ATTACKER_UNITS[QUEEN] * queens;
    units += CHECK_UNITS * (pressure.checks() + pressure.contact);
    units += ZONE_UNITS * pressure.zone + STORM_UNITS * storm - SHIELD_UNITS * shield;
    units += pressure.queen_check && queens == 0 ? FAR_QUEEN_CHECK_UNITS : -NO_QUEEN_CHECK_UNITS;
    if (pressure.rook_check && rooks == 0) units += FAR_PIECE_CHECK_UNITS;
    if (pressure.knight_check && knights == 0) units += FAR_PIECE_CHECK_UNITS;

    const int entry = units / UNITS_PER_ENTRY - (p.side == Color ? OWN_MOVE_ENTRIES : 0);
    if (entry > 0) score.op -= info.tables.KingDanger[std::min(entry, 63)];
}

template <int Color>
int king_ending(const EvalInfo& info, int king) {
    int en = KING_RANK_BONUS[relative_rank(Color, king)];
    const Bitboard moves =
        king_attacks[king] & ~info.occupancy & ~info.attacks[Color ^ 1][0] & INNER_SQUARES;
    if (!moves) en += NO_INNER_MOVE_EN;
    const int files = info.pawns->files[WHITE] | info.pawns->files[BLACK];
    if (files) {
        const int below = std::countr_zero(unsigned(files)) - file_of(king);
        const int above = file_of(king) - int(std::bit_width(unsigned(files))) + 1;
        en += OUTSIDE_PAWNS_EN * std::max({below, above, 0});
    }
    return en;
}

template <int Color>
void evaluate_king(EvalInfo& info) {
    constexpr int ENEMY = Color ^ 1;
    const int king = king_square(info.position, Color);
    Score score;
    score += info.tables.pst[KING][relative_square(Color, king)];
    if (info.phase[ENEMY] >= SAFETY_PHASE) add_king_safety<Color>(info, king, score);
    if (!info.position.bb[ENEMY][QUEEN]) score.op /= 2;
    if (info.stage > ENDING_STAGE) score.en += king_ending<Color>(info, king);
    info.positional[Color] += score;
    if (info.trace) trace_piece(*info.trace, Color, TRACE_KINGS, king, blend(score, info.stage));
}

}  // namespace

void evaluate_kings(EvalInfo& info) {
    evaluate_king<WHITE>(info);
    evaluate_king<BLACK>(info);
}

}  // namespace quon
