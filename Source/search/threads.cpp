// The thread pool. Idle threads wait on their own `searching` flag; a thread that becomes idle
// wakes the main thread.

#include "search/threads.h"

#include <exception>
#include <memory>
#include <new>
#include <thread>

#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "platform/events.h"
#include "platform/topology.h"
#include "search/control.h"
#include "search/search.h"

namespace quon {

namespace {

struct SearchThread {
    std::thread worker;
    std::unique_ptr<ThreadData> data;
    std::atomic<int> started = 0;  // 1 the record is there, -1 there is no memory for it
};

SearchThread pool[MAX_THREADS];
int pool_size = 0;

void set_work(ThreadData& t, ThreadWork work) {
    t.searching.store(work, std::memory_order_release);
    t.searching.notify_all();
}

void place_on_node(int index) {
    const int node = numa_node_for(index);
    if (node < 0) return;
    if (const auto group = bind_thread_to_node(node)) {
        print_unlogged(format("thread %d, set group affinity to %d\n", index, *group));
    }
}

// The record is allocated by its own thread, on its own node.
ThreadData* create_record(int index) {
    ThreadData* t = new (std::nothrow) ThreadData();
    if (!t) return nullptr;
    t->position.owner = t;
    t->index = index;
    t->seed = u32(index) * 123;
    t->jitter_range = index < 8 ? 12 : 24;
    return t;
}

void search_thread_main(int index) {
    SearchThread& self = pool[index];
    if (options.numa) place_on_node(index);
    self.data.reset(create_record(index));
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
bool create_thread(int index) {
    SearchThread& thread = pool[index];
    thread.started = 0;
    try {
        thread.worker = std::thread(search_thread_main, index);
    } catch (const std::exception&) {
        return false;
    }
    ++pool_size;
    thread.started.wait(0);
    return thread.started == 1;
}

}  // namespace

ThreadData& thread_data(int index) { return *pool[index].data; }
int thread_total() { return pool_size; }

bool create_threads(int count) {
    for (int i = 0; i < count; ++i) {
        if (create_thread(i)) continue;
        destroy_threads();
        return false;
    }
    return true;
}

void destroy_threads() {
    control.stop_flag = EXIT_THREADS;
    wait_for_idle_threads();
    for (int i = 0; i < pool_size; ++i) {
        if (pool[i].data) set_work(*pool[i].data, LEAVE);
        pool[i].worker.join();
        pool[i].data.reset();
    }
    pool_size = 0;
}

void start_search_threads() {
    for (int i = 0; i < pool_size; ++i) thread_prepare(thread_data(i));
    for (int i = 0; i < pool_size; ++i) set_work(thread_data(i), SEARCHING);
}

int busy_threads() {
    int busy = 0;
    for (int i = 0; i < pool_size; ++i) {
        busy += pool[i].data && pool[i].data->searching.load(std::memory_order_acquire) != IDLE;
    }
    return busy;
}

void wait_for_idle_threads() {
    for (int i = 0; i < pool_size; ++i) {
        if (pool[i].data) pool[i].data->searching.wait(SEARCHING, std::memory_order_acquire);
    }
}

void search_in_main_thread(const std::function<bool()>& keep_on) {
    ThreadData& t = thread_data(0);
    thread_prepare(t);
    if (keep_on) {
        t.keep_on = &keep_on;
        schedule_look(t);
    }
    iterate(t);
}

int numa_node_for(int index) {
    const auto topology = read_topology();
    if (!topology) return -1;
    if (index == 0) {
        print_unlogged(format("nodes=%d, cores=%d, threads=%d\n", topology->nodes, topology->cores,
                              topology->logical));
    }
    const int per_node = topology->cores / topology->nodes;
    const int core_slots = per_node * topology->nodes;
    if (index < core_slots) return index / per_node;
    const int extra = index - core_slots;
    return extra < topology->logical - topology->cores ? extra % topology->nodes : -1;
}

}  // namespace quon
