#pragma once
// What tests of the search share: a table and threads for the life of a test, one-line searches,
// and slow but obvious judges of their results.

#include "harness/board_support.h"
#include "harness/engine.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "search/search.h"
#include "search/threads.h"

namespace quon::test {

struct SearchResult {
    int score = 0;
    int depth = 0;  // of the result, not of the last iteration
    u64 nodes = 0;  // of all threads
    std::vector<Move> line;
};

// Brings up a transposition table and idle search threads, silences all output, and lifts every
// limit; puts options, limits and parameters back and ends the threads at the end.
class SearchRig {
public:
    explicit SearchRig(int hash_mb = 1, int threads = 1);
    ~SearchRig();
    SearchRig(const SearchRig&) = delete;
    SearchRig& operator=(const SearchRig&) = delete;

    // From an empty table and a game without history.
    static SearchResult search(std::string_view fen, int depth);
    // From the game on the board and the table as they stand.
    static SearchResult search_game(int depth);

    // The same in pieces: `start` returns while several threads search.
    static void start(int depth);
    static SearchResult result();

private:
    EngineOptions saved_options;
    SearchSettings saved_settings;
    SearchLimits saved_limits;
    EvalParams saved_params;
};

// Sets the game on the board and plays the moves (coordinates) on it.
void set_game(std::string_view fen, std::string_view moves = "");

std::string line_text(const std::vector<Move>& line);

// Plays the line from the position: "" if every move is legal, else the text of the first that is
// not. With `mate` given, the last move must give checkmate.
std::string line_problem(std::string_view fen, const std::vector<Move>& line, bool mate = false);

// The first difference between the game on the board and a thread's copy of it, "" if there is
// none.
std::string copy_problem(const ThreadData& t);

}  // namespace quon::test
