// The candidates of a position, and the draw among them.

#include "book/book_pick.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "book/book.h"
#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "search/picker.h"

namespace quon {

namespace {

// The share of points that a move must have exceeded, by the side to move.
constexpr float MIN_SHARE[] = {0.45F, 0.41F};
constexpr int MIN_GAMES = 9;  // not lost

struct Candidate {
    Move move;
    double weight;  // logarithm of its points
};

std::string line_start() { return options.uci_mode ? "info string " : " "; }

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

std::optional<BookRecord> record_after(Position& p, Move move) {
    make_move(p, move);
    const BookKey key = record_key(p);
    unmake_move(p);
    return book_find(key);
}

// Prints the record of a move, and adds the move to the candidates if it did well enough.
void judge(const BookRecord& r, Move move, float min_share, std::vector<Candidate>& candidates) {
    const int not_lost = r.wins + r.draws;
    if (not_lost == 0) return;
    const float points = float(r.wins) + 0.5F * float(r.draws);
    const float share = points / float(game_count(r));
    if (not_lost >= MIN_GAMES && share > min_share) {
        candidates.push_back({move, std::log(double(points))});
    }
    const std::string row = format("  %s   %0.1f%%   %5d  %5d  %5d", move_to_text(move).c_str(),
                                   double(100 * share), r.wins, r.losses, r.draws);
    engine_print(line_start() + row);
}

std::vector<Candidate> find_candidates(Position& p) {
    std::vector<Candidate> candidates;
    std::vector<MoveEntry> moves;
    list_moves(p, moves);
    const float min_share = MIN_SHARE[p.side];
    engine_print(line_start() + "  move  result    wins losses  draws");
    UndoRecord& next = p.owner->undo[p.owner->game_ply];
    const UndoRecord redo = next;  // what can be played again stays so
    for (MoveEntry* entry = moves.data(); select_best(entry); ++entry) {
        if (const auto record = record_after(p, entry->move)) {
            judge(*record, entry->move, min_share, candidates);
        }
    }
    next = redo;
    return candidates;
}

// Chance adds up to a share of the largest weight to every candidate's own.
Move choose_by_chance(const std::vector<Candidate>& candidates) {
    double largest = 0;
    for (const Candidate& candidate : candidates) largest = std::max(largest, candidate.weight);
    Move chosen = NO_MOVE;
    double best = 0;
    for (const Candidate& candidate : candidates) {
        const int chance = std::rand() % options.book_variety;
        const double value = 2 * 0.01 * chance * largest + candidate.weight;
        if (value <= best) continue;
        chosen = candidate.move;
        best = value;
    }
    return chosen;
}

}  // namespace

Move book_pick(Position& p) {
    if (!book_in_use() || position_problem(p) != nullptr) return NO_MOVE;
    // A game that has left the book does not come back.
    if (p.owner->game_ply > 0 && !book_find(record_key(p))) return NO_MOVE;
    return choose_by_chance(find_candidates(p));
}

void book_show(Position& p, bool announce) {
    const Move move = book_pick(p);
    if (announce && move != NO_MOVE) {
        engine_print(format("book move is %s\n", move_to_text(move).c_str()));
    }
}

}  // namespace quon
