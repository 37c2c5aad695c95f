// Make and unmake: every redundant field, the keys, the game record, the order of the lists.

#include "board/make.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "board/fen.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

using Lists = std::array<std::vector<int>, 16>;

Lists lists_of(const Position& p) {
    Lists lists;
    for (int piece = 0; piece < 16; ++piece) {
        for (const u8* s = p.plist[piece].begin(); *s != NO_SQUARE; ++s) {
            lists[std::size_t(piece)].push_back(*s);
        }
    }
    return lists;
}

// A position with its place in the game.
struct Snapshot {
    Position position;
    int game_ply, ply;
    Move last_move;
};
Snapshot snapshot(const Game& game) {
    return {game.position, game.game_ply, game.ply, game.last_move};
}

// side, castle, ep, fifty, game_ply, ply, last_move
using State = std::array<int, 7>;
State state_of(const Snapshot& s) {
    const Position& p = s.position;
    return {p.side, p.castle, p.ep, p.fifty, s.game_ply, s.ply, s.last_move};
}

void expect_same(const Game& game, const Snapshot& before) {
    const Position& p = game.position;
    ASSERT_TRUE(std::equal(p.board.begin(), p.board.end(), before.position.board.begin()));
    ASSERT_EQ(inconsistency(p), "");
    ASSERT_EQ(state_of(snapshot(game)), state_of(before));
    ASSERT_EQ(p.owner, &game);
}

// What a move, or a pass (move 0), makes of the state before it.
State expected_state(const Snapshot& before, const Position& after, Move move) {
    struct Home {
        int right, king, king_code, rook, rook_code;
    };
    constexpr Home HOMES[] = {
        {1, 4, 6, 7, 4}, {2, 4, 6, 0, 4}, {4, 60, 14, 63, 12}, {8, 60, 14, 56, 12}};
    const Position& p = before.position;
    int castle = 0;
    for (const Home& home : HOMES) {
        const bool at_home =
            after.board[home.king] == home.king_code && after.board[home.rook] == home.rook_code;
        if ((p.castle & home.right) && at_home) castle |= home.right;
    }
    const int from = move_from(move);
    const int to = move_to(move);
    const int type = move == NO_MOVE ? 0 : type_of(p.board[from]);
    const int distance = std::abs(to - from);
    const int ep = type == PAWN && distance == 16 ? (from + to) / 2 : NO_SQUARE;
    const bool castled = type == KING && distance == 2;
    const bool progress = type == PAWN || castled || (type != 0 && p.board[to] != 0);
    const int fifty = progress ? 0 : p.fifty + 1;
    return {p.side ^ 1, castle, ep, fifty, before.game_ply + 1, before.ply + 1, move};
}

TEST(Make, RandomGamesThereAndBack) {
    constexpr const char* STARTS[] = {
        START_FEN,
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
        "r3k2r/1P4p1/8/p2Pp2p/P2pPp1P/8/1p4P1/R3K2R b KQkq e3",
        "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
    };
    Random random(11);
    for (int number = scaled(1000); number > 0; --number) {
        const auto game = make_game(STARTS[number % 4]);
        std::vector<Snapshot> before;
        for (int ply = 0; ply < 100; ++ply) {
            const std::vector<Move> moves = legal_moves(game->position);
            if (moves.empty()) break;
            before.push_back(snapshot(*game));
            const bool pass = !in_check(game->position) && pick(random, 16) == 0;
            const Move move = pass ? NO_MOVE : moves[random() % moves.size()];
            pass ? make_null_move(game->position) : make_move(game->position, move);
            ASSERT_EQ(state_of(snapshot(*game)),
                      expected_state(before.back(), game->position, move));
            ASSERT_EQ(inconsistency(game->position), "") << position_to_fen(game->position);
        }
        while (!before.empty()) {
            game->last_move == NO_MOVE ? unmake_null_move(game->position)
                                       : unmake_move(game->position);
            ASSERT_NO_FATAL_FAILURE(expect_same(*game, before.back()));
            before.pop_back();
        }
    }
}

