// The running search and the game on the board.

#include "search/run.h"

namespace quon {

SearchRun run;
Game game;

}  // namespace quon
