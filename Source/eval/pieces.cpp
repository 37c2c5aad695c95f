// Piece activity: mobility, placement, outposts, files and trapped pieces.

#include "eval/terms.h"

#include "eval/eval_info.h"
#include "eval/eval_trace.h"

namespace quon {

namespace {

constexpr int STUCK_PIECE_OP = -20;  // a minor piece in the enemy half without a safe square
constexpr int KNIGHT_NEAR_KING = 6;
constexpr int BISHOP_CENTRE = 4;  // per square
constexpr Pair BISHOP_BLOCKED_PAWN = {-4, -8};
constexpr int BISHOP_OUTPOST_OP = 12;
constexpr int ROOK_FILE_AHEAD = 3;  // per square of its file in the enemy half
constexpr int QUEEN_FAR_FROM_KINGS = -8;
constexpr Bitboard CENTRE = 0x00003C3C3C3C0000;  // c3 to f6
constexpr int TRAPPED_ROOK_MOBILITY = 5;         // fewer squares than this

// Files on which an own pawn or king shuts in a rook on the file.
constexpr Table<Bitboard, 8> TRAPPING_FILES = [] {
    constexpr Bitboard left = file_mask(1) | file_mask(2);
    constexpr Bitboard right = file_mask(5) | file_mask(6);
    return Table<Bitboard, 8>{{left, left, 0, 0, 0, 0, right, right}};
}();

// One piece as its type's terms see it.
struct Piece {
    int square;
    Bitboard attacks;
    int mobility;
    bool near_king;  // it attacks the enemy king zone
};

// Walks the pieces of a type: `attacks_from` gives a square's attacks, `add_terms` what the type
// has beyond placement and mobility.
template <int Color, int Type, int N, typename Attacks, typename Terms>
void walk_pieces(EvalInfo& info, const Table<Pair, N>& mobility, Attacks attacks_from,
                 Terms add_terms) {
    constexpr int ENEMY = Color ^ 1;
    const auto& pst = info.tables.pst[Type];
    const Bitboard area = info.mobility_area[Color];
    const Bitboard zone = info.king_zone[ENEMY];
    Bitboard all = info.attacks[Color][0];
    Bitboard doubled = info.double_attacks[Color];
    Bitboard of_type = 0;
    int king_attackers = 0;
    Score sum;
    for (Bitboard left = info.position.bb[Color][Type]; left;) {
        Piece piece{};
        piece.square = pop_square(left);
        piece.attacks = attacks_from(piece.square);
        piece.mobility = popcount64(piece.attacks & area);
        piece.near_king = (piece.attacks & zone) != 0;
        king_attackers += piece.near_king;
        doubled |= all & piece.attacks;
        all |= piece.attacks;
        of_type |= piece.attacks;

        Score score;
        score += pst[relative_square(Color, piece.square)];
        score += mobility[piece.mobility];
        add_terms(score, piece);
        sum += score;
        if (info.trace) {
            trace_piece(*info.trace, Color, trace_term(Type), piece.square,
                        blend(score, info.stage));
        }
    }
    info.attacks[Color][0] = all;
    info.attacks[Color][Type] = of_type;
    info.double_attacks[Color] = doubled;
    info.king_attackers[ENEMY] += KING_ATTACKER_UNIT[Type] * king_attackers;
    info.positional[Color] += sum;
}

template <int Color>
bool is_stuck(const Piece& piece) {
    return piece.mobility == 0 && has(ENEMY_HALF<Color>, piece.square);
}

template <int Color>
void evaluate_knights(EvalInfo& info) {
    const Bitboard outposts = info.outposts[Color];
    const auto add_terms = [&](Score& score, const Piece& knight) {
        if (knight.near_king) score += KNIGHT_NEAR_KING;
        score.en += info.knight_pawn_bonus;
        const int outpost = info.terms.knight_outpost.op;
        if (has(outposts, knight.square)) {
            score.op += outpost;
            if (has(info.attacks[Color][PAWN], knight.square)) score.op += outpost / 2;
        } else if (knight.attacks & outposts) {
            score.op += outpost / 2;
        }
        if (is_stuck<Color>(knight)) score.op += STUCK_PIECE_OP;
    };
    walk_pieces<Color, KNIGHT>(
        info, info.tables.knight_mobility, [](int square) { return knight_attacks[square]; },
        add_terms);
}

template <int Color>
void evaluate_bishops(EvalInfo& info) {
    const Bitboard seen_through = info.occupancy & ~info.position.bb[Color][QUEEN];
    const auto add_terms = [&](Score& score, const Piece& bishop) {
        score += BISHOP_CENTRE * popcount64(bishop.attacks & CENTRE);
        if (has(info.outposts[Color], bishop.square)) score.op += BISHOP_OUTPOST_OP;
        const Bitboard squares = has(LIGHT_SQUARES, bishop.square) ? LIGHT_SQUARES : ~LIGHT_SQUARES;
        const int blocked = popcount64(info.blocked_pawns[Color] & squares);
        score += BISHOP_BLOCKED_PAWN * blocked;
        if (is_stuck<Color>(bishop)) score.op += STUCK_PIECE_OP;
    };
    walk_pieces<Color, BISHOP>(
        info, info.tables.bishop_mobility,
        [&](int square) { return bishop_attacks(square, seen_through); }, add_terms);
}

template <int Color>
void evaluate_rooks(EvalInfo& info) {
    constexpr int ENEMY = Color ^ 1;
    const EvalTerms& terms = info.terms;
    const auto& own = info.position.bb[Color];
    const Bitboard seen_through = info.occupancy & ~(own[ROOK] | own[QUEEN]);
    const auto add_terms = [&](Score& score, const Piece& rook) {
        const int file = file_of(rook.square);
        const Bitboard file_ahead = file_mask(file) & ENEMY_HALF<Color>;
        score += ROOK_FILE_AHEAD * popcount64(rook.attacks & file_ahead);
        if (!(info.pawns->files[Color] >> file & 1)) {
            const bool open = !(info.pawns->files[ENEMY] >> file & 1);
            score += open ? terms.rook_open_file : terms.rook_half_open_file;
        } else if (rook.mobility < TRAPPED_ROOK_MOBILITY &&
                   (TRAPPING_FILES[file] & rank_mask(rank_of(rook.square)) &
                    (own[PAWN] | own[KING]))) {
            score.op += terms.rook_trapped.op;
        }
        if (relative_rank(Color, rook.square) == 6 && info.back_rank[Color])
            score += terms.rook_rank7;
    };
    walk_pieces<Color, ROOK>(
        info, info.tables.rook_mobility,
        [&](int square) { return rook_attacks(square, seen_through); }, add_terms);
}

template <int Color>
void evaluate_queens(EvalInfo& info) {
    const auto& own = info.position.bb[Color];
    const Bitboard diagonal_view = info.occupancy & ~own[BISHOP];
    const Bitboard straight_view = info.occupancy & ~own[ROOK];
    const auto add_terms = [&](Score& score, const Piece& queen) {
        if (!(queen.attacks & info.king_files)) score += QUEEN_FAR_FROM_KINGS;
        if (relative_rank(Color, queen.square) == 6 && info.back_rank[Color]) {
            score.en += info.terms.queen_rank7.en;
        }
    };
    walk_pieces<Color, QUEEN>(
        info, info.tables.queen_mobility,
        [&](int square) {
            return bishop_attacks(square, diagonal_view) | rook_attacks(square, straight_view);
        },
        add_terms);
}

template <int Color>
void evaluate_color(EvalInfo& info) {
    evaluate_knights<Color>(info);
    evaluate_bishops<Color>(info);
    evaluate_rooks<Color>(info);
    evaluate_queens<Color>(info);
}

}  // namespace

void evaluate_pieces(EvalInfo& info) {
    evaluate_color<WHITE>(info);
    evaluate_color<BLACK>(info);
}

}  // namespace quon
