#pragma once
// Writes endgame tables of made-up values in those forms of the file format that small real tables
// do not have.

#include "harness/files.h"
#include "syzygy/tbcore.h"

namespace quon::test {

// Flags of a distance table, as stored.
enum DtzFlags : u8 {
    DTZ_BLACK = 1,        // holds the positions with Black to move
    DTZ_MAPPED = 2,       // values go through a map
    DTZ_WIN_PLIES = 4,    // wins are in plies, not in moves
    DTZ_LOSS_PLIES = 8,   // losses are
    DTZ_WIDE = 16,        // entries of the map have 16 bits
    SINGLE_VALUE = 0x80,  // no blocks, one value for all (both kinds of table)
};

struct TableForm {
    u8 dtz_flags;
    int block_bits;  // blocks of 2^n bytes
    int span_bits;   // an entry of the sparse index for each 2^n values
};

// The distance table of king and rook against king, named "KRvK".
std::string written_table(const TableForm& form);

// What it holds: for the position with a number 0 to 63; and the entry of the map for such a value,
// in the list of an outcome (0 to 3).
int stored_value(u64 index);
int map_entry(u8 dtz_flags, int list, int value);

// A table for any material without pawns, with an outcome (0 lost to 4 won) for all positions.
std::string constant_wdl_table(const std::string& name, int outcome);

// A directory with table files; when it goes, the tables are released.
struct TableDirectory : Directory {
    ~TableDirectory();
    void load() const;  // the files that are there now
};

}  // namespace quon::test
