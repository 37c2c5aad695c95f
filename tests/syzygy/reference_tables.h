#pragma once
// Real tables and the values that belong to them, for the tests of the prober and of its use.

#include <optional>

#include "harness/board_support.h"
#include "search/tablebases.h"
#include "syzygy/tbprobe.h"
#include "syzygy/tbprobe_position.h"

namespace quon::test {

struct ReferenceRow {
    std::string fen;
    int wdl;                 // -2..2 for the side to move
    std::optional<int> dtz;  // unknown where a table is missing
};
inline std::vector<ReferenceRow> reference_rows() {
    std::vector<ReferenceRow> rows;
    const Lines lines = shared_lines("/data/syzygy/reference.csv");
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const Lines cells = split(lines[i], ';');
        rows.push_back({cells.at(0), std::stoi(cells.at(1)), std::nullopt});
        if (cells.size() > 2 && !cells[2].empty()) rows.back().dtz = std::stoi(cells[2]);
    }
    return rows;
}

// Registers the real tables, the repository's and those of the folder beside the checkout, for the
// life of a test, without a word.
struct LoadedTables {
    LoadedTables() {
        captured_output(
            [] { tb_init(QUON_SOURCE_DIR "/tests/data/syzygy;" QUON_SHARED_DIR "/data/syzygy"); });
    }
    ~LoadedTables() { tb_init(""); }
    LoadedTables(const LoadedTables&) = delete;
    LoadedTables& operator=(const LoadedTables&) = delete;
};

inline ProbePosition probe_of(const std::string& fen) {
    const auto loaded = make_game(fen);
    return probe_position(loaded->position, loaded->position.fifty);
}

// Every square takes the place of another, its number changed in these bits.
inline ProbePosition reflected(ProbePosition p, int bits) {
    for (u64* set :
         {&p.white, &p.black, &p.kings, &p.queens, &p.rooks, &p.bishops, &p.knights, &p.pawns}) {
        for (Bitboard old = std::exchange(*set, 0); old != 0;) *set |= bit(pop_square(old) ^ bits);
    }
    if (p.ep != 0) p.ep ^= u8(bits);
    return p;
}

// Files a to h change places; Black and White change sides.
inline ProbePosition mirrored(const ProbePosition& p) { return reflected(p, 7); }
inline ProbePosition colors_exchanged(const ProbePosition& p) {
    ProbePosition exchanged = reflected(p, 56);
    std::swap(exchanged.white, exchanged.black);
    exchanged.turn ^= 1;
    return exchanged;
}

// Men of a table name on random squares, either colour with those named first; legal.
inline ProbePosition random_position(const std::string& name, Random& random) {
    while (true) {
        ProbePosition p{};
        p.turn = u8(pick(random, 2));
        p.rule50 = u8(pick(random, 101));
        Bitboard* side = pick(random, 2) ? &p.white : &p.black;
        for (const char letter : name) {
            if (letter == 'v') {
                side = side == &p.white ? &p.black : &p.white;
                continue;
            }
            Bitboard* const sets[] = {&p.kings,   &p.queens,  &p.rooks,
                                      &p.bishops, &p.knights, &p.pawns};
            const Bitboard square = bit(pick(random, 64));
            *side |= square;
            *sets[std::string("KQRBNP").find(letter)] |= square;
        }
        if (popcount64(p.white | p.black) != std::ssize(name) - 1) continue;  // two on a square
        if (well_formed(p) && !waiting_in_check(p)) return p;
    }
}

}  // namespace quon::test
