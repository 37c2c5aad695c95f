#pragma once
// Games as the PGN scanner reads them: a list of move texts with the scores of their comments, and
// the result. Nothing is replayed here. Bounded memory, whatever the text is.

#include <string>
#include <string_view>
#include <vector>

#include "board/types.h"
#include "pgn/pgn_reader.h"

namespace quon {

// Scores are centipawns as seen by the side that made the move. Below LEAST_SCORE a move has none.
constexpr int LEAST_SCORE = -9999;
constexpr i16 FIRST_UNSCORED = -10000;  // first move of a game, no comment
constexpr i16 UNSCORED = -30000;        // a later one
constexpr i16 UNREADABLE_SCORE = -29999;

constexpr std::size_t MAX_SCAN_MOVES = 800;  // of one game; what follows is passed over

struct ScanMove {
    std::string text;  // as the token has it
    i16 score;
};

enum class GameResult : u8 { WHITE_WINS = 0, BLACK_WINS = 1, DRAW = 2 };

struct GameReader {
    PgnReader pgn{&SCANNED_GAMES};
    std::vector<ScanMove> moves = {};
    GameResult result = GameResult::DRAW;  // stays from game to game until a tag changes it
    int games = 0;                         // "Event" tags so far
    bool cut = false;                      // the game had more moves than MAX_SCAN_MOVES
    std::string comment = {};              // since the last move
};

// Takes from a tag line what the scanner needs.
void read_tag(GameReader& reader, std::string_view line);
// Appends the moves and scores of a piece that has no tags.
void read_move_text(GameReader& reader, const LinePiece& piece);
// Forgets the moves: the next game begins.
void next_game(GameReader& reader);

// The score that a comment gives to a move of the side (WHITE or BLACK): 0 for "book"; the number
// behind "eval ", which is White's view; the number of pawns, or the mate, in front of a "/", which
// is the mover's view; else UNREADABLE_SCORE.
i16 comment_score(std::string_view comment, int mover);

}  // namespace quon
