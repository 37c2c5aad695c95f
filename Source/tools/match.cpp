// Playing the games of the match: two engines in one process, each with parameters, threads and
// caches of its own. Book, random numbers and output are the first one's.

#include "tools/match.h"

#include <memory>
#include <optional>
#include <string>

#include "board/draw.h"
#include "board/fen.h"
#include "board/make.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/param_settings.h"
#include "engine/report.h"
#include "engine/search_report.h"
#include "search/control.h"
#include "search/run.h"
#include "search/score.h"
#include "search/threads.h"
#include "support/output_file.h"
#include "support/status_line.h"
#include "support/text.h"
#include "tools/match_report.h"
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
    Table<Engine*, 2> players;  // the challenger of test1.rc, then the engine as it started
    File file;
    MatchScore score;
    Progress progress;
};

void set_limits(Engine& engine) {
    engine.options.output_delay = NEVER;
    engine.options.book_variety = BOOK_VARIETY;
    // So few nodes are searched that a table of several moves would only blur the comparison.
    engine.settings.hash_mode = 0;
    engine.limits.time_mode = FIXED_TIME;
    engine.limits.fixed_time = SECONDS_PER_MOVE;
    engine.limits.clock = {{SECONDS_PER_MOVE, SECONDS_PER_MOVE}};
    // A little different from match to match, the same for both players.
    engine.limits.max_nodes = (draw(engine.random, 11) + 95) * 750;
}

// The challenger, ready to search; nothing if there is no memory for it.
std::unique_ptr<Engine> make_challenger(const Engine& engine, const EvalParams& params) {
    auto challenger = std::make_unique<Engine>();
    challenger->settings = engine.settings;
    challenger->limits = engine.limits;
    challenger->params = params;
    derive_tables(*challenger);
    if (!create_threads(*challenger, engine.settings.threads)) return nullptr;
    return challenger;
}

// False when the match is to end.
bool search_whole(Engine& engine, Engine& player) {
    bool going = true;
    search_and_wait(player, [&] { return going = keep_on(engine, 1); });
    return going;
}

// The player's move, its score and its depth; no move when the game is drawn on the board, or when
// there is none. Nothing when the match is to end.
std::optional<SearchedMove> find_move(Engine& engine, Engine& player) {
    player.control.go_request = GO_PLAY;
    begin_search(player);
    std::optional<BookMove> book;
    if (engine.game.game_ply <= LAST_BOOK_PLY) book = book_pick(engine);
    if (is_draw(player.game.position, OCCURRENCES) != 0)
        return SearchedMove{NO_MOVE, DRAW_SCORE, 0};
    if (book) return SearchedMove{book->move, DRAW_SCORE, 0};
    if (!search_whole(engine, player)) return std::nullopt;
    const SearchRun& run = player.run;
    return SearchedMove{run.shared_line[1], run.shared_score, run.shared_depth};
}

Outcome outcome_of(const SearchedMove& found, const Position& p) {
    const bool white = p.side == WHITE;
    if (found.score < -DECISIVE_SCORE) return white ? Outcome::BLACK_WINS : Outcome::WHITE_WINS;
    if (found.score > DECISIVE_SCORE) return white ? Outcome::WHITE_WINS : Outcome::BLACK_WINS;
    return found.move == NO_MOVE || p.fifty > 99 ? Outcome::DRAW : Outcome::OPEN;
}

void show_status(Engine& engine, Match& match, int number) {
    if (!progress_due(match.progress)) return;
    const double games_per_hour = (number - 1) * 3600 / progress_seconds(match.progress);
    show_progress(match.progress,
                  format("game %d, move %d, %.0f games/h", number, engine.game.game_ply / 2 + 1,
                         games_per_hour),
                  number - 1, MAX_GAMES);
}

// Plays until the game has an outcome; it stays open when the match is to end.
MatchGame play_game(Engine& engine, Match& match, int number) {
    for (Engine* player : match.players) set_start_position(player->game.position);
    MatchGame played{number, draw(engine.random, 2), Outcome::OPEN, {}};
    while (true) {
        const Position& p = engine.game.position;
        Engine& player = *match.players[p.side == played.first_player_color ? 0 : 1];
        const auto found = find_move(engine, player);
        if (!found || end_wished(engine)) break;
        played.moves.push_back(*found);
        played.outcome = outcome_of(*found, p);
        if (played.outcome != Outcome::OPEN) break;
        for (Engine* each : match.players) make_game_move(each->game, found->move);
        show_status(engine, match, number);
    }
    return played;
}

void finish_game(Match& match, const MatchGame& played) {
    count_game(match.score, played.outcome, played.first_player_color);
    engine_print(statistics_line(match.score));
    match.file.write(game_text(played));
    match.file.flush();
}

}  // namespace

bool run_match(Engine& engine) {
    EvalParams challenging = engine.default_params;
    if (!load_params(engine, FIRST_PLAYER_FILE, challenging)) {
        print_unlogged(format("Can't open file %s\n", FIRST_PLAYER_FILE));
        return true;
    }
    if (overwrites_input(FIRST_PLAYER_FILE, engine.options.match_file)) return false;
    Match match{};
    if (!match.file.open(engine.options.match_file, FileMode::WRITE)) {
        print_unlogged(format("can't open %s\n", engine.options.match_file.c_str()));
        return true;
    }
    set_limits(engine);
    engine.params = engine.default_params;
    derive_tables(engine);
    const auto challenger = make_challenger(engine, challenging);
    if (!challenger) {
        error_line("quon: not enough memory for the second player");
        return false;
    }
    match.players = {{challenger.get(), &engine}};
    engine_print("Starting match...");
    start_tool_input(engine);
    match.progress = start_progress();
    for (int number = 1; number <= MAX_GAMES && !match.file.failed(); ++number) {
        const MatchGame played = play_game(engine, match, number);
        if (played.outcome == Outcome::OPEN) break;
        finish_game(match, played);
    }
    end_tool_input(engine);
    end_progress();
    return close_output(match.file);
}

}  // namespace quon
