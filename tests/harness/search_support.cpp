#include "harness/search_support.h"

#include "engine/output.h"
#include "platform/clock.h"
#include "search/time.h"

namespace quon::test {

SearchRig::SearchRig(int hash_mb, int threads)
    : saved_options(options), saved_settings(settings), saved_limits(limits), saved_params(params) {
    settings.hash_mb = i16(hash_mb);
    set_log_enabled(false);
    options.output_delay = NEVER;
    limits.time_mode = 1;
    limits.fixed_time = 10000000;
    limits.max_nodes = 0;
    set_game(START_FEN);
    apply_search_params(search_params, params);
    if (!hash_alloc(engine.hash, settings.hash_mb) || !create_threads(engine, threads))
        ADD_FAILURE() << "no memory, or no threads";
}

SearchRig::~SearchRig() {
    destroy_threads(engine);
    hash_free(engine.hash);
    options = saved_options;
    settings = saved_settings;
    limits = saved_limits;
    params = saved_params;
    derive_tables(engine);
    control.go_request = NO_SEARCH;
    control.search_mode = NO_SEARCH;
    control.stop_flag = RUN;
}

SearchResult SearchRig::search(std::string_view fen, int depth) {
    set_game(fen);
    hash_clear(engine.hash);
    return search_game(depth);
}

SearchResult SearchRig::search_game(int depth) {
    start(depth);
    while (busy_threads(engine) != 0) {
        time_check(engine);
        sleep_ms(1);
    }
    return result();
}

void SearchRig::start(int depth) {
    limits.depth_limit = u8(depth);
    control.go_request = GO_PLAY;
    begin_search(engine);
    if (thread_total(engine) > 1) {
        start_search_threads(engine);
        return;
    }
    thread_prepare(thread_data(engine, 0));
    iterate(thread_data(engine, 0));
}

SearchResult SearchRig::result() {
    wait_for_idle_threads(engine);
    collect_stats(engine);
    SearchResult result{run.shared_score, run.shared_depth, totals.nodes, {}};
    for (int i = 1; i < MAX_PLY && run.shared_line[i] != NO_MOVE; ++i) {
        result.line.push_back(run.shared_line[i]);
    }
    return result;
}

void set_game(std::string_view fen, std::string_view moves) {
    (void)position_from_fen(game.position, fen);
    ASSERT_EQ(position_problem(game.position), nullptr) << fen;
    if (moves.empty()) return;
    for (const std::string& text : split(moves, ' ')) {
        const Move move = parse_coordinates(game.position, text);
        ASSERT_NE(move, NO_MOVE) << text << " in " << fen;
        make_move(game.position, move);
    }
}

std::string line_text(const std::vector<Move>& line) {
    std::string text;
    for (const Move move : line) {
        if (!text.empty()) text += ' ';
        text += move_to_text(move);
    }
    return text;
}

std::string line_problem(std::string_view fen, const std::vector<Move>& line, bool mate) {
    const auto played = make_game(fen);
    for (const Move move : line) {
        if (!is_pseudo_legal(played->position, move) || !is_legal(played->position, move)) {
            return move_to_text(move) + " is not legal in " + line_text(line);
        }
        make_move(played->position, move);
    }
    const bool mated = in_check(played->position) && !has_legal_move(played->position);
    return mate && !mated ? "no mate: " + line_text(line) : "";
}

std::string copy_problem(const ThreadData& t) {
    const Position& own = t.position;
    const Position& master = game.position;
    if (own.owner != &t) return "owner";
    if (position_to_fen(own) != position_to_fen(master)) return "board";
    if (own.key != master.key || own.fifty != master.fifty) return "key or fifty";
    if (t.game_ply != game.game_ply || t.last_move != game.last_move) return "record";
    if (t.ply != 1 || t.ext_acc % 16 != t.ext_acc) return "ply";
    return std::string(verify(own));
}

}  // namespace quon::test
