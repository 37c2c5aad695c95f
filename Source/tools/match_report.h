#pragma once
// What a self-play match tells about its games: the running score and the record of each game.
// Tested in tests/tools/match_test.cpp.

#include <string>
#include <vector>

#include "board/types.h"
#include "engine/engine.h"

namespace quon {

enum class Outcome : u8 { OPEN, WHITE_WINS, BLACK_WINS, DRAW };

// From player 1's side.
struct MatchScore {
    int wins = 0;
    int losses = 0;
    int draws = 0;
};
void count_game(MatchScore& score, Outcome outcome, int first_player_color);
// Games, wins, losses, draws, the share of the points and its margin, about three standard
// deviations; a '*' when more than 200 games were played and the players differ by more than that.
std::string statistics_line(const MatchScore& score);

// One search of a game. The last one's move is not made on the board.
struct SearchedMove {
    Move move;  // NO_MOVE, written "a1a1", when the game ended without one
    int score;  // centipawns, mover's view
    int depth;  // plies
};
struct MatchGame {
    int number;  // from 1
    int first_player_color;
    Outcome outcome = Outcome::OPEN;
    std::vector<SearchedMove> moves;
};
// The game with its headings, as the match file holds it.
std::string game_text(const MatchGame& game);

}  // namespace quon
