// Reference data of the tablebases.

#include "syzygy/reference_tables.h"

#include "search/tablebases.h"
#include "syzygy/tbprobe_position.h"

namespace quon::test {

std::string table_directories() {
    return QUON_SOURCE_DIR "/tests/data/syzygy;" QUON_SHARED_DIR "/data/syzygy";
}

std::vector<ReferenceRow> reference_rows() {
    std::vector<ReferenceRow> rows;
    const std::vector<std::string> lines = shared_lines("/data/syzygy/reference.csv");
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = split(lines[i], ';');
        ReferenceRow row{cells.at(0), std::stoi(cells.at(1)), std::nullopt};
        if (cells.size() > 2 && !cells[2].empty()) row.dtz = std::stoi(cells[2]);
        rows.push_back(row);
    }
    return rows;
}

LoadedTables::LoadedTables() {
    captured_output([] { tb_init(table_directories()); });
}

LoadedTables::~LoadedTables() { tb_init(""); }

ProbePosition probe_of(const std::string& fen) {
    const auto loaded = make_game(fen);
    return probe_position(loaded->position, loaded->position.fifty);
}

namespace {

// The set of squares that another set's become.
Bitboard mapped(Bitboard b, int mirror) {
    Bitboard result = 0;
    while (b) result |= bit(pop_square(b) ^ mirror);
    return result;
}

ProbePosition reflected(ProbePosition p, int mirror) {
    for (u64* set :
         {&p.white, &p.black, &p.kings, &p.queens, &p.rooks, &p.bishops, &p.knights, &p.pawns}) {
        *set = mapped(*set, mirror);
    }
    if (p.ep != 0) p.ep ^= u8(mirror);
    return p;
}

}  // namespace

ProbePosition colors_exchanged(const ProbePosition& p) {
    ProbePosition exchanged = reflected(p, 56);
    std::swap(exchanged.white, exchanged.black);
    exchanged.turn ^= 1;
    return exchanged;
}

ProbePosition mirrored(const ProbePosition& p) { return reflected(p, 7); }

ProbePosition random_position(const std::string& name, Random& random) {
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
