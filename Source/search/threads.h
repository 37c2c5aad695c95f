#pragma once
// The search threads. All functions but the thread body belong to the main thread.

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "platform/topology.h"
#include "search/settings.h"
#include "search/thread_data.h"

namespace quon {

// Records lie on large pages: a node reads all over its thread's.
struct ReleaseRecord {
    void operator()(ThreadData* t) const;
};

struct SearchThread {
    std::thread worker;
    std::unique_ptr<ThreadData, ReleaseRecord> data;
    std::atomic<int> started = 0;  // 1 the record is there, -1 there is no memory for it
};

struct ThreadPool {
    Table<SearchThread, MAX_THREADS> threads;
    int size = 0;
};

// The thread table; entries 0 .. thread_total() - 1 are set.
ThreadData& thread_data(const Searcher& s, int index);
int thread_total(const Searcher& s);

// Creates `count` (1..80) idle threads with zeroed records; false if the system refuses one.
[[nodiscard]] bool create_threads(Searcher& s, int count);
// Stops any search and ends all threads.
void destroy_threads(Searcher& s);

// Hands the game position to every thread and starts them.
void start_search_threads(Searcher& s);
int busy_threads(const Searcher& s);
// Blocks until no thread is searching; the caller has set the stop flag or knows that they end.
void wait_for_idle_threads(const Searcher& s);
// Searches the game position on the calling thread with the record of thread 0, which is idle.
// Every few ms `keep_on` is asked, if given; false aborts the search.
void search_in_main_thread(Searcher& s, const std::function<bool()>& keep_on = {});

// Node of the search thread by the placement slots: first cores / nodes slots of each node, then
// the additional hardware threads in turn. -1 beyond the table.
int numa_node_for(const Topology& topology, int index);

}  // namespace quon
