// Waiting for events, full pipes, files as memory, the machine's processors.

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "harness/files.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/file_map.h"
#include "platform/standard_output.h"
#include "platform/topology.h"

namespace quon::test {
namespace {

TEST(Events, ACallEndsOneWait) {
    init_events();
    // A call before the wait is not lost; many calls are one.
    for (int i = 0; i < 100000; ++i) wake_main_thread();
    wait_for_event(-1, false);
    for (int calls = 0; calls < 3000; ++calls) wait_for_event(0, false);
    const double start = monotonic_seconds();
    wait_for_event(30, false);
    EXPECT_GE(monotonic_seconds() - start, 0.029);

    std::thread caller([] {
        sleep_ms(20);
        wake_main_thread();
    });
    wait_for_event(-1, false);
    caller.join();
}

TEST(StandardOutput, NeverBlocks) {
    init_events();
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int before = dup(STDOUT_FILENO);
    dup2(ends[1], STDOUT_FILENO);
    close(ends[1]);
    const std::string text(1 << 22, 'x');
    std::string_view left = text;
    const OutputState full = offer_output(left);
    const std::size_t unread = std::size_t(unread_output());
    close(ends[0]);
    std::string_view rest = left;
    const OutputState lost = offer_output(rest);
    dup2(before, STDOUT_FILENO);
    close(before);
    EXPECT_EQ(full, OutputState::OPEN);
    EXPECT_GT(unread, 0U);
    EXPECT_EQ(unread, text.size() - left.size());
    EXPECT_EQ(lost, OutputState::LOST);
    EXPECT_EQ(rest.size(), left.size());
}

TEST(FileMap, HoldsTheWholeFileOrNothing) {
    const Directory directory;
    std::string content;
    for (int i = 0; i < 100000; ++i) content += char(i * 7);
    directory.write("data", content);
    directory.write("empty", "");
    const MappedFile file = map_file(directory.path("data"));
    std::filesystem::remove(directory.path("data"));  // the mapping outlives the name
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.data()), file.size()), content);
    unmap_file(file);
    for (const char* other : {"empty", "missing", "."}) {
        EXPECT_TRUE(map_file(directory.path(other)).empty()) << other;
    }
}

TEST(Topology, IsPlausible) {
    const std::optional<Topology> topology = read_topology();
    if (!topology) GTEST_SKIP() << "this system does not tell";
    EXPECT_GE(topology->nodes, 1);
    EXPECT_GE(topology->cores, 1);
    EXPECT_GE(topology->logical, topology->cores);
    std::thread([] {
        EXPECT_FALSE(bind_thread_to_node(-1));
        EXPECT_FALSE(bind_thread_to_node(100000));
    }).join();
}

}  // namespace
}  // namespace quon::test
