// The moves that a book knows in a position, and the draw among the good ones.

#include "book/book_pick.h"

#include <algorithm>
#include <cmath>

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "search/picker.h"

namespace quon {

namespace {

// The share of points that a good move must have exceeded, by the side to move.
constexpr float MIN_SHARE[] = {0.45F, 0.41F};
constexpr int MIN_GAMES = 9;  // not lost

// The legal moves, with the orders by which the promising ones are tried first.
void list_moves(const Position& p, std::vector<MoveEntry>& moves) {
    moves.resize(MAX_LIST);
    const MoveEntry* const end = gen_all(p, moves.data());
    moves.resize(std::size_t(end - moves.data()));
    std::erase_if(moves, [&](const MoveEntry& entry) { return !is_legal(p, entry.move); });
    for (MoveEntry& entry : moves) {
        const bool tactical = entry.captured || (entry.move & PROMOTE_QUEEN);
        entry.order = i16(tactical ? capture_order(entry) : 0);
    }
    moves.push_back({LIST_END, 0, 0, 0});
}

std::optional<BookRecord> record_after(Book& book, Position& p, Move move) {
    make_move(p, move);
    const BookKey key = record_key(p);
    unmake_move(p);
    return book_find(book, key);
}

BookMove judge(Move move, const BookRecord& r, float min_share) {
    const float points = float(r.wins) + 0.5F * float(r.draws);
    const float share = points / float(game_count(r));
    const bool good = r.wins + r.draws >= MIN_GAMES && share > min_share;
    return {move, r, share, good, good ? std::log(double(points)) : 0.0};
}

}  // namespace

std::optional<std::vector<BookMove>> book_moves(Book& book, Position& p) {
    if (!book_in_use(book) || position_problem(p) != nullptr) return std::nullopt;
    // A game that has left the book does not come back.
    if (p.owner->game_ply > 0 && !book_find(book, record_key(p))) return std::nullopt;
    std::vector<MoveEntry> list;
    list_moves(p, list);
    UndoRecord& next = p.owner->undo[p.owner->game_ply];
    const UndoRecord redo = next;  // what can be played again stays so
    std::vector<BookMove> known;
    for (MoveEntry* entry = list.data(); select_best(entry); ++entry) {
        const auto record = record_after(book, p, entry->move);
        if (!record || record->wins + record->draws == 0) continue;
        known.push_back(judge(entry->move, *record, MIN_SHARE[p.side]));
    }
    next = redo;
    return known;
}

std::optional<BookMove> draw_book_move(const std::vector<BookMove>& moves, int variety,
                                       Random& random) {
    double largest = 0;
    for (const BookMove& move : moves) largest = std::max(largest, move.weight);
    std::optional<BookMove> chosen;
    double best = 0;
    for (const BookMove& move : moves) {
        if (!move.good) continue;
        const double value = 2 * 0.01 * draw(random, variety) * largest + move.weight;
        if (value <= best) continue;
        chosen = move;
        best = value;
    }
    return chosen;
}

}  // namespace quon
