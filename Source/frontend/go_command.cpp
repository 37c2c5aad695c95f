// The "go" command: one table of keywords, applied in its order.

#include "frontend/go_command.h"

#include <algorithm>
#include <limits>

#include "frontend/engine_options.h"
#include "frontend/words.h"
#include "search/control.h"
#include "search/run.h"

namespace quon {

namespace {

constexpr u8 PERIOD = 40;  // time_mode under "movestogo"

double ms_to_seconds(i64 ms) { return double(ms) / 1000; }

void set_clock(int color, i64 ms) { limits.clock[color] = ms_to_seconds(std::max<i64>(ms, 0)); }

// Only the mover's increment counts.
void set_increment(int color, i64 ms) {
    if (game.position.side == color) limits.increment = ms_to_seconds(ms);
}

void set_moves_to_go(i64 moves) {
    limits.time_mode = PERIOD;
    limits.moves_to_go = i16(std::clamp<i64>(moves, 0, std::numeric_limits<i16>::max()));
    limits.depth_limit = NO_DEPTH_LIMIT;
    limits.max_nodes = 0;
}

void set_endless() {
    limits.fixed_time = ENDLESS_SECONDS;
    limits.time_mode = FIXED_TIME;
}

void set_depth(i64 depth) {
    set_endless();
    limits.depth_limit = to_depth_limit(depth);
}

void set_nodes(i64 nodes) {
    set_endless();
    limits.max_nodes = std::max<i64>(nodes, 0);
}

void set_move_time(i64 ms) {
    limits.fixed_time = ms_to_seconds(ms);
    limits.time_mode = FIXED_TIME;
    limits.increment = 0;
}

void set_infinite() {
    set_endless();
    limits.depth_limit = NO_DEPTH_LIMIT;
    limits.max_nodes = 0;
    limits.increment = 0;
}

struct Keyword {
    std::string_view word;
    void (*apply)(i64 value);
};

constexpr Keyword KEYWORDS[] = {
    {"wtime", [](i64 value) { set_clock(WHITE, value); }},
    {"btime", [](i64 value) { set_clock(BLACK, value); }},
    {"winc", [](i64 value) { set_increment(WHITE, value); }},
    {"binc", [](i64 value) { set_increment(BLACK, value); }},
    {"movestogo", set_moves_to_go},
    {"depth", set_depth},
    {"nodes", set_nodes},
    {"movetime", set_move_time},
    {"infinite", [](i64) { set_infinite(); }},
    {"ponder", [](i64) { control.go_request = GO_PONDER; }},
};

}  // namespace

void go_command(std::string_view rest) {
    control.stop_flag = ABORT;
    limits.time_mode = CLOCK_TIME;
    control.go_request = GO_PLAY;
    for (const Keyword& keyword : KEYWORDS) {
        const std::size_t at = rest.find(keyword.word);
        if (at == std::string_view::npos) continue;
        keyword.apply(to_integer(first_word(text_from(rest, at + keyword.word.size() + 1))));
    }
}

}  // namespace quon
