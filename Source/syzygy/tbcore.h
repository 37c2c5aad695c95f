#pragma once
// One table file: opened, checked, and asked for positions.

#include <memory>

#include "platform/file_map.h"
#include "syzygy/tbcore_index.h"
#include "syzygy/tbcore_values.h"

namespace quon {

enum class TableKind : u8 { WDL, DTZ };

// What a table is about, as its name tells.
struct TableMaterial {
    Table<u8, 16> counts;  // pieces of each code; White has the side named first
    int pieces;
    bool symmetric;  // both sides have the same pieces
    bool has_pawns;
};

// The values for one side to move and, with pawns, one file of the leading pawn.
struct TablePart {
    IndexLayout layout;
    TableValues values;
    u8 flags;                        // distances: how they are stored
    Table<const std::byte*, 4> map;  // distances: the true numbers of the values that occur, by
                                     // outcome: won, lost, won but drawn, lost but drawn
    Table<u16, 4> map_size;
};

struct TableFile {
    MappedFile file;
    TableMaterial material;
    int files;  // 4 with pawns, else 1
    int sides;  // sides to move that are stored
    Table<Table<TablePart, 2>, 4> parts;
};

// Takes over the mapping and checks everything that lookups rely on; nullptr if it is damaged (the
// mapping is then the caller's again).
std::unique_ptr<TableFile> open_table(MappedFile file, TableKind kind,
                                      const TableMaterial& material);

constexpr int TABLE_DAMAGED = -1000;
constexpr int OTHER_SIDE_STORED = -1001;

// Looks up a position with the table's material. `exchanged`: White has the pieces that the table
// gives to Black. -2..2 for the side to move, or TABLE_DAMAGED.
int look_up_wdl(const TableFile& table, const ProbePosition& position, bool exchanged);
// Plies to zeroing, at least 1, of a position with the outcome wdl (not 0); OTHER_SIDE_STORED when
// the table knows the distances of the other side to move only; or TABLE_DAMAGED.
int look_up_dtz(const TableFile& table, const ProbePosition& position, bool exchanged, int wdl);

}  // namespace quon
