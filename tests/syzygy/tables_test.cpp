// Looking values up: in real tables, by one thread and by many, and in tables of made-up values,
// which give back what was written for each position.

#include <atomic>
#include <span>
#include <thread>

#include "syzygy/reference_tables.h"
#include "syzygy/table_writer.h"
#include "syzygy/tbprobe_material.h"

namespace quon::test {
namespace {

TEST(TablebaseReference, NoDifference) {
    const LoadedTables tables;
    const std::vector<ReferenceRow> rows = reference_rows();
    ASSERT_GE(rows.size(), 400U);
    for (const ReferenceRow& row : rows) {
        SCOPED_TRACE(row.fen);
        const ProbePosition position = probe_of(row.fen);
        for (const ProbePosition& seen :
             {position, colors_exchanged(position), mirrored(position)}) {
            int success = 0;
            ASSERT_EQ(tb_probe_wdl(seen, success), row.wdl);
            ASSERT_NE(success, 0);
            if (!row.dtz) continue;
            ASSERT_EQ(tb_probe_dtz(seen, success), *row.dtz);
            ASSERT_NE(success, 0);
        }
    }
}

// All threads probe while the tables are being loaded.
TEST(TablebaseThreads, ProbeDuringLoading) {
    constexpr int THREADS = 6;
    const std::vector<ReferenceRow> rows = reference_rows();
    std::vector<ProbePosition> positions;
    for (const ReferenceRow& row : rows) positions.push_back(probe_of(row.fen));
    for (int round = 0; round < scaled(6); ++round) {
        const LoadedTables tables;
        std::atomic<int> ready = 0, wrong = 0;
        const auto probe_all = [&](int index) {
            ++ready;
            while (ready != THREADS) std::this_thread::yield();
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
        for (int i = 0; i < THREADS; ++i) threads.emplace_back(probe_all, i);
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(wrong, 0);
    }
}

// The value that the part holds for the position; White has the rook.
int value_of(const TablePart& part, const ProbePosition& p) {
    PieceSquares squares{};
    for (int i = 0; i < 3; ++i) {
        const int code = part.layout.codes[i];
        Bitboard man = (color_of(code) == WHITE ? p.white : p.black) &
                       (type_of(code) == ROOK ? p.rooks : p.kings);
        squares[i] = pop_square(man);
    }
    return stored_value(position_index(part.layout, squares));
}

TEST(WrittenTables, GiveBackTheirValues) {
    constexpr TableForm FORMS[] = {
        {0, 5, 6},  // small blocks, wins and losses in moves
        {DTZ_BLACK | DTZ_MAPPED | DTZ_LOSS_PLIES, 6, 12},
        {DTZ_MAPPED | DTZ_WIDE | DTZ_WIN_PLIES, 12, 15},
        {DTZ_BLACK | DTZ_WIN_PLIES, 7, 18},  // an index entry beyond the end
    };
    for (const auto& [flags, block_bits, span_bits] : FORMS) {
        SCOPED_TRACE(int{flags});
        const std::string bytes = written_table({flags, block_bits, span_bits});
        const auto table =
            open_table(std::as_bytes(std::span(bytes)), TableKind::DTZ, material_of_name("KRvK"));
        ASSERT_NE(table, nullptr);
        Random random(1);
        for (int n = 0; n < scaled(3000); ++n) {
            const ProbePosition p = random_position("KRvK", random);
            const bool exchanged = (p.rooks & p.black) != 0;
            const ProbePosition seen = exchanged ? colors_exchanged(p) : p;
            const bool stored = (seen.turn == 0) == ((flags & DTZ_BLACK) != 0);
            const int value = stored ? value_of(table->parts[0][0], seen) : 0;
            const std::pair<int, bool> lists[] = {// an outcome, and whether it is in plies
                                                  {2, (flags & DTZ_WIN_PLIES) != 0},
                                                  {-2, (flags & DTZ_LOSS_PLIES) != 0},
                                                  {1, false},
                                                  {-1, false}};
            for (int list = 0; list < 4; ++list) {
                const auto [wdl, plies] = lists[list];
                const int number = flags & DTZ_MAPPED ? map_entry(flags, list, value) : value;
                ASSERT_EQ(look_up_dtz(*table, p, exchanged, wdl),
                          stored ? 1 + (plies ? number : 2 * number) : OTHER_SIDE_STORED);
            }
        }
    }
}

}  // namespace
}  // namespace quon::test
