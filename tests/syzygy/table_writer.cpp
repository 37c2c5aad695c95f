#include "syzygy/table_writer.h"

#include <array>

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

void write_header(std::string& bytes, const TableForm& form, int blocks, int extra_lengths) {
    for (const int number : {int{form.dtz_flags}, form.block_bits, form.span_bits, extra_lengths}) {
        put(bytes, 1, u64(number));
    }
    put(bytes, 4, u64(blocks));
    for (int i = 0; i < 2; ++i) put(bytes, 1, VALUE_BITS);  // longest and shortest code
    put(bytes, 2, 0);                                       // the first symbol of this length
    put(bytes, 2, VALUES);
    for (int symbol = 0; symbol < VALUES; ++symbol) put(bytes, 3, u64(symbol | NO_SYMBOL << 12));
}

void write_map(std::string& bytes, u8 flags) {
    const int size = flags & DTZ_WIDE ? 2 : 1;
    pad_to(bytes, size_t(size));
    for (int list = 0; list < 4; ++list) {
        put(bytes, size, VALUES);
        for (int v = 0; v < VALUES; ++v) put(bytes, size, u64(map_entry(flags, list, v)));
    }
    pad_to(bytes, 2);
}

std::string file_start(u32 magic, int men, bool two_sided) {
    std::string bytes;
    put(bytes, 4, magic);
    put(bytes, 1, u64(men << 4 | (two_sided ? TWO_SIDED : 0)));
    put(bytes, 1, 0);  // the place of the leading group
    return bytes;
}

}  // namespace

int stored_value(u64 index) { return int((index + 1) * 0x9E3779B97F4A7C15 >> (64 - VALUE_BITS)); }

int map_entry(u8 dtz_flags, int list, int value) {
    return dtz_flags & DTZ_WIDE ? 1000 * value + list : 3 * value + 20 * list;
}

std::string written_table(const TableForm& form) {
    const int per_block = (8 << form.block_bits) / VALUE_BITS;
    const int blocks = (POSITIONS + per_block - 1) / per_block;
    std::string content(size_t(blocks) << form.block_bits, '\0'), lengths, index;
    for (int i = 0; i < POSITIONS; ++i) {
        if (i % per_block == 0) put(lengths, 2, u64(std::min(per_block, POSITIONS - i) - 1));
        for (int b = 0; b < VALUE_BITS; ++b) {
            const int at = (i / per_block << form.block_bits) * 8 + i % per_block * VALUE_BITS + b;
            const int value = stored_value(u64(i)) >> (VALUE_BITS - 1 - b) & 1;
            char& byte = content[size_t(at / 8)];
            byte = char(byte | value << (7 - at % 8));
        }
    }
    // For the middle of each span the block and the place in it. A last middle beyond the end falls
    // in blocks that exist only in the list of lengths.
    int extra = 0;
    const int span = 1 << form.span_bits;
    for (int middle = span / 2; middle - span / 2 < POSITIONS; middle += span) {
        const bool inside = middle < POSITIONS;
        const int block = inside ? middle / per_block : blocks;
        const int number = middle - (inside ? block * per_block : POSITIONS);
        put(index, 4, u64(block + number / MAX_BLOCK_LENGTH));
        put(index, 2, u64(number % MAX_BLOCK_LENGTH));
        if (!inside) extra = number / MAX_BLOCK_LENGTH + 1;
    }
    for (int i = 0; i < extra; ++i) put(lengths, 2, MAX_BLOCK_LENGTH - 1);

    std::string bytes = file_start(DTZ_MAGIC, 3, true);
    // King and rook, the other king: the side to move begins.
    for (const int man : form.dtz_flags& DTZ_BLACK ? std::array{14, 6, 4} : std::array{6, 4, 14}) {
        put(bytes, 1, u64(man | man << 4));
    }
    pad_to(bytes, 2);
    write_header(bytes, form, blocks, extra);
    if (form.dtz_flags & DTZ_MAPPED) write_map(bytes, form.dtz_flags);
    bytes += index + lengths;
    pad_to(bytes, 64);
    return bytes + content + std::string(CHECKSUM, '\xC5');
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
