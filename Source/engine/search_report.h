#pragma once
// How a search's reports look: info lines of UCI, table rows and statistics of console mode.

#include "search/listener.h"

namespace quon {

struct Engine;

// Prints what the search tells, once `output_delay` has passed.
struct SearchReporter : SearchListener {
    Engine& engine;  // that it listens to

    explicit SearchReporter(Engine& e) : engine(e) {}
    void on_start(Searcher& s) override;
    void on_line(Searcher& s, const SearchLine& line) override;
    void on_root_move(Searcher& s, int depth, Move move, int number) override;
    void on_lines_end(Searcher& s) override;
    void on_message(std::string_view text) override;
};

// The last info line of a search. Among several lines it stands where its move was last told.
void final_report(Engine& engine, int score);

// The closing lines of console mode.
void print_console_statistics(Engine& engine);

}  // namespace quon
