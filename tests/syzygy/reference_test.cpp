// The prober against the values of real tables.

#include <gtest/gtest.h>

#include "syzygy/reference_tables.h"

namespace quon::test {
namespace {

void expect_values(const ProbePosition& position, const ReferenceRow& row) {
    int success = 0;
    ASSERT_EQ(tb_probe_wdl(position, success), row.wdl);
    ASSERT_NE(success, 0);
    if (!row.dtz) return;
    ASSERT_EQ(tb_probe_dtz(position, success), *row.dtz);
    ASSERT_NE(success, 0);
}

TEST(TablebaseReference, NoDifference) {
    const std::vector<ReferenceRow> rows = reference_rows();
    if (rows.empty()) GTEST_SKIP() << "reference.csv is not there";
    const LoadedTables tables;
    for (const ReferenceRow& row : rows) {
        SCOPED_TRACE(row.fen);
        const ProbePosition position = probe_of(row.fen);
        for (const ProbePosition& seen :
             {position, colors_exchanged(position), mirrored(position)}) {
            expect_values(seen, row);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

}  // namespace
}  // namespace quon::test
