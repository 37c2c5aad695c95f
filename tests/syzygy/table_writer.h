#pragma once
// Writes endgame tables of three men: the solved ending in the published file format, in any of
// the forms that the format leaves open.

#include <array>
#include <string>
#include <string_view>

#include "syzygy/retrograde.h"

namespace quon::test {

// How the values of one table are packed.
struct Packing {
    bool single;     // one value for the whole table where that is enough
    int pairs;       // at most so many symbols that stand for two others
    int block_bits;  // blocks of 2^n bytes
    int span_bits;   // an entry of the sparse index for each 2^n values
};

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
    const char* name;
    Packing packing;
    // Order of the men: W white king, B black king, X the piece; one row for White to move, one for
    // Black. A pawn always comes first and its column in a row is left out.
    std::array<const char*, 2> men;
    std::array<int, 2> pawn_place;  // 0 to 2: how many of the kings vary faster than the pawn
    bool
        loose;  // a position that a capture decides holds a loss and leaves the rest to the capture
    u8 dtz_flags;
    bool spoiled = false;  // the fifty-move rule makes draws of all wins and losses
};

// A map has a list for each outcome: won, lost, won but drawn, lost but drawn. One holds the values
// of the ending; the numbers in the one behind it (the first behind the last) are larger by this.
constexpr int list_step(u8 dtz_flags) { return dtz_flags & DTZ_WIDE ? 300 : 60; }

// "KQvK".
std::string table_name(int piece);

std::string wdl_table(int piece, const TableForm& form);
std::string dtz_table(int piece, const TableForm& form);

// A table for any material without pawns, with an outcome (0 lost to 4 won) for all positions.
std::string constant_wdl_table(std::string_view name, int outcome);

// The distance that `dtz_table` gives back for a position of known distance: the same, or one
// nearer to zero where moves are stored and the plies are even; from a spoiled ending a hundred
// more.
int stored_dtz(int dtz, const TableForm& form);

// A temporary directory with table files; when it goes, the tables are released.
struct TableDirectory {
    TableDirectory();
    ~TableDirectory();
    TableDirectory(const TableDirectory&) = delete;
    TableDirectory& operator=(const TableDirectory&) = delete;

    void write(const std::string& name, std::string_view bytes) const;
    void load() const;  // the files that are there now

    std::string path;
};

}  // namespace quon::test
