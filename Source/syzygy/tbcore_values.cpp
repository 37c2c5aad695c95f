// From the number of a position to its value, in a part's compressed values.
//
// The values of the positions 0, 1, 2 ... are one long string, written as prefix codes of 1 to 32
// bits, from the top bit of each byte on. A code stands for a symbol. A symbol is three bytes, two
// halves of twelve bits: a value if the second half is 0xFFF, else two other symbols, the values of
// the first before those of the second. So one short code can stand for a long stretch of values. A
// part whose values are all equal has that value in its header and no more.
//
// Codes. Those of one length are consecutive numbers, for consecutive symbols; read as fractions
// from the left, all codes of a length are smaller than any shorter code. The header names the
// first symbol of each length, hence how many codes each has, and derive_codes rebuilds the
// smallest code of each length, shifted to the left end of 64 bits. The length of the next code is
// then the first whose smallest code is not above the bits to come.
//
// Blocks. The string is cut into blocks of 2^block_log bytes; each begins with a whole code, and a
// list says how many values it has, less one. The sparse index has an entry for each 2^span_log
// positions: the block of the position in the middle of the stretch and that one's number in the
// block. A look-up
//
//   1. starts at the entry and walks back or forth over whole blocks to the one that holds the
//      position (find_place),
//   2. decodes this block from its start and counts values until a symbol contains the position
//      (find_symbol); more_values knows the size of each,
//   3. goes down into the halves until a single value is left (table_value).
//
// A damaged file must not lead astray: sizes are checked when the header is read, symbols that
// contain themselves are refused, and what only shows later makes the look-up answer -1.

#include "syzygy/tbcore_values.h"

#include <limits>

namespace quon {

namespace {

constexpr u32 SINGLE_VALUE = 0x80;
constexpr u32 NO_SYMBOL = 0xFFF;     // as the second half: the first half is a value
constexpr u32 MAX_SYMBOLS = 0x1000;  // as many as the halves can name
constexpr int MAX_CODE_BITS = 32;
constexpr int MAX_BLOCK_LOG = 30;
constexpr int MAX_SPAN_LOG = 32;
constexpr int UNKNOWN = -1;

u32 first_half(const TableValues& values, u32 symbol) {
    return read_u16(values.symbols + 3 * symbol) & 0xFFF;
}
u32 second_half(const TableValues& values, u32 symbol) {
    return read_u16(values.symbols + 3 * symbol + 1) >> 4;
}

// A symbol's values when both its halves are known, UNKNOWN before, and past the 16 bits that a
// block can hold when they are too many.
int count_values(const TableValues& values, const std::vector<int>& more, u32 symbol) {
    const u32 second = second_half(values, symbol);
    if (second == NO_SYMBOL) return 0;
    const u32 first = first_half(values, symbol);
    if (first >= more.size() || second >= more.size()) return UNKNOWN;
    if (more[first] == UNKNOWN || more[second] == UNKNOWN) return UNKNOWN;
    return more[first] + more[second] + 1;
}

// Resolves the symbols from the single values up. Those that stay unknown contain themselves, or
// symbols that do not exist.
bool resolve_symbols(TableValues& values, u32 count) {
    std::vector<int> more(count, UNKNOWN);
    u32 known = 0;
    for (bool progress = true; progress && known < count;) {
        progress = false;
        for (u32 symbol = 0; symbol < count; ++symbol) {
            if (more[symbol] != UNKNOWN) continue;
            more[symbol] = count_values(values, more, symbol);
            if (more[symbol] > std::numeric_limits<u16>::max()) return false;
            if (more[symbol] == UNKNOWN) continue;
            progress = true;
            ++known;
        }
    }
    values.more_values.assign(more.begin(), more.end());
    return known == count;
}

// The smallest code of each length follows from the numbers of symbols: the longest codes begin at
// zero, and codes of one bit less begin behind them.
bool derive_codes(TableValues& values, const std::byte* first_symbols, int lengths) {
    values.first_symbol.resize(std::size_t(lengths));
    values.first_code.assign(std::size_t(lengths), 0);
    for (int i = 0; i < lengths; ++i) {
        values.first_symbol[std::size_t(i)] = u16(read_u16(first_symbols + 2 * i));
    }
    u64 code = 0;
    for (int i = lengths - 2; i >= 0; --i) {
        const auto at = std::size_t(i);
        if (values.first_symbol[at] < values.first_symbol[at + 1]) return false;
        code = (code + values.first_symbol[at] - values.first_symbol[at + 1]) / 2;
        const int bits = values.min_bits + i;
        if (code >> bits != 0) return false;
        values.first_code[at] = code << (64 - bits);
        if (values.first_code[at] < values.first_code[at + 1]) return false;
    }
    return true;
}

bool read_codes(TableValues& values, TableCursor& cursor, int max_bits, int min_bits) {
    if (min_bits < 1 || max_bits < min_bits || max_bits > MAX_CODE_BITS) return false;
    values.min_bits = min_bits;
    const int lengths = max_bits - min_bits + 1;
    const std::byte* const first_symbols = cursor.take(2 * u64(lengths) + 2);
    if (!first_symbols) return false;
    const u32 symbols = read_u16(first_symbols + 2 * lengths);
    if (symbols > MAX_SYMBOLS) return false;
    values.symbols = cursor.take(3 * u64(symbols) + (symbols & 1));
    return values.symbols && derive_codes(values, first_symbols, lengths) &&
           resolve_symbols(values, symbols);
}

// The next codes of a block, left-aligned; zeros behind its end.
struct BitWindow {
    u64 bits = 0;
    int valid = 0;
    const std::byte* next;
    const std::byte* end;

