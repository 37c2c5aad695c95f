// Material keys.

#include "syzygy/tbprobe_material.h"

#include <string_view>

#include "board/bitboard.h"
#include "board/fen.h"

namespace quon {

namespace {

// The bits of a mixing function.
constexpr Table<u64, 16> make_piece_keys() {
    Table<u64, 16> keys{};
    u64 state = 4;
    for (const int color : {WHITE, BLACK}) {
        for (int type = PAWN; type <= QUEEN; ++type) {
            state += 0x9E3779B97F4A7C15;
            u64 mixed = state;
            mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9;
            mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
            keys[make_piece(color, type)] = mixed ^ mixed >> 31;
        }
    }
    return keys;
}
constexpr auto PIECE_KEYS = make_piece_keys();

}  // namespace

TableMaterial material_of_name(std::string_view name) {
    TableMaterial material{};
    int color = WHITE;
    for (const char letter : name) {
        if (letter == 'v') {
            color = BLACK;
            continue;
        }
        ++material.counts[make_piece(color, type_of_letter(letter))];
        ++material.pieces;
    }
    material.symmetric =
        material_key(material.counts, false) == material_key(material.counts, true);
    material.has_pawns = material.counts[make_piece(WHITE, PAWN)] > 0 ||
                         material.counts[make_piece(BLACK, PAWN)] > 0;
    return material;
}

u64 material_key(const Table<u8, 16>& counts, bool exchanged) {
    u64 key = 0;
    for (const int color : {WHITE, BLACK}) {
        for (int type = PAWN; type <= QUEEN; ++type) {
            const int owner = exchanged ? color ^ 1 : color;
            key += counts[make_piece(color, type)] * PIECE_KEYS[make_piece(owner, type)];
        }
    }
    return key;
}

u64 material_key(const ProbePosition& position, bool exchanged) {
    const Bitboard of_type[] = {position.pawns, position.knights, position.bishops, position.rooks,
                                position.queens};
    Table<u8, 16> counts{};
    for (int type = PAWN; type <= QUEEN; ++type) {
        const Bitboard pieces = of_type[type - PAWN];
        counts[make_piece(WHITE, type)] = u8(popcount64(pieces & position.white));
        counts[make_piece(BLACK, type)] = u8(popcount64(pieces & position.black));
    }
    return material_key(counts, exchanged);
}

}  // namespace quon
