#pragma once
// One search as the front end sees it: started, stopped, reported. Main thread only.

#include "search/control.h"

#include "engine/engine.h"

namespace quon {

// Starts the search that control.go_request asks for. A position that cannot be searched starts
// nothing: its report then says "bestmove null".
void start_search(Engine& engine);

// No thread is searching and the report is due; that of a pondering search is not.
bool report_due(Engine& engine);
// The closing info line and "bestmove", or the statistics of console mode. In self-play the move
// is then made and the next search requested; without a move self-play ends.
void report_search(Engine& engine);

// Stops the search with the flag, if one is running, and waits until all threads are idle. One that
// was pondering becomes due for its report.
void stop_search(Engine& engine, StopFlag flag);

// Stops and reports a search before something that it uses is replaced.
void finish_search(Engine& engine, StopFlag flag = STOP);

// False, with a message, if the game position cannot be searched.
bool position_accepted(Engine& engine);

}  // namespace quon
