#include "platform/topology.h"

#include <gtest/gtest.h>

#include <thread>

namespace quon::test {
namespace {

TEST(Topology, IsPlausible) {
    const std::optional<Topology> topology = read_topology();
    if (!topology) GTEST_SKIP() << "this system does not tell";
    EXPECT_GE(topology->nodes, 1);
    EXPECT_GE(topology->cores, 1);
    EXPECT_GE(topology->logical, topology->cores);
    EXPECT_LE(topology->logical, 2 * topology->cores);
}

TEST(Topology, BindingToANode) {
    if (!read_topology()) GTEST_SKIP() << "this system does not tell";
    std::thread([] {
        EXPECT_FALSE(bind_thread_to_node(-1));
        EXPECT_FALSE(bind_thread_to_node(100000));
    }).join();
}

}  // namespace
}  // namespace quon::test
