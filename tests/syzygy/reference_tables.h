#pragma once
// The real tables beside the checkout and the values that belong to them, for the tests of the
// prober and of its use. Tests skip themselves where the data are missing.

#include <optional>
#include <string>
#include <vector>

#include "syzygy/tbprobe.h"

namespace quon::test {

std::string table_directory();

struct ReferenceRow {
    std::string fen;
    int wdl;                 // -2..2 for the side to move
    std::optional<int> dtz;  // unknown where a table is missing
};

// Every row of reference.csv; empty when it is not there.
std::vector<ReferenceRow> reference_rows();

// Registers the tables of a directory for the life of a test, without a word.
struct LoadedTables {
    explicit LoadedTables(const std::string& path = table_directory());
    ~LoadedTables();
    LoadedTables(const LoadedTables&) = delete;
    LoadedTables& operator=(const LoadedTables&) = delete;
};

ProbePosition probe_of(const std::string& fen);
// Black and White change sides; files a to h change places.
ProbePosition colors_exchanged(const ProbePosition& p);
ProbePosition mirrored(const ProbePosition& p);

}  // namespace quon::test
