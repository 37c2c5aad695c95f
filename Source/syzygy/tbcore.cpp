// Table files: their parts, and the way from a position to its value.
//
// A file holds what one kind of table (win/draw/loss, or distances to zeroing) knows about one
// material. It is cut into parts, each compressed for itself: for each file of the leading pawn, if
// there are pawns (a and h are one file, as are b and g, and so on), and, for outcomes of material
// that is not symmetric, for each side to move. Distances have one side per part; the other side's
// follow from them by a move. Numbers are little-endian. In order:
//
//   1. Four bytes that name the kind, and one that repeats what the material is like: a check.
//   2. Per file of the leading pawn the piece order and the places of the groups, half a byte for
//      each side to move. tbcore_index.cpp turns them into a numbering of the positions.
//   3. Per part the header of its values: sizes, the lengths of the codes, the symbols
//      (tbcore_values.cpp). The first byte holds the part's flags.
//   4. Distances alone, per part that is MAPPED: four lists, one for each outcome, as the stored
//      numbers are places in them.
//   5. All sparse indexes, then all lists of block lengths, then all blocks of codes, those of each
//      part beginning at a multiple of 64.
//
// Nothing says where a section begins: each follows from the sizes before it, so the file is read
// through once when it is opened (read_table). What is kept are pointers into the mapping.
//
// A look-up takes the position as the table sees it: with colours exchanged and the board turned
// over if White has the pieces of the table's Black or, where both have the same, if Black is to
// move. The leading pawn selects the part, with the side to move; the squares, in the part's piece
// order, give the number of the position; the number gives the value. An outcome is value - 2. A
// distance goes through the map, counts moves unless the flags say plies for the outcome, and
// begins at 1.
//
// Who does what: tbcore.cpp the file and its parts, tbcore_index.cpp squares to number,
// tbcore_values.cpp number to value, tbprobe_tables.cpp which files there are, tbprobe.cpp what the
// values mean for a position with captures and en passant.

#include "syzygy/tbcore.h"

#include <algorithm>

#include "board/bitboard.h"

namespace quon {

namespace {

constexpr u32 WDL_MAGIC = 0x5D23E871;
constexpr u32 DTZ_MAGIC = 0xA50C66D7;

// Of the byte behind the magic number.
constexpr u32 BOTH_SIDES = 1;  // the material is not symmetric
constexpr u32 HAS_PAWNS = 2;

// How a part of a distance table is stored.
constexpr int STORED_SIDE = 1;  // set: the table's Black
constexpr int MAPPED = 2;
constexpr int WON_IN_PLIES = 4;  // else in moves
constexpr int LOST_IN_PLIES = 8;
constexpr int WIDE_MAP = 16;

constexpr u64 BLOCK_ALIGNMENT = 64;
constexpr int WDL_VALUES = 5;

template <typename Visit>
bool for_each_part(TableFile& table, Visit visit) {
    for (int file = 0; file < table.files; ++file) {
        for (int side = 0; side < table.sides; ++side) {
            if (!visit(table.parts[file][side], file, side)) return false;
        }
    }
    return true;
}

// Per file of the leading pawn: the places of the groups and the pieces in order, White to move in
// the low half of each byte, Black to move in the high half.
bool read_layouts(TableFile& table, TableCursor& cursor) {
    const TableMaterial& material = table.material;
    const bool pawns_face = material.counts[PAWN] > 0 && material.counts[PAWN + 8] > 0;
    const int places = pawns_face ? 2 : 1;
    const u8 no_code = 0;
    u8 leader = no_code;
    for (int file = 0; file < table.files; ++file) {
        const std::byte* const bytes = cursor.take(u64(places) + u64(material.pieces));
        if (!bytes) return false;
        for (int side = 0; side < table.sides; ++side) {
            const auto half = [&](int i) { return u8(byte_at(bytes + i) >> (4 * side) & 15); };
            Table<u8, TB_MAX_PIECES> codes{};
            for (int i = 0; i < material.pieces; ++i) codes[i] = half(places + i);
            if (leader == no_code) leader = codes[0];
            const IndexOrder order{
                {codes.begin(), std::size_t(material.pieces)}, half(0), half(places - 1), file};
            if (table.files > 1 && codes[0] != leader) return false;
            if (!make_layout(table.parts[file][side].layout, order, material.counts)) return false;
        }
    }
    cursor.align(2);
    return true;
}

bool read_headers(TableFile& table, TableCursor& cursor) {
    return for_each_part(table, [&cursor](TablePart& part, int, int) {
        const u64 start = cursor.at;
        if (!read_values_header(part.values, cursor, part.layout.positions)) return false;
        part.flags = u8(byte_at(cursor.file.data() + start));
        return true;
    });
}

// The lists of distances that occur, one for each outcome, in bytes or words.
bool read_map(TablePart& part, TableCursor& cursor) {
    const u64 width = part.flags & WIDE_MAP ? 2 : 1;
    cursor.align(width);
    for (int outcome = 0; outcome < 4; ++outcome) {
        const std::byte* const size = cursor.take(width);
        if (!size) return false;
        part.map_size[outcome] = u16(width == 2 ? read_u16(size) : byte_at(size));
        part.map[outcome] = cursor.take(width * part.map_size[outcome]);
        if (!part.map[outcome]) return false;
    }
    return true;
}

bool read_maps(TableFile& table, TableCursor& cursor) {
    const bool read = for_each_part(table, [&cursor](TablePart& part, int, int) {
        return (part.flags & MAPPED) == 0 || read_map(part, cursor);
    });
    cursor.align(2);
    return read;
}

// All sparse indexes, then all block lengths, then all blocks.
bool place_values(TableFile& table, TableCursor& cursor) {
    return for_each_part(table,
                         [&](TablePart& part, int, int) {
                             TableValues& values = part.values;
                             values.index = cursor.take(index_bytes(values));
                             return values.index != nullptr;
                         }) &&
           for_each_part(table,
                         [&](TablePart& part, int, int) {
                             TableValues& values = part.values;
                             values.lengths = cursor.take(length_bytes(values));
                             return values.lengths != nullptr;
                         }) &&
           for_each_part(table, [&](TablePart& part, int, int) {
               TableValues& values = part.values;
               if (!values.constant) cursor.align(BLOCK_ALIGNMENT);
               values.data = cursor.take(data_bytes(values));
               return values.data != nullptr;
           });
}

bool read_table(TableFile& table, TableKind kind) {
    TableCursor cursor{table.file};
    const std::byte* const start = cursor.take(5);
    if (!start || read_u32(start) != (kind == TableKind::WDL ? WDL_MAGIC : DTZ_MAGIC)) return false;
    const u32 form = byte_at(start + 4);
    const TableMaterial& material = table.material;
    if (((form & BOTH_SIDES) != 0) == material.symmetric) return false;
    if (((form & HAS_PAWNS) != 0) != material.has_pawns) return false;
    table.files = material.has_pawns ? 4 : 1;
    table.sides = kind == TableKind::WDL && !material.symmetric ? 2 : 1;
    return read_layouts(table, cursor) && read_headers(table, cursor) &&
           (kind == TableKind::WDL || read_maps(table, cursor)) && place_values(table, cursor);
}

// A position as the table sees it.
struct View {
    const ProbePosition& position;
    bool exchanged;

