#pragma once
// The search threads. All functions but the thread body belong to the main thread.

#include "search/thread_data.h"

namespace quon {

// The thread table; entries 0 .. thread_total() - 1 are set.
ThreadData& thread_data(int index);
int thread_total();

// Creates `count` (1..80) idle threads with zeroed records; false if the system refuses one.
[[nodiscard]] bool create_threads(int count);
// Stops any search and ends all threads.
void destroy_threads();

// Hands the game position to every thread and starts them.
void start_search_threads();
int busy_threads();
// Blocks until no thread is searching; the caller has set the stop flag or knows that they end.
void wait_for_idle_threads();
// Searches the game position on the calling thread with the record of thread 0, which is idle.
// Every few ms `keep_on` is asked, if given; false aborts the search.
void search_in_main_thread(const std::function<bool()>& keep_on = {});

// Node of the search thread by the placement slots: first cores / nodes slots of each node, then
// the additional hardware threads in turn. -1 beyond the table or without topology.
int numa_node_for(int index);

}  // namespace quon