    void refill() {
        while (valid <= 32) {
            u64 word = 0;
            for (int i = 0; i < 4; ++i) {
                word = word << 8 | (next < end ? byte_at(next) : 0);
                if (next < end) ++next;
            }
            bits |= word << (32 - valid);
            valid += 32;
        }
    }
    void drop(int count) {
        bits <<= count;
        valid -= count;
    }
};

// The block that holds the position, and the position's number within it.
struct Place {
    u64 block;
    i64 number;
};

bool find_place(const TableValues& values, u64 position, Place& place) {
    const u64 span = u64{1} << values.span_log;
    const u64 entry = position >> values.span_log;
    if (position >= values.positions) return false;
    const std::byte* const index = values.index + 6 * entry;
    u64 block = read_u32(index);
    i64 number = i64(read_u16(index + 4)) + i64(position & (span - 1)) - i64(span / 2);
    const auto more = [&values](u64 at) { return i64(read_u16(values.lengths + 2 * at)); };

    if (block >= values.length_entries) return false;
    while (number < 0) {
        if (block == 0) return false;
        number += more(--block) + 1;
    }
    while (number > more(block)) {
        number -= more(block) + 1;
        if (++block == values.length_entries) return false;
    }
    place = {block, number};
    return block < values.blocks;
}

// The symbol that contains the place's value; the place's number becomes that within the symbol.
// Each symbol holds a value at least, so that the loop ends.
int find_symbol(const TableValues& values, Place& place) {
    const std::byte* const start = values.data + (place.block << values.block_log);
    BitWindow window{.next = start, .end = start + (std::size_t{1} << values.block_log)};
    while (true) {
        window.refill();
        std::size_t length = 0;
        while (window.bits < values.first_code[length]) ++length;
        const int bits = values.min_bits + int(length);
        const u64 symbol = values.first_symbol[length] +
                           ((window.bits - values.first_code[length]) >> (64 - bits));
        if (symbol >= values.more_values.size()) return -1;
        const i64 more = values.more_values[symbol];
        if (place.number <= more) return int(symbol);
        place.number -= more + 1;
        window.drop(bits);
    }
}

}  // namespace

bool read_values_header(TableValues& values, TableCursor& cursor, u64 positions) {
    values = {};
    const std::byte* const start = cursor.take(2);
    if (!start) return false;
    values.constant = (byte_at(start) & SINGLE_VALUE) != 0;
    values.block_log = int(byte_at(start + 1));
    if (values.constant) {
        values.single = values.block_log;
        values.block_log = 0;
        return true;
    }
    const std::byte* const sizes = cursor.take(8);
    if (!sizes) return false;
    values.span_log = int(byte_at(sizes));
    if (values.block_log > MAX_BLOCK_LOG || values.span_log > MAX_SPAN_LOG) return false;
    values.positions = positions;
    values.index_entries = (positions + (u64{1} << values.span_log) - 1) >> values.span_log;
    values.blocks = read_u32(sizes + 2);
    values.length_entries = values.blocks + byte_at(sizes + 1);
    return read_codes(values, cursor, int(byte_at(sizes + 6)), int(byte_at(sizes + 7)));
}

int table_value(const TableValues& values, u64 position) {
    if (values.constant) return values.single;
    Place place;
    if (!find_place(values, position, place)) return -1;
    int symbol = find_symbol(values, place);
    if (symbol < 0) return -1;
    while (values.more_values[std::size_t(symbol)] != 0) {
        const u32 first = first_half(values, u32(symbol));
        const i64 more = values.more_values[first];
        if (place.number <= more) {
            symbol = int(first);
        } else {
            place.number -= more + 1;
            symbol = int(second_half(values, u32(symbol)));
        }
    }
    return int(first_half(values, u32(symbol)));
}

}  // namespace quon
