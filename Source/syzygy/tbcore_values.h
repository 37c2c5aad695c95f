#pragma once
// The compressed values of a table.
//
// The values, one per position number, are cut into blocks. A block is a string of prefix codes;
// each code stands for a symbol, and a symbol for one value or for two other symbols, so that a
// short code can stand for many values. Codes of one length are consecutive numbers, and longer
// codes are numerically smaller than any shorter code's beginning. A sparse index leads near the
// right block, and the number of values in each block the rest of the way.

#include <vector>

#include "syzygy/tbcore_bytes.h"

namespace quon {

struct TableValues {
    bool constant;  // every position has the value `single`
    int single;

    int block_log;  // bytes per block, as a power of two
    int span_log;   // values per entry of the sparse index, likewise
    u64 positions;
    u64 index_entries;
    u64 length_entries;  // at least as many as blocks
    u64 blocks;
    const std::byte* index;    // per entry six bytes: block, number of the middle value within it
    const std::byte* lengths;  // per block two bytes: values less one
    const std::byte* data;

    int min_bits;                   // of a code
    std::vector<u64> first_code;    // by length: the smallest code, left-aligned
    std::vector<u16> first_symbol;  // by length: that code's symbol
    const std::byte* symbols;       // three bytes each: two numbers of twelve bits
    std::vector<u16> more_values;   // per symbol: values less one
};

// Reads the header of the values of `positions` positions at the cursor; false if it is damaged.
// The pointers to index, lengths and data are left for the caller, who knows their order.
bool read_values_header(TableValues& values, TableCursor& cursor, u64 positions);

inline u64 index_bytes(const TableValues& values) { return 6 * values.index_entries; }
inline u64 length_bytes(const TableValues& values) { return 2 * values.length_entries; }
inline u64 data_bytes(const TableValues& values) { return values.blocks << values.block_log; }

// The value of a position, 0..4095; -1 if the data contradict themselves. Whatever the file holds,
// this reads within it and ends.
int table_value(const TableValues& values, u64 position);

}  // namespace quon
