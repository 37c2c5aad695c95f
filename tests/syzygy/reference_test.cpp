// The prober against the values of real tables.

#include <gtest/gtest.h>

#include "syzygy/reference_tables.h"

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

}  // namespace
}  // namespace quon::test
