// The thread pool. Idle threads wait on their own `searching` flag; a thread that becomes idle
// wakes the main thread.

#include "search/threads.h"

#include <exception>
#include <functional>
#include <new>
#include <string>

#include "platform/events.h"
#include "platform/memory.h"
#include "search/search.h"
#include "search/searcher.h"
#include "support/text.h"

namespace quon {

namespace {

void set_work(ThreadData& t, ThreadWork work) {
    t.searching.store(work, std::memory_order_release);
    t.searching.notify_all();
}

void tell(const Searcher& s, const std::string& message) {
    if (s.listener) s.listener->on_message(message);
}

void place_on_node(const Searcher& s, int index) {
    const auto topology = read_topology();
    if (!topology) return;
    if (index == 0) {
        tell(s, format("nodes=%d, cores=%d, threads=%d\n", topology->nodes, topology->cores,
                       topology->logical));
    }
    const int node = numa_node_for(*topology, index);
    if (node < 0) return;
    if (const auto group = bind_thread_to_node(node)) {
        tell(s, format("thread %d, set group affinity to %d\n", index, *group));
    }
}

// The record is allocated by its own thread, on its own node.
ThreadData* create_record(Searcher& s, int index) {
    void* block = allocate_pages(sizeof(ThreadData));
    if (!block) return nullptr;
    ThreadData* t = new (block) ThreadData();
    t->shared = &s;
    t->index = index;
    t->seed = u32(index) * 123;
    t->jitter_range = index < 8 ? 12 : 24;
    return t;
}

void search_thread_main(Searcher& s, int index) {
    SearchThread& self = s.pool.threads[index];
    if (s.settings.numa) place_on_node(s, index);
    self.data.reset(create_record(s, index));
    self.started = self.data ? 1 : -1;
    self.started.notify_all();
    if (!self.data) return;

    ThreadData& t = *self.data;
    while (true) {
        t.searching.wait(IDLE, std::memory_order_acquire);
        if (t.searching.load(std::memory_order_acquire) == LEAVE) return;
        if (index == 0) {
            iterate(t);
        } else {
            iterate_worker(t);
        }
        set_work(t, IDLE);
        wake_main_thread();
    }
}

// Threads are created one after another, so that what they print comes in order.
bool create_thread(Searcher& s, int index) {
    SearchThread& thread = s.pool.threads[index];
    thread.started = 0;
    try {
        thread.worker = std::thread(search_thread_main, std::ref(s), index);
    } catch (const std::exception&) {
        return false;
    }
    ++s.pool.size;
    thread.started.wait(0);
    return thread.started == 1;
}

}  // namespace

void ReleaseRecord::operator()(ThreadData* t) const {
    t->~ThreadData();
    release_pages(t, sizeof(ThreadData));
}

ThreadData& thread_data(const Searcher& s, int index) { return *s.pool.threads[index].data; }
int thread_total(const Searcher& s) { return s.pool.size; }

bool create_threads(Searcher& s, int count) {
    for (int i = 0; i < count; ++i) {
        if (create_thread(s, i)) continue;
        destroy_threads(s);
        return false;
    }
    return true;
}

void destroy_threads(Searcher& s) {
    s.control.stop_flag = EXIT_THREADS;
    wait_for_idle_threads(s);
    for (int i = 0; i < s.pool.size; ++i) {
        SearchThread& thread = s.pool.threads[i];
        if (thread.data) set_work(*thread.data, LEAVE);
        thread.worker.join();
        thread.data.reset();
    }
    s.pool.size = 0;
}

void start_search_threads(Searcher& s) {
    for (int i = 0; i < s.pool.size; ++i) thread_prepare(thread_data(s, i));
    for (int i = 0; i < s.pool.size; ++i) set_work(thread_data(s, i), SEARCHING);
}

int busy_threads(const Searcher& s) {
    int busy = 0;
    for (int i = 0; i < s.pool.size; ++i) {
        const auto& data = s.pool.threads[i].data;
        busy += data && data->searching.load(std::memory_order_acquire) != IDLE;
    }
    return busy;
}

void wait_for_idle_threads(const Searcher& s) {
    for (int i = 0; i < s.pool.size; ++i) {
        const auto& data = s.pool.threads[i].data;
        if (data) data->searching.wait(SEARCHING, std::memory_order_acquire);
    }
}

void search_in_main_thread(Searcher& s, const std::function<bool()>& keep_on) {
    ThreadData& t = thread_data(s, 0);
    thread_prepare(t);
    if (keep_on) {
        t.keep_on = &keep_on;
        schedule_look(t);
    }
    iterate(t);
}

int numa_node_for(const Topology& topology, int index) {
    const int per_node = topology.cores / topology.nodes;
    const int core_slots = per_node * topology.nodes;
    if (index < core_slots) return index / per_node;
    const int extra = index - core_slots;
    return extra < topology.logical - topology.cores ? extra % topology.nodes : -1;
}

}  // namespace quon
