#pragma once
// The flags through which the main thread and the search threads coordinate.

#include "board/types.h"
#include "support/relaxed.h"

namespace quon {

enum GoRequest : u8 { NO_SEARCH = 0, GO_PLAY = 1, GO_PONDER = 2, GO_ANALYSE = 3 };

enum StopFlag : u8 {
    RUN = 0,
    STOP = 1,           // stop and report
    ABORT = 2,          // stop, because the position or the game changes or time is up
    NO_LEGAL_MOVE = 3,  // nothing to search
    EXIT_THREADS = 99,
};

struct SearchControl {
    u8 go_request = NO_SEARCH;                // the search that the main loop starts next
    Relaxed<u8> search_mode = u8{NO_SEARCH};  // the request that started the running search
    Relaxed<u8> stop_flag = u8{RUN};
    bool quit_requested = false;
};

}  // namespace quon
