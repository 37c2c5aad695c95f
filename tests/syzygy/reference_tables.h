#pragma once
// Real tables and the values that belong to them, for the tests of the prober and of its use.

#include <optional>
#include <string>
#include <vector>

#include "harness/board_support.h"
#include "syzygy/tbprobe.h"

namespace quon::test {

// The repository's tables, and the folder's beside the checkout: a path for the prober.
std::string table_directories();

struct ReferenceRow {
    std::string fen;
    int wdl;                 // -2..2 for the side to move
    std::optional<int> dtz;  // unknown where a table is missing
};
std::vector<ReferenceRow> reference_rows();

// Registers the real tables for the life of a test, without a word.
struct LoadedTables {
    LoadedTables();
    ~LoadedTables();
    LoadedTables(const LoadedTables&) = delete;
    LoadedTables& operator=(const LoadedTables&) = delete;
};

ProbePosition probe_of(const std::string& fen);
// Black and White change sides; files a to h change places.
ProbePosition colors_exchanged(const ProbePosition& p);
ProbePosition mirrored(const ProbePosition& p);

// Men of a table name on random squares, either colour with those named first; legal.
ProbePosition random_position(const std::string& name, Random& random);

}  // namespace quon::test
