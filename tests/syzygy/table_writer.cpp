#include "syzygy/table_writer.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "harness/board_support.h"
#include "syzygy/tbprobe.h"
#include "syzygy/tbprobe_material.h"

namespace quon::test {
namespace {

constexpr u32 WDL_MAGIC = 0x5D23E871;
constexpr u32 DTZ_MAGIC = 0xA50C66D7;
constexpr int TWO_SIDED = 1;
constexpr int POSITIONS = 31332;  // of three different men
constexpr int VALUE_BITS = 6;     // all codes have this length, and no symbol stands for others
constexpr int VALUES = 1 << VALUE_BITS;
constexpr int NO_SYMBOL = 0xFFF;
constexpr int MAX_BLOCK_LENGTH = 0x10000;
constexpr int CHECKSUM = 16;  // bytes at the end, which no reader verifies

void put(std::string& bytes, int size, u64 value) {
    for (int i = 0; i < size; ++i) bytes += char(value >> 8 * i & 0xFF);
}

void pad_to(std::string& bytes, size_t unit) {
    bytes.resize((bytes.size() + unit - 1) / unit * unit);
}

// The four places of a file where the values of one side to move leave something.
struct Packed {
    std::string header, index, lengths, blocks;
};

void write_header(std::string& header, TableKind kind, const TableForm& form, int blocks,
                  int extra_lengths) {
    put(header, 1, kind == TableKind::DTZ ? form.dtz_flags : 0);
    for (const int number : {form.block_bits, form.span_bits, extra_lengths}) {
        put(header, 1, u64(number));
    }
    put(header, 4, u64(blocks));
    for (int i = 0; i < 2; ++i) put(header, 1, VALUE_BITS);  // longest and shortest code
    put(header, 2, 0);                                       // the first symbol of this length
    put(header, 2, VALUES);
    for (int symbol = 0; symbol < VALUES; ++symbol) {
        put(header, 3, u64((kind == TableKind::WDL ? symbol % 5 : symbol) | NO_SYMBOL << 12));
    }
}

// For the middle of each span the block and the place in it. A last middle beyond the end falls in
// blocks that exist only in the list of lengths; returns how many of these there are.
int write_index(Packed& out, const TableForm& form, int per_block, int blocks) {
    const int span = 1 << form.span_bits;
    int extra = 0;
    for (int middle = span / 2; middle - span / 2 < POSITIONS; middle += span) {
        const bool inside = middle < POSITIONS;
        const int block = inside ? middle / per_block : blocks;
        const int number = middle - (inside ? block * per_block : POSITIONS);
        put(out.index, 4, u64(block + number / MAX_BLOCK_LENGTH));
        put(out.index, 2, u64(number % MAX_BLOCK_LENGTH));
        if (!inside) extra = number / MAX_BLOCK_LENGTH + 1;
    }
    for (int i = 0; i < extra; ++i) put(out.lengths, 2, MAX_BLOCK_LENGTH - 1);
    return extra;
}

Packed pack(TableKind kind, const TableForm& form, int side) {
    Packed out;
    const int per_block = (8 << form.block_bits) / VALUE_BITS;
    const int blocks = (POSITIONS + per_block - 1) / per_block;
    out.blocks.resize(size_t(blocks) << form.block_bits);
    for (int i = 0; i < POSITIONS; ++i) {
        if (i % per_block == 0) put(out.lengths, 2, u64(std::min(per_block, POSITIONS - i) - 1));
        for (int b = 0; b < VALUE_BITS; ++b) {
            const int bit_number =
                (i / per_block << form.block_bits) * 8 + i % per_block * VALUE_BITS + b;
            const int value = stored_value(side, u64(i)) >> (VALUE_BITS - 1 - b) & 1;
            char& byte = out.blocks[size_t(bit_number / 8)];
            byte = char(byte | value << (7 - bit_number % 8));
        }
    }
    const int extra = write_index(out, form, per_block, blocks);
    write_header(out.header, kind, form, blocks, extra);
    return out;
}

std::string file_start(u32 magic, int men, bool two_sided) {
    std::string bytes;
    put(bytes, 4, magic);
    put(bytes, 1, u64(men << 4 | (two_sided ? TWO_SIDED : 0)));
    put(bytes, 1, 0);  // the place of the leading group
    return bytes;
}

}  // namespace

int stored_value(int side, u64 index) {
    return int((index * 2 + u64(side) + 1) * 0x9E3779B97F4A7C15 >> (64 - VALUE_BITS));
}

int map_entry(u8 dtz_flags, int list, int value) {
    return dtz_flags & DTZ_WIDE ? 1000 * value + list : 3 * value + 20 * list;
}

std::string written_table(TableKind kind, const TableForm& form) {
    std::string bytes = file_start(kind == TableKind::WDL ? WDL_MAGIC : DTZ_MAGIC, 3, true);
    const bool stored_black = kind == TableKind::DTZ && (form.dtz_flags & DTZ_BLACK);
    constexpr int ORDERS[2][3] = {
        {make_piece(WHITE, KING), make_piece(WHITE, ROOK), make_piece(BLACK, KING)},
        {make_piece(BLACK, KING), make_piece(WHITE, KING), make_piece(WHITE, ROOK)}};
    for (int i = 0; i < 3; ++i) {
        put(bytes, 1, u64(ORDERS[stored_black ? 1 : 0][i] | ORDERS[1][i] << 4));
    }
    pad_to(bytes, 2);
    std::vector<Packed> sides;
    if (kind == TableKind::WDL || !stored_black) sides.push_back(pack(kind, form, WHITE));
    if (kind == TableKind::WDL || stored_black) sides.push_back(pack(kind, form, BLACK));
    for (const Packed& side : sides) bytes += side.header;
    if (kind == TableKind::DTZ && form.dtz_flags & DTZ_MAPPED) {
        const int size = form.dtz_flags & DTZ_WIDE ? 2 : 1;
        pad_to(bytes, size_t(size));
        for (int list = 0; list < 4; ++list) {
            put(bytes, size, VALUES);
            for (int v = 0; v < VALUES; ++v)
                put(bytes, size, u64(map_entry(form.dtz_flags, list, v)));
        }
        pad_to(bytes, 2);
    }
    for (const Packed& side : sides) bytes += side.index;
    for (const Packed& side : sides) bytes += side.lengths;
    for (const Packed& side : sides) {
        pad_to(bytes, 64);
        bytes += side.blocks;
    }
    return bytes + std::string(CHECKSUM, '\xC5');
}

std::string constant_wdl_table(const std::string& name, int outcome) {
    const TableMaterial material = material_of_name(name);
    std::string bytes = file_start(WDL_MAGIC, material.pieces, !material.symmetric);
    for (const bool single : {true, false}) {  // men that occur once come first
        for (int code = 0; code < 16; ++code) {
            const int count = material.counts[code];
            if ((count == 1) != single) continue;
            for (int i = 0; i < count; ++i) put(bytes, 1, u64(code << 4 | code));
        }
    }
    pad_to(bytes, 2);
    for (int side = 0; side < (material.symmetric ? 1 : 2); ++side) {
        put(bytes, 1, SINGLE_VALUE);
        put(bytes, 1, u64(outcome));
    }
    return bytes + std::string(CHECKSUM, '\xC5');
}

TableDirectory::~TableDirectory() { tb_init(""); }

void TableDirectory::load() const {
    captured_output([&] { tb_init(path()); });
}

}  // namespace quon::test
