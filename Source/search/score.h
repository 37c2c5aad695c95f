#pragma once
// The vocabulary of scores: centipawns from the side to move's view. The root is ply 1; being mated
// at ply p is p - MATE, mating at ply p is MATE - p.

namespace quon {

constexpr int MATE = 10000;
constexpr int WIN_SCORE = 9697;  // this and above: a mate
constexpr int CERTAIN_MATE =
    9900;                        // this and above: reported as a mate, replaced by faster ones only
constexpr int NO_SCORE = -MATE;  // "no move searched yet"
constexpr int DRAW_SCORE = 0;

constexpr int mated_in(int ply) { return ply - MATE; }
constexpr int mate_in(int ply) { return MATE - ply; }
constexpr bool is_win(int score) { return score >= WIN_SCORE; }
// Strictly below: -9697 itself is no mate, although 9697 is one.
constexpr bool is_loss(int score) { return score < -WIN_SCORE; }

// Mate scores count from the root in the search and from the node in the table.
constexpr int score_to_table(int score, int ply) {
    return is_win(score) ? score + ply : is_loss(score) ? score - ply : score;
}
constexpr int score_from_table(int score, int ply) {
    return is_win(score) ? score - ply : is_loss(score) ? score + ply : score;
}

}  // namespace quon
