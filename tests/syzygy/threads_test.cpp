// All threads probe while the tables are being loaded.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "harness/board_support.h"
#include "syzygy/reference_tables.h"

namespace quon::test {
namespace {

constexpr int PROBING_THREADS = 6;

TEST(TablebaseThreads, ProbeDuringLoading) {
    const std::vector<ReferenceRow> rows = reference_rows();
    std::vector<ProbePosition> positions;
    for (const ReferenceRow& row : rows) positions.push_back(probe_of(row.fen));

    for (int round = 0; round < scaled(6); ++round) {
        const LoadedTables tables;
        std::atomic<int> ready = 0;
        std::atomic<int> wrong = 0;
        const auto probe_all = [&](int index) {
            ++ready;
            while (ready != PROBING_THREADS) std::this_thread::yield();
            // One after another through the endings, two threads each in the same order.
            const std::size_t start = rows.size() / 3 * std::size_t(index % 3);
            for (std::size_t i = 0; i < rows.size(); i += rows.size() / 100) {
                const std::size_t at = (start + i) % rows.size();
                int success = 0;
                const int value = tb_probe_wdl(positions[at], success);
                wrong += success == 0 || value != rows[at].wdl;
            }
        };
        std::vector<std::thread> threads;
        for (int i = 0; i < PROBING_THREADS; ++i) threads.emplace_back(probe_all, i);
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(wrong, 0);
    }
}

}  // namespace
}  // namespace quon::test