// The lists after a move, and after taking it back: a captured piece leaves a gap that closes, a
// new piece goes to the end.
struct ListOrder {
    Lists made, unmade;
};
ListOrder expected_order(const Position& p, Move move) {
    const int from = move_from(move);
    const int to = move_to(move);
    const int piece = p.board[from];
    const int us = p.side;
    Lists lists = lists_of(p);
    const auto take = [&](int code, int square) { std::erase(lists[std::size_t(code)], square); };
    const auto append = [&](int code, int square) { lists[std::size_t(code)].push_back(square); };
    const auto change = [&](int code, int old, int now) {
        std::replace(lists[std::size_t(code)].begin(), lists[std::size_t(code)].end(), old, now);
    };
    int victim = to;
    if (type_of(piece) == PAWN && to == p.ep) victim += us == WHITE ? -8 : 8;
    const int captured = p.board[victim];
    const bool castling = type_of(piece) == KING && std::abs(to - from) == 2;
    const int rook = us * 8 + ROOK;
    const int rook_from = to > from ? to + 1 : to - 2;
    const int rook_to = (from + to) / 2;

    if (captured) take(captured, victim);
    change(piece, from, to);
    if (castling) change(rook, rook_from, rook_to);
    const int promoted = us * 8 + promotion_type(move);
    if (promotion_type(move)) {
        take(piece, to);
        append(promoted, to);
    }
    ListOrder order{lists, {}};
    if (promotion_type(move)) {
        take(promoted, to);
        append(piece, from);
    } else {
        change(piece, to, from);
    }
    if (castling) change(rook, rook_to, rook_from);
    if (captured) append(captured, victim);
    order.unmade = lists;
    return order;
}

TEST(Make, OrderOfTheLists) {
    visit_random_positions(scaled(4000), 12, [](Game& game) {
        for (const Move move : legal_moves(game.position)) {
            const ListOrder expected = expected_order(game.position, move);
            make_move(game.position, move);
            ASSERT_EQ(lists_of(game.position), expected.made) << move;
            unmake_move(game.position);
            ASSERT_EQ(lists_of(game.position), expected.unmade) << move;
        }
    });
}

TEST(Make, RecordOfAMove) {
    const auto game = make_game("r3k2r/8/8/8/4Pp2/8/6B1/R3K2R b KQkq e3");
    Position& p = game->position;
    const Position before = p;
    make_move(p, make_code(29, 20));
    EXPECT_EQ(position_to_fen(p), "r3k2r/8/8/8/8/4p3/6B1/R3K2R w KQkq -");
    const UndoRecord& record = game->undo[0];
    EXPECT_EQ(record.key, before.key);
    EXPECT_EQ(record.pawn_key, before.pawn_key);
    EXPECT_EQ(record.move, make_code(29, 20));
    EXPECT_EQ(record.captured, 0);  // the pawn did not stand on the destination
    EXPECT_EQ(record.ep, 20);
    EXPECT_EQ(record.castle, 15);
    make_move(p, make_code(14, A8));
    EXPECT_EQ(game->undo[1].captured, ROOK);
}

TEST(GameMoves, MoreThanTheRecordHolds) {
    constexpr Move SHUFFLE[] = {make_code(6, 21), make_code(62, 45), make_code(21, 6),
                                make_code(45, 62)};
    const auto game = make_game(START_FEN);
    std::vector<u64> keys;
    for (int i = 0; i < 3 * MAX_GAME_PLIES + 1; ++i) {
        keys.push_back(game->position.key);
        make_game_move(*game, SHUFFLE[i % 4]);
        ASSERT_LE(game->game_ply, MAX_GAME_PLIES);
    }
    ASSERT_GE(game->game_ply, MAX_GAME_PLIES / 2);
    for (int back = 1; game->game_ply > 0; ++back) {
        ASSERT_EQ(game->undo[game->game_ply - 1].key, keys[keys.size() - std::size_t(back)]);
        unmake_move(game->position);
        ASSERT_EQ(game->position.key, keys[keys.size() - std::size_t(back)]);
    }
    ASSERT_EQ(inconsistency(game->position), "");
}

TEST(GameMoves, CopiesAreIndependent) {
    const auto game = make_game(START_FEN);
    Random random(13);
    play_random(*game, random, 30);
    const std::string fen = position_to_fen(game->position);
    const auto copy = std::make_unique<Game>();
    copy_game(*copy, *game);
    ASSERT_NO_FATAL_FAILURE(expect_same(*copy, snapshot(*game)));
    play_random(*copy, random, 20);
    while (copy->game_ply > 0) unmake_move(copy->position);
    EXPECT_EQ(position_to_fen(copy->position), START_FEN);
    EXPECT_EQ(position_to_fen(game->position), fen);
    EXPECT_EQ(game->game_ply, 30);
}

}  // namespace
}  // namespace quon::test
