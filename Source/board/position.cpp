// The position's own operations: placing pieces, attack queries, plausibility.

#include "board/position.h"

#include <algorithm>
#include <cassert>

namespace quon {

bool square_attacked(const Position& p, int square, int by_side, Bitboard occupancy,
                     Bitboard attackers) {
    const auto& pieces = p.bb[by_side];
    const Bitboard steps = (pawn_attacks[by_side ^ 1][square] & pieces[PAWN]) |
                           (knight_attacks[square] & pieces[KNIGHT]) |
                           (king_attacks[square] & pieces[KING]);
    if (steps & attackers) return true;
    const Bitboard diagonal = (pieces[BISHOP] | pieces[QUEEN]) & attackers;
    if ((diag_lines[square] & diagonal) && (bishop_attacks(square, occupancy) & diagonal))
        return true;
    const Bitboard straight = (pieces[ROOK] | pieces[QUEEN]) & attackers;
    return (orth_lines[square] & straight) && (rook_attacks(square, occupancy) & straight);
}

void place_piece(Position& p, int piece, int square) {
    assert(p.board[square] == 0);
    const int color = color_of(piece);
    const int type = type_of(piece);
    auto& list = p.plist[piece];
    int end = 0;
    while (list[end] != NO_SQUARE) ++end;
    list[end] = u8(square);
    list[end + 1] = NO_SQUARE;
    p.board[square] = u8(piece);
    p.bb[color][0] ^= bit(square);
    p.bb[color][type] ^= bit(square);
    p.sig[color] += SIG_UNIT[type];
    p.npm[color] = u16(p.npm[color] + NPM_UNIT[type]);
}

void remove_piece(Position& p, int square) {
    const int piece = p.board[square];
    assert(piece != 0);
    const int color = color_of(piece);
    const int type = type_of(piece);
    auto& list = p.plist[piece];
    int at = 0;
    while (list[at] != square) ++at;
    do list[at] = list[at + 1];
    while (list[at++] != NO_SQUARE);
    p.board[square] = 0;
    p.bb[color][0] ^= bit(square);
    p.bb[color][type] ^= bit(square);
    p.sig[color] -= SIG_UNIT[type];
    p.npm[color] = u16(p.npm[color] - NPM_UNIT[type]);
}

void move_piece(Position& p, int piece, int from, int to) {
    assert(p.board[from] == piece && p.board[to] == 0);
    const int color = color_of(piece);
    auto& list = p.plist[piece];
    int at = 0;
    while (list[at] != from) ++at;
    list[at] = u8(to);
    p.board[from] = 0;
    p.board[to] = u8(piece);
    const Bitboard both = bit(from) | bit(to);
    p.bb[color][0] ^= both;
    p.bb[color][type_of(piece)] ^= both;
}

void clear_record(GameRecord& record) {
    record.game_ply = 0;
    record.ply = 1;
    record.last_move = NO_MOVE;
    record.undo[0] = {};
    record.undo[1] = {};
}

void clear_position(Position& p) {
    GameRecord& record = *p.owner;
    const u8 side = p.side;
    p = Position{};
    p.owner = &record;
    p.side = side;
    p.castle = 15;
    p.ep = NO_SQUARE;
    for (auto& list : p.plist) list[0] = NO_SQUARE;
    clear_record(record);
}

Game::Game() : GameRecord(), position() { position.owner = this; }

// Only the played part of the record is worth copying.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
Game::Game(const Game& other) : GameRecord(), position() { copy_game(*this, other); }

Game& Game::operator=(const Game& other) {
    if (this != &other) copy_game(*this, other);
    return *this;
}

void copy_game(Game& to, const Game& from) {
    std::copy_n(from.undo.begin(), from.game_ply + 1, to.undo.begin());
    to.game_ply = from.game_ply;
    to.ply = from.ply;
    to.last_move = from.last_move;
    to.position = from.position;
    to.position.owner = &to;
}

u8 supported_rights(const Position& p) {
    u8 rights = 0;
    for (const Castling& way : CASTLINGS) {
        const bool supported = p.board[way.king_from] == make_piece(way.color, KING) &&
                               p.board[way.rook_from] == make_piece(way.color, ROOK);
        if (supported) rights |= way.right;
    }
    return rights;
}

bool ep_was_passed(const Position& p) {
    if (p.ep == NO_SQUARE || relative_rank(p.side, p.ep) != 5) return false;
    const int pawn = p.ep - forward(p.side);
    const int origin = p.ep + forward(p.side);
    return p.board[p.ep] == 0 && p.board[origin] == 0 &&
           p.board[pawn] == make_piece(p.side ^ 1, PAWN);
}

const char* position_problem(const Position& p) {
    if (p.flaw == TextFlaw::TOO_MANY_PIECES) return "more than nine pieces of a kind";
    if (p.flaw == TextFlaw::OUTSIDE_BOARD) return "pieces outside the board";
    for (const int color : {WHITE, BLACK}) {
        if (popcount64(p.bb[color][KING]) != 1) {
            return color == WHITE ? "White needs one king" : "Black needs one king";
        }
    }
    if ((p.bb[WHITE][PAWN] | p.bb[BLACK][PAWN]) & (RANK_1 | RANK_8)) return "pawn on an end rank";
    if (square_attacked(p, king_square(p, p.side ^ 1), p.side)) return "king can be taken";
    if (p.ep != NO_SQUARE && !ep_was_passed(p)) return "en passant without a pawn that passed";
    return nullptr;
}

}  // namespace quon
