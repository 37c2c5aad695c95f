#pragma once
// A search instance: all that it owns and shares among its threads. Two of them in one process know
// nothing of each other.

#include "board/position.h"
#include "eval/eval_tables.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/listener.h"
#include "search/run.h"
#include "search/search_params.h"
#include "search/search_trace.h"
#include "search/settings.h"
#include "search/stats.h"
#include "search/thread_data.h"
#include "search/threads.h"

namespace quon {

struct Searcher {
    SearchSettings settings;
    SearchLimits limits;  // of the next search
    // The search reads its own fields: they change only while none is running. What is derived from
    // the parameters is rebuilt only then, too.
    EvalParams params;
    EvalTables eval_tables;
    SearchParams search_params;

    Game game;  // what the front end sets up and every search starts from
    SearchControl control;
    SearchRun run;
    MainHash hash;
    SearchTotals totals;
    SearchTrace trace;
    SearchListener* listener = nullptr;
    ThreadPool pool;  // last: its threads use all of the above

    Searcher() = default;
    Searcher(const Searcher&) = delete;
    Searcher& operator=(const Searcher&) = delete;
    ~Searcher() { destroy_threads(*this); }
};

// Makes all that derives from the parameters anew.
inline void derive_tables(Searcher& s) {
    init_eval_tables(s.eval_tables, s.params);
    apply_search_params(s.search_params, s.params);
}

inline bool stopped(const Searcher& s) { return s.control.stop_flag != RUN; }
inline bool stopped(const ThreadData& t) { return stopped(*t.shared); }

}  // namespace quon
