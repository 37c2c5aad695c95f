// Processor topology as Linux tells it under /sys. Other systems tell nothing.

#include "platform/topology.h"

#include <pthread.h>
#include <sched.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace quon {

namespace {

constexpr char CPU_DIRECTORY[] = "/sys/devices/system/cpu/";
constexpr char NODE_DIRECTORY[] = "/sys/devices/system/node/";

// A list such as "0-3,8,10-11"; empty when the file is missing.
std::vector<int> read_list(const std::string& path) {
    std::vector<int> numbers;
    std::ifstream file(path);
    std::string range;
    while (std::getline(file, range, ',')) {
        std::istringstream text(range);
        int first = 0;
        int last = 0;
        char dash = 0;
        if (!(text >> first)) continue;
        if (!(text >> dash >> last)) last = first;
        for (int number = first; number <= last; ++number) numbers.push_back(number);
    }
    return numbers;
}

// Nodes that have processors.
std::vector<int> node_numbers() { return read_list(std::string(NODE_DIRECTORY) + "has_cpu"); }

}  // namespace

std::optional<Topology> read_topology() {
    std::set<std::vector<int>> cores;
    for (const int cpu : read_list(std::string(CPU_DIRECTORY) + "online")) {
        const std::vector<int> siblings = read_list(CPU_DIRECTORY + ("cpu" + std::to_string(cpu)) +
                                                    "/topology/thread_siblings_list");
        if (!siblings.empty()) cores.insert(siblings);
    }
    if (cores.empty()) return std::nullopt;
    int logical = 0;
    for (const std::vector<int>& siblings : cores) logical += siblings.size() > 1 ? 2 : 1;
    const std::size_t nodes = node_numbers().size();
    return Topology{nodes == 0 ? 1 : int(nodes), int(cores.size()), logical};
}

std::optional<int> bind_thread_to_node(int node) {
#if defined(__linux__)
    const std::vector<int> numbers = node_numbers();
    if (node < 0 || std::size_t(node) >= numbers.size()) return std::nullopt;
    const std::string directory = "node" + std::to_string(numbers[std::size_t(node)]);
    cpu_set_t set;
    CPU_ZERO(&set);
    for (const int cpu : read_list(NODE_DIRECTORY + directory + "/cpulist")) {
        if (cpu < CPU_SETSIZE) CPU_SET(cpu, &set);
    }
    if (pthread_setaffinity_np(pthread_self(), sizeof set, &set) != 0) return std::nullopt;
    return 0;
#else
    static_cast<void>(node);
    return std::nullopt;
#endif
}

}  // namespace quon
