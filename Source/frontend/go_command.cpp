// The "go" command: one table of keywords, applied in its order, and the list of root moves.

#include "frontend/uci.h"

#include <algorithm>
#include <limits>
#include <string>

#include "board/legality.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "search/control.h"
#include "search/run.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr u8 PERIOD = 40;  // time_mode under "movestogo"

double ms_to_seconds(i64 ms) { return double(ms) / 1000; }

void set_clock(Engine& engine, int color, i64 ms) {
    engine.limits.clock[color] = ms_to_seconds(std::max<i64>(ms, 0));
}

// Only the mover's increment counts.
void set_increment(Engine& engine, int color, i64 ms) {
    if (engine.game.position.side == color) engine.limits.increment = ms_to_seconds(ms);
}

void set_moves_to_go(Engine& engine, i64 moves) {
    if (moves < 0) return engine_print("info string movestogo below 0 is ignored");
    engine.limits.time_mode = PERIOD;
    engine.limits.moves_to_go = i16(std::min<i64>(moves, std::numeric_limits<i16>::max()));
    engine.limits.depth_limit = NO_DEPTH_LIMIT;
    engine.limits.max_nodes = 0;
}

void set_endless(Engine& engine) {
    engine.limits.fixed_time = ENDLESS_SECONDS;
    engine.limits.time_mode = FIXED_TIME;
}

void set_depth(Engine& engine, i64 depth) {
    set_endless(engine);
    engine.limits.depth_limit = to_depth_limit(depth);
}

void set_nodes(Engine& engine, i64 nodes) {
    set_endless(engine);
    engine.limits.max_nodes = std::max<i64>(nodes, 0);
}

void set_move_time(Engine& engine, i64 ms) {
    engine.limits.fixed_time = ms_to_seconds(ms);
    engine.limits.time_mode = FIXED_TIME;
    engine.limits.increment = 0;
}

// Neither clock nor limits of before.
void lift_limits(Engine& engine) {
    set_endless(engine);
    engine.limits.depth_limit = NO_DEPTH_LIMIT;
    engine.limits.max_nodes = 0;
}

void set_mate(Engine& engine, i64 moves) {
    lift_limits(engine);
    engine.limits.mate_moves = int(std::clamp<i64>(moves, 1, NO_DEPTH_LIMIT / 2));
}

void set_infinite(Engine& engine) {
    lift_limits(engine);
    engine.limits.increment = 0;
}

struct Keyword {
    std::string_view word;
    void (*apply)(Engine& engine, i64 value);
};

constexpr Keyword KEYWORDS[] = {
    {"wtime", [](Engine& engine, i64 value) { set_clock(engine, WHITE, value); }},
    {"btime", [](Engine& engine, i64 value) { set_clock(engine, BLACK, value); }},
    {"winc", [](Engine& engine, i64 value) { set_increment(engine, WHITE, value); }},
    {"binc", [](Engine& engine, i64 value) { set_increment(engine, BLACK, value); }},
    {"movestogo", set_moves_to_go},
    {"mate", set_mate},
    {"depth", set_depth},
    {"nodes", set_nodes},
    {"movetime", set_move_time},
    {"infinite", [](Engine& engine, i64) { set_infinite(engine); }},
    {"ponder", [](Engine& engine, i64) { engine.control.go_request = GO_PONDER; }},
};

constexpr std::string_view SEARCH_MOVES = "searchmoves";

// The words behind "searchmoves" up to the next keyword.
void read_search_moves(Engine& engine, std::string_view rest) {
    const std::size_t at = rest.find(SEARCH_MOVES);
    if (at == std::string_view::npos) return;
    const auto is_keyword = [](std::string_view word) {
        return std::any_of(std::begin(KEYWORDS), std::end(KEYWORDS),
                           [&](const Keyword& keyword) { return keyword.word == word; });
    };
    std::string_view words = text_from(rest, at + SEARCH_MOVES.size());
    std::string named;
    for (std::string_view word = take_token(words, " "); !word.empty() && !is_keyword(word);
         word = take_token(words, " ")) {
        named += ' ' + std::string(word);
        const Move move = parse_coordinates(engine.game.position, word);
        if (can_be_made(engine.game.position, move)) engine.limits.search_moves.push_back(move);
    }
    if (engine.limits.search_moves.empty()) {
        engine_print("info string no legal move in searchmoves" + named);
    }
}

}  // namespace

void go_command(Engine& engine, std::string_view rest) {
    engine.control.stop_flag = ABORT;
    engine.limits.time_mode = CLOCK_TIME;
    engine.control.go_request = GO_PLAY;
    engine.limits.search_moves.clear();
    engine.limits.mate_moves = 0;
    for (const Keyword& keyword : KEYWORDS) {
        const std::size_t at = rest.find(keyword.word);
        if (at == std::string_view::npos) continue;
        keyword.apply(engine,
                      to_integer(first_word(text_from(rest, at + keyword.word.size() + 1))));
    }
    read_search_moves(engine, rest);
}

}  // namespace quon
