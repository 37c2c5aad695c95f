#pragma once
// What a search tells while it runs. Nobody has to listen.

#include "board/types.h"
#include "search/run.h"

#include <string_view>

namespace quon {

struct Searcher;

enum class LineKind {
    RESULT,     // the result board has changed
    BOUND,      // a move that fails high or low is being resolved
    ITERATION,  // one of an iteration's root searches has ended
};

struct SearchLine {
    LineKind kind;
    int thread;
    int pv_index;  // from 0; -1 without a place among several lines
    int depth;     // plies
    int score;     // centipawns for the side to move
    const Line& moves;
};

// on_start is called by the main thread, all others by search threads.
struct SearchListener {
    virtual ~SearchListener() = default;
    // The target time is set; nothing is searched yet.
    virtual void on_start(Searcher&) {}
    virtual void on_line(Searcher&, const SearchLine&) {}
    // The main search thread turns to a root move, number 1 for the first one of an iteration.
    virtual void on_root_move(Searcher&, int /*depth*/, Move, int /*number*/) {}
    // Every line of an iteration has been searched.
    virtual void on_lines_end(Searcher&) {}
    virtual void on_message(std::string_view) {}
};

}  // namespace quon
