// The pawn walk.

#include "eval/terms.h"

#include "eval/eval_info.h"
#include "eval/eval_trace.h"

namespace quon {

namespace {

constexpr Bitboard adjacent_files(int square) {
    const Bitboard file = file_mask(file_of(square));
    return shift_east(file) | shift_west(file);
}

constexpr Table<Table<Bitboard, 64>, 2> make_passed_spans() {
    Table<Table<Bitboard, 64>, 2> spans{};
    for (int square = 0; square < 64; ++square) {
        const Bitboard row = bit(square) | shift_east(bit(square)) | shift_west(bit(square));
        spans[WHITE][square] = fill_forward<WHITE>(shift_forward<WHITE>(row));
        spans[BLACK][square] = fill_forward<BLACK>(shift_forward<BLACK>(row));
    }
    return spans;
}

}  // namespace

constinit const Table<Table<Bitboard, 64>, 2> passed_span = make_passed_spans();

namespace {

constexpr Table<int, 8> PHALANX_BONUS = {{0, 0, 0, 5, 13, 30, 30, 0}};  // by relative rank
// clang-format off
constexpr Table<int, 64> SUPPORT_BONUS = {{  // by relative square
    0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0,
    2, 2, 2, 2, 2, 2, 2, 2,
    2, 3, 4, 4, 4, 4, 3, 2,
    2, 4, 7, 7, 7, 7, 4, 2,
    2, 4, 7, 7, 7, 7, 4, 2,
    2, 4, 7, 7, 7, 7, 4, 2,
    0, 0, 0, 0, 0, 0, 0, 0,
}};
// clang-format on
constexpr int OUTPOST_PAWN_OP = 4;

// Squares strictly ahead of the pawns on their own files.
template <int Color>
Bitboard front_fill(Bitboard pawns) {
    return fill_forward<Color>(shift_forward<Color>(pawns));
}

// What the walk over one colour's pawns looks at.
struct PawnSets {
    Bitboard own;
    Bitboard enemy;
    Bitboard enemy_front;  // squares ahead of enemy pawns
    Bitboard own_attacks;
    Bitboard beside;  // squares with an own pawn on a neighbouring square of the rank
};

// Its helpers on the same rank are at least as many as the enemy pawns that guard its path.
template <int Color>
bool is_candidate(const PawnSets& sets, int square) {
    const Bitboard helpers = sets.own & (shift_east(bit(square)) | shift_west(bit(square)));
    const Bitboard guards =
        sets.enemy & adjacent_files(square) & passed_span[Color][square + forward(Color)];
    return popcount64(helpers) >= popcount64(guards);
}

template <int Color>
void walk_pawns(const EvalInfo& info, PawnEntry& entry, const PawnSets& sets) {
    const EvalTerms& terms = info.terms;
    const auto& pst = info.tables.pst[PAWN];
    const Bitboard outposts = OUTPOST_RANKS<Color> & ~entry.span[Color ^ 1] & ~entry.passed;
    Score sum;
    unsigned files = 0;
    for (Bitboard left = sets.own; left;) {
        const int square = pop_square(left);
        const int seen = relative_square(Color, square);
        const int rank = rank_of(seen);
        const Bitboard file = file_mask(file_of(square));
        const bool open_ahead = !has(sets.enemy_front, square);
        files |= 1U << file_of(square);

        Score score;
        score += pst[seen];
        if (more_than_one(sets.own & file)) score += terms.pawn_doubled;
        if (!has(entry.span[Color], square + forward(Color))) {
            if (rank < 4) score += terms.pawn_backward;
            if (!(sets.own & adjacent_files(square))) score += terms.pawn_isolated;
            if (open_ahead) score += terms.pawn_weak;
        }
        if (has(sets.beside, square)) score += PHALANX_BONUS[rank];
        if (has(sets.own_attacks, square)) score += SUPPORT_BONUS[seen];
        if (has(outposts, square)) score.op += OUTPOST_PAWN_OP;
        if (rank >= 3 && open_ahead && !has(entry.passed, square) &&
            is_candidate<Color>(sets, square)) {
            entry.candidates |= bit(square);
        }
        sum += score;
        if (info.trace)
            trace_piece(*info.trace, Color, TRACE_PAWNS, square, blend(score, info.stage));
    }
    entry.score[Color] = to_pair(sum);
    entry.files[Color] = u16(files);
}

}  // namespace

void fill_pawn_entry(const EvalInfo& info, PawnEntry& entry) {
    const Position& p = info.position;
    const Bitboard white = p.bb[WHITE][PAWN];
    const Bitboard black = p.bb[BLACK][PAWN];
    const Bitboard white_front = front_fill<WHITE>(white);
    const Bitboard black_front = front_fill<BLACK>(black);
    entry.key = p.pawn_key;
    entry.span[WHITE] = shift_east(white_front) | shift_west(white_front);
    entry.span[BLACK] = shift_east(black_front) | shift_west(black_front);
    entry.passed =
        (white & ~(black_front | entry.span[BLACK])) | (black & ~(white_front | entry.span[WHITE]));
    entry.candidates = 0;
    walk_pawns<WHITE>(info, entry,
                      {white, black, black_front, pawn_set_attacks<WHITE>(white),
                       shift_east(white) | shift_west(white)});
    walk_pawns<BLACK>(info, entry,
                      {black, white, white_front, pawn_set_attacks<BLACK>(black),
                       shift_east(black) | shift_west(black)});
}

}  // namespace quon
