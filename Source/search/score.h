#pragma once
// The ladder of scores: centipawns from the side to move's view. The root is ply 1.
//
//   10000 - ply    mate at that ply (mate_in)
//    9900          CERTAIN_MATE: from here on reported as a mate, replaced by faster ones only
//    9898          LAST_OPEN_SCORE: up to here a deeper result replaces any other
//    9800          TB_SHOWN_SCORE: what a reader sees of a root that the tablebases know as won
//    9799 - ply    TB_WIN_SCORE: won by the tablebases
//    9697          WIN_SCORE: from here on somebody wins: no pruning relies on such a score
//       .          evaluations
//       0          DRAW_SCORE: draws, drawn by the tablebases included
//       .          evaluations
//   -9698          is_loss: -9697 itself is none, although 9697 is a win
//   -9800 + ply    TB_LOSS_SCORE: lost by the tablebases
//   ply - 10000    mated at that ply (mated_in)
//  -10000          NO_SCORE: no move searched yet

namespace quon {

constexpr int MATE = 10000;
constexpr int CERTAIN_MATE = 9900;
constexpr int LAST_OPEN_SCORE = 9898;
constexpr int TB_SHOWN_SCORE = 9800;
constexpr int TB_WIN_SCORE = 9799;
constexpr int TB_LOSS_SCORE = -9800;
constexpr int WIN_SCORE = 9697;
constexpr int DRAW_SCORE = 0;
constexpr int NO_SCORE = -MATE;

static_assert(MATE > CERTAIN_MATE && CERTAIN_MATE > LAST_OPEN_SCORE &&
              LAST_OPEN_SCORE > TB_SHOWN_SCORE && TB_SHOWN_SCORE > TB_WIN_SCORE &&
              TB_WIN_SCORE > WIN_SCORE && WIN_SCORE > DRAW_SCORE);
static_assert(DRAW_SCORE > -WIN_SCORE && -WIN_SCORE > TB_LOSS_SCORE &&
              TB_LOSS_SCORE > -CERTAIN_MATE && -CERTAIN_MATE > NO_SCORE);

constexpr int mated_in(int ply) { return ply - MATE; }
constexpr int mate_in(int ply) { return MATE - ply; }
constexpr bool is_win(int score) { return score >= WIN_SCORE; }
constexpr bool is_loss(int score) { return score < -WIN_SCORE; }

// Decided scores count from the root in the search and from the node in the transposition table.
constexpr int score_to_tt(int score, int ply) {
    return is_win(score) ? score + ply : is_loss(score) ? score - ply : score;
}
constexpr int score_from_tt(int score, int ply) {
    return is_win(score) ? score - ply : is_loss(score) ? score + ply : score;
}

}  // namespace quon
