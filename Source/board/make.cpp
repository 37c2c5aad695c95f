// Make and unmake.

#include "board/make.h"

#include <algorithm>
#include <cassert>

#include "board/keys.h"
#include "board/verify.h"

namespace quon {

namespace {

// Rights lost when a piece leaves or enters the square.
constexpr Table<u8, 64> castle_loss() {
    Table<u8, 64> loss{};
    for (const Castling& way : CASTLINGS) {
        loss[way.king_from] |= way.right;
        loss[way.rook_from] |= way.right;
    }
    return loss;
}
constexpr Table<u8, 64> CASTLE_LOSS = castle_loss();

Move move_below_top(const GameRecord& record) {
    return record.game_ply > 0 ? record.undo[record.game_ply - 1].move : NO_MOVE;
}

void finish_pawn_move(Position& p, int us, Move move, int old_ep) {
    const int from = move_from(move);
    const int to = move_to(move);
    p.fifty = 0;
    if (to == from + 2 * forward(us)) {
        p.ep = u8(from + forward(us));
    } else if (to == old_ep) {
        const int taken = to - forward(us);
        remove_piece(p, taken);
        toggle_key(p, make_piece(us ^ 1, PAWN), taken);
    } else if (move & PROMOTION_MASK) {
        remove_piece(p, to);
        toggle_key(p, make_piece(us, PAWN), to);
        const int promoted = make_piece(us, promotion_type(move));
        place_piece(p, promoted, to);
        toggle_key(p, promoted, to);
    }
}

}  // namespace

void make_move(Position& p, Move move) {
    const int from = move_from(move);
    const int to = move_to(move);
    const int us = p.side;
    const int piece = p.board[from];
    const int captured = p.board[to];
    const int old_ep = p.ep;
    assert(piece != 0 && color_of(piece) == us);
    assert(captured == 0 || (color_of(captured) != us && type_of(captured) != KING));

    GameRecord& record = *p.owner;
    record.undo[record.game_ply] = {p.key, p.pawn_key, move,    u8(type_of(captured)),
                                    p.ep,  p.fifty,    p.castle};
    ++record.game_ply;
    ++record.ply;
    record.last_move = move;

    p.castle = u8(p.castle & ~(CASTLE_LOSS[from] | CASTLE_LOSS[to]));
    p.side ^= 1;
    p.ep = NO_SQUARE;
    ++p.fifty;

    if (captured) {
        remove_piece(p, to);
        toggle_key(p, captured, to);
        p.fifty = 0;
    }
    move_piece(p, piece, from, to);
    toggle_key(p, piece, from);
    toggle_key(p, piece, to);

    if (type_of(piece) == PAWN) {
        finish_pawn_move(p, us, move, old_ep);
    } else if (is_castling(type_of(piece), from, to)) {
        const Castling& way = castling(us, to > from);
        const int rook = make_piece(us, ROOK);
        move_piece(p, rook, way.rook_from, way.rook_to);
        toggle_key(p, rook, way.rook_from);
        toggle_key(p, rook, way.rook_to);
        p.fifty = 0;
    }
}

void unmake_move(Position& p) {
    GameRecord& record = *p.owner;
    assert(record.game_ply > 0 && record.undo[record.game_ply - 1].move != NO_MOVE);
    --record.game_ply;
    --record.ply;
    const UndoRecord& last = record.undo[record.game_ply];
    record.last_move = move_below_top(record);

    p.ep = last.ep;
    p.castle = last.castle;
    p.fifty = last.fifty;
    p.side ^= 1;
    const int us = p.side;
    const int from = move_from(last.move);
    const int to = move_to(last.move);
    const int type = type_of(p.board[to]);

    move_piece(p, p.board[to], to, from);
    if (last.captured) {
        place_piece(p, make_piece(us ^ 1, last.captured), to);
    } else if (type == PAWN && to == last.ep) {
        place_piece(p, make_piece(us ^ 1, PAWN), to - forward(us));
    } else if (is_castling(type, from, to)) {
        const Castling& way = castling(us, to > from);
        move_piece(p, make_piece(us, ROOK), way.rook_to, way.rook_from);
    }
    if (last.move & PROMOTION_MASK) {
        remove_piece(p, from);
        place_piece(p, make_piece(us, PAWN), from);
    }
    p.key = last.key;
    p.pawn_key = last.pawn_key;
}

void make_null_move(Position& p) {
    GameRecord& record = *p.owner;
    UndoRecord& next = record.undo[record.game_ply];
    next.key = p.key;
    next.move = NO_MOVE;
    next.captured = 0;
    next.ep = p.ep;
    next.fifty = p.fifty;
    next.castle = p.castle;
    ++record.game_ply;
    ++record.ply;
    record.last_move = NO_MOVE;
    ++p.fifty;
    p.ep = NO_SQUARE;
    p.side ^= 1;
}

void unmake_null_move(Position& p) {
    GameRecord& record = *p.owner;
    assert(record.game_ply > 0 && record.undo[record.game_ply - 1].move == NO_MOVE);
    --record.game_ply;
    --record.ply;
    const UndoRecord& last = record.undo[record.game_ply];
    p.ep = last.ep;
    p.castle = last.castle;
    p.fifty = last.fifty;
    p.key = last.key;
    p.side ^= 1;
    record.last_move = move_below_top(record);
}

void make_game_move(Game& game, Move move) {
    if (game.game_ply >= MAX_GAME_PLIES) {
        constexpr int kept = MAX_GAME_PLIES / 2;
        std::copy_n(game.undo.begin() + (game.game_ply - kept), kept, game.undo.begin());
        game.game_ply = kept;
    }
    make_move(game.position, move);
    assert(verify(game.position).empty());
}

}  // namespace quon
