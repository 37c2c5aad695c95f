#include "search/control.h"

#include "search/run.h"

namespace quon {

SearchControl control;
SearchRun run;
Game game;

}  // namespace quon
