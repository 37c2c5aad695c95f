#pragma once
// The benchmark: a fixed set of positions, to compare builds and machines.

namespace quon {

struct Engine;

constexpr int BENCH_POSITIONS = 20;
extern const char* const bench_positions[BENCH_POSITIONS];

// Searches the first 10 (variant 1) or all 20 positions (variant 2), each from an empty hash table,
// to depth 17 or the depth asked for, and prints times and the node rate. With single_thread the
// main thread searches, always to depth 17. Commands that come meanwhile go to on_input, which is
// called again and again. Ends with quit_requested set.
void run_bench(Engine& engine, int variant, bool single_thread, void (*on_input)(Engine&));

}  // namespace quon
