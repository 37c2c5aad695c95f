#pragma once
// Processor topology, and binding threads to NUMA nodes.

#include <optional>

namespace quon {

struct Topology {
    int nodes;    // NUMA nodes
    int cores;    // physical cores
    int logical;  // hardware threads: two per core with simultaneous multithreading
};
// Nothing where the system does not tell.
std::optional<Topology> read_topology();

// Binds the calling thread to the processors of a node; returns the processor group (0 where the
// system has no groups), nothing on failure.
std::optional<int> bind_thread_to_node(int node);

}  // namespace quon
