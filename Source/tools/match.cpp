// Playing the games of the match.

#include "tools/match.h"

#include <cstdlib>
#include <string>

#include "board/draw.h"
#include "board/fen.h"
#include "board/make.h"
#include "book/book_pick.h"
#include "eval/eval_tables.h"
#include "eval/param_file.h"
#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "frontend/progress.h"
#include "search/control.h"
#include "search/report.h"
#include "search/run.h"
#include "search/score.h"
#include "search/search_params.h"
#include "search/threads.h"
#include "search/time.h"
#include "tools/match_report.h"
#include "tools/output_file.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

constexpr char FIRST_PLAYER_FILE[] = "test1.rc";
constexpr int MAX_GAMES = 8000;
constexpr double SECONDS_PER_MOVE = 1.0;
constexpr i16 BOOK_VARIETY = 70;
constexpr int LAST_BOOK_PLY = 11;
constexpr int DECISIVE_SCORE = 1100;  // beyond it the game is over
constexpr int OCCURRENCES = 3;        // of a position that is drawn by repetition

struct Match {
    Table<EvalParams, 2> players;
    OutputFile file;
    MatchScore score;
    Progress progress;
};

void set_limits() {
    options.output_delay = NEVER;
    options.book_variety = BOOK_VARIETY;
    // So few nodes are searched that a table of several moves would only blur the comparison.
    options.hash_mode = 0;
    limits.time_mode = FIXED_TIME;
    limits.fixed_time = SECONDS_PER_MOVE;
    limits.clock = {{SECONDS_PER_MOVE, SECONDS_PER_MOVE}};
    // A little different from match to match, the same for both players.
    limits.max_nodes = (std::rand() % 11 + 95) * 750;
}

void use_params(const EvalParams& player) {
    params = player;
    init_eval_tables();
    apply_search_params();
}

void search_with_all_threads() {
    start_search_threads();
    while (busy_threads() != 0) {
        time_check();
        if (stopped()) {
            wait_for_idle_threads();
        } else {
            end_wished(1);
        }
    }
}

// Leaves the move, its score and its depth on the result board; no move when the game is drawn on
// the board, or when there is none.
void find_move() {
    control.go_request = GO_PLAY;
    time_setup();
    if (game.game_ply <= LAST_BOOK_PLY) {
        run.shared_line[1] = book_pick(game.position);
        run.shared_score = i16(DRAW_SCORE);
    }
    if (is_draw(game.position, OCCURRENCES) != 0) {
        run.shared_line[1] = NO_MOVE;
        run.shared_score = i16(DRAW_SCORE);
    } else if (run.shared_line[1] == NO_MOVE) {
        search_with_all_threads();
    }
}

Outcome outcome_of(const SearchedMove& found, const Position& p) {
    const bool white = p.side == WHITE;
    if (found.score < -DECISIVE_SCORE) return white ? Outcome::BLACK_WINS : Outcome::WHITE_WINS;
    if (found.score > DECISIVE_SCORE) return white ? Outcome::WHITE_WINS : Outcome::BLACK_WINS;
    return found.move == NO_MOVE || p.fifty > 99 ? Outcome::DRAW : Outcome::OPEN;
}

void show_status(Match& match, int number) {
    if (!progress_due(match.progress)) return;
    const double games_per_hour = (number - 1) * 3600 / progress_seconds(match.progress);
    show_progress(
        match.progress,
        format("game %d, move %d, %.0f games/h", number, game.game_ply / 2 + 1, games_per_hour),
        number - 1, MAX_GAMES);
}

// Plays until the game has an outcome; it stays open when the match is to end.
MatchGame play_game(Match& match, int number) {
    position_from_fen(game.position, START_FEN);
    MatchGame played{number, std::rand() & 1, Outcome::OPEN, {}};
    while (true) {
        use_params(match.players[game.position.side == played.first_player_color ? 0 : 1]);
        find_move();
        if (end_wished()) break;
        collect_stats();
        const SearchedMove found = {run.shared_line[1], run.shared_score, run.shared_depth};
        played.moves.push_back(found);
        played.outcome = outcome_of(found, game.position);
        if (played.outcome != Outcome::OPEN) break;
        make_game_move(game, found.move);
        show_status(match, number);
    }
    return played;
}

void finish_game(Match& match, const MatchGame& played) {
    count_game(match.score, played.outcome, played.first_player_color);
    engine_print(statistics_line(match.score));
    write_text(match.file, game_text(played));
    flush_output(match.file);
}

}  // namespace

bool run_match() {
    Match match{{{default_params, default_params}}, {}, {}, {}};
    if (!load_params(FIRST_PLAYER_FILE, match.players[0])) {
        print_unlogged(format("Can't open file %s\n", FIRST_PLAYER_FILE));
        return true;
    }
    if (overwrites_input(FIRST_PLAYER_FILE, options.match_file)) return false;
    if (!create_output(match.file, options.match_file)) {
        print_unlogged(format("can't open %s\n", options.match_file.c_str()));
        return true;
    }
    set_limits();
    engine_print("Starting match...");
    start_tool_input();
    match.progress = start_progress();
    for (int number = 1; number <= MAX_GAMES && !match.file.failed; ++number) {
        const MatchGame played = play_game(match, number);
        if (played.outcome == Outcome::OPEN) break;
        finish_game(match, played);
    }
    end_tool_input();
    end_progress();
    return close_output(match.file);
}

}  // namespace quon