    // Of a piece code of the table.
    [[nodiscard]] Bitboard pieces(int code) const {
        const Bitboard of_type[] = {0,
                                    position.pawns,
                                    position.knights,
                                    position.bishops,
                                    position.rooks,
                                    position.queens,
                                    position.kings};
        const bool white = (color_of(code) == WHITE) != exchanged;
        return of_type[type_of(code)] & (white ? position.white : position.black);
    }
    [[nodiscard]] int square(int real) const { return exchanged ? real ^ 56 : real; }
};

// A symmetric table knows White to move only.
View view_of(const TableFile& table, const ProbePosition& position, bool exchanged) {
    return {position, table.material.symmetric ? position.turn == 0 : exchanged};
}

// The side to move in the table's colours.
int table_side(const View& view) {
    return (view.position.turn != 0) == view.exchanged ? BLACK : WHITE;
}

// The part of a table that a position belongs to.
struct PartPlace {
    int file;
    int leader;  // square of the leading pawn
};

PartPlace find_part(const TableFile& table, const View& view) {
    if (table.files == 1) return {0, NO_SQUARE};
    Bitboard pawns = view.pieces(table.parts[0][0].layout.codes[0]);
    Bitboard seen = 0;
    while (pawns) seen |= bit(view.square(pop_square(pawns)));
    const int leader = leading_pawn(seen);
    return {std::min(file_of(leader), 7 - file_of(leader)), leader};
}

int part_value(const TablePart& part, const View& view, int leader) {
    PieceSquares squares{};
    Bitboard left = 0;
    for (int i = 0; i < part.layout.pieces; ++i) {
        const int code = part.layout.codes[i];
        if (i == 0 || code != part.layout.codes[i - 1]) left = view.pieces(code);
        squares[i] = view.square(pop_square(left));
        if (squares[i] == leader) std::swap(squares[0], squares[i]);
    }
    return table_value(part.values, position_index(part.layout, squares));
}

// The map's list for an outcome.
int map_list(int wdl) { return wdl == 2 ? 0 : wdl == -2 ? 1 : wdl == 1 ? 2 : 3; }

bool in_plies(const TablePart& part, int wdl) {
    return (wdl == 2 && part.flags & WON_IN_PLIES) || (wdl == -2 && part.flags & LOST_IN_PLIES);
}

}  // namespace

std::unique_ptr<TableFile> open_table(MappedFile file, TableKind kind,
                                      const TableMaterial& material) {
    auto table = std::make_unique<TableFile>();
    table->file = file;
    table->material = material;
    if (!read_table(*table, kind)) return nullptr;
    return table;
}

int look_up_wdl(const TableFile& table, const ProbePosition& position, bool exchanged) {
    const View view = view_of(table, position, exchanged);
    const PartPlace place = find_part(table, view);
    const int side = table.sides > 1 ? table_side(view) : 0;
    const int value = part_value(table.parts[place.file][side], view, place.leader);
    return 0 <= value && value < WDL_VALUES ? value - 2 : TABLE_DAMAGED;
}

int look_up_dtz(const TableFile& table, const ProbePosition& position, bool exchanged, int wdl) {
    const View view = view_of(table, position, exchanged);
    const PartPlace place = find_part(table, view);
    const TablePart& part = table.parts[place.file][0];
    if (!table.material.symmetric && table_side(view) != (part.flags & STORED_SIDE)) {
        return OTHER_SIDE_STORED;
    }
    int value = part_value(part, view, place.leader);
    if (value < 0) return TABLE_DAMAGED;
    if (part.flags & MAPPED) {
        const int list = map_list(wdl);
        if (value >= part.map_size[list]) return TABLE_DAMAGED;
        const std::byte* const map = part.map[list];
        value = int(part.flags & WIDE_MAP ? read_u16(map + 2 * value) : byte_at(map + value));
    }
    return 1 + (in_plies(part, wdl) ? value : 2 * value);
}

}  // namespace quon
