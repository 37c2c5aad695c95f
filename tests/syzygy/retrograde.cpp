#include "syzygy/retrograde.h"

#include <array>
#include <memory>

namespace quon::test {
namespace {

constexpr bool on_board(int piece, int at) {
    return piece != PAWN || (rank_of(at) != 0 && rank_of(at) != 7);
}

// Squares the piece attacks; a black king behind which it looks further is left out of the
// occupancy, so that he cannot flee along the line.
Bitboard attacks(int piece, int king, int at) {
    switch (piece) {
        case PAWN: return pawn_attacks[WHITE][at];
        case KNIGHT: return knight_attacks[at];
        case BISHOP: return bishop_attacks(at, bit(king));
        case ROOK: return rook_attacks(at, bit(king));
        default: return rook_attacks(at, bit(king)) | bishop_attacks(at, bit(king));
    }
}

void find_legal(Solution& s) {
    for (int king = 0; king < 64; ++king) {
        for (int at = 0; at < 64; ++at) {
            if (king == at || !on_board(s.piece, at)) continue;
            const Bitboard free = ~(king_attacks[king] | bit(king) | bit(at));
            s.legal[BLACK][king][at] = free;
            s.legal[WHITE][king][at] = free & ~attacks(s.piece, king, at);
        }
    }
}

void record(Solution& s, int side, int king, int at, Bitboard squares, int dtz) {
    squares &= s.legal[side][king][at] & ~s.won[side][king][at];
    s.won[side][king][at] |= squares;
    while (squares) s.dtz[side][king][at][pop_square(squares)] = i8(dtz);
}

// Black king squares from which White's move of the pawn wins.
Bitboard won_by_pawn(const Solution& s, int king, int at) {
    Bitboard wins = 0;
    const int ahead = at + 8;
    if (ahead == king) return 0;
    if (rank_of(ahead) == 7) {
        for (const int promoted : {QUEEN, ROOK, BISHOP, KNIGHT}) {
            wins |= solution(promoted).won[BLACK][king][ahead];
        }
        return wins;
    }
    wins |= s.won[BLACK][king][ahead];
    const int beyond = at + 16;
    if (rank_of(at) == 1 && beyond != king) wins |= s.won[BLACK][king][beyond] & ~bit(ahead);
    return wins;
}

// Black king squares from which another move of White wins.
Bitboard won_by_piece(const Solution& s, int king, int at) {
    Bitboard wins = 0;
    for (Bitboard moves = king_attacks[king] & ~bit(at); moves;) {
        wins |= s.won[BLACK][pop_square(moves)][at];
    }
    if (s.piece == PAWN) return wins;
    // A black king in the way of the piece would be in check with White to move.
    for (Bitboard moves = attacks(s.piece, king, at) & ~bit(king); moves;) {
        wins |= s.won[BLACK][king][pop_square(moves)];
    }
    return wins;
}

enum Replies { MATED, STALEMATED, FREE };

// Squares the black king can go to; without any, whether he is in check.
Replies replies(const Solution& s, int king, int at, int enemy, Bitboard& moves) {
    const Bitboard attacked = attacks(s.piece, king, at);
    moves = king_attacks[enemy] & ~attacked & ~king_attacks[king];
    if (moves) return FREE;
    return has(attacked, enemy) ? MATED : STALEMATED;
}

// Black king squares, of those not known as lost, where he is mated or every move loses.
Bitboard lost(const Solution& s, int king, int at, Replies wanted) {
    Bitboard squares = 0;
    for (Bitboard open = s.legal[BLACK][king][at] & ~s.won[BLACK][king][at]; open;) {
        const int enemy = pop_square(open);
        Bitboard moves;
        if (replies(s, king, at, enemy, moves) != wanted) continue;
        // The square of the piece is in no set, so that a capture saves him.
        if ((moves & ~s.won[WHITE][king][at]) == 0) squares |= bit(enemy);
    }
    return squares;
}

// Finds the wins in 1, 2, 3 ... plies with the piece on the squares, and others as far as its moves
// reach. Pawn moves lead to squares that are solved already.
void solve(Solution& s, Bitboard squares) {
    const auto each = [&](const auto& visit) {
        for (int king = 0; king < 64; ++king) {
            for (Bitboard rest = squares & ~bit(king); rest;) visit(king, pop_square(rest));
        }
    };
    each([&](int king, int at) { record(s, BLACK, king, at, lost(s, king, at, MATED), -1); });
    if (s.piece == PAWN) {
        each([&](int king, int at) { record(s, WHITE, king, at, won_by_pawn(s, king, at), 1); });
    }
    for (int plies = 1, found = 1; found; plies += 2) {
        found = 0;
        each([&](int king, int at) {
            record(s, WHITE, king, at, won_by_piece(s, king, at), plies);
        });
        each([&](int king, int at) {
            const Bitboard now = lost(s, king, at, FREE);
            found |= now != 0;
            record(s, BLACK, king, at, now, -(plies + 1));
        });
    }
}

std::unique_ptr<Solution> solved(int piece) {
    auto s = std::make_unique<Solution>();
    s->piece = piece;
    find_legal(*s);
    if (piece == PAWN) {
        for (int rank = 6; rank >= 1; --rank) {
            for (int file = 0; file < 8; ++file) solve(*s, bit(make_square(file, rank)));
        }
    } else {
        solve(*s, ~Bitboard{0});
    }
    return s;
}

}  // namespace

const Solution& solution(int piece) {
    static std::array<std::unique_ptr<Solution>, KING> solutions;
    if (!solutions[size_t(piece)]) solutions[size_t(piece)] = solved(piece);
    return *solutions[size_t(piece)];
}

ProbePosition probe_position(int piece, int strong, int side, int king, int at, int enemy) {
    const Bitboard own = bit(relative_square(strong, king));
    const Bitboard other = bit(relative_square(strong, enemy));
    const Bitboard third = bit(relative_square(strong, at));
    ProbePosition p{};
    (strong == WHITE ? p.white : p.black) = own | third;
    (strong == WHITE ? p.black : p.white) = other;
    p.kings = own | other;
    Bitboard* const sets[] = {&p.pawns, &p.knights, &p.bishops, &p.rooks, &p.queens};
    *sets[piece - PAWN] = third;
    p.turn = side == strong;  // WHITE is 0
    return p;
}

bool black_takes(int king, int at, int enemy) {
    return has(king_attacks[enemy] & ~king_attacks[king], at);
}

}  // namespace quon::test
