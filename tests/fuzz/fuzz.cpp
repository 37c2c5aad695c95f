// Fuzz targets: everything that reads what strangers write. The first word of the command line
// chooses one (see TARGETS); script/fuzz runs them all. Each limits its own work, so that a slow
// input is a finding.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "board/bitboard.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "board/verify.h"
#include "book/book_build.h"
#include "engine/param_settings.h"
#include "engine/report.h"
#include "eval/kpk.h"
#include "frontend/command_line.h"
#include "frontend/console_commands.h"
#include "frontend/search_session.h"
#include "frontend/uci.h"
#include "harness/engine.h"
#include "search/threads.h"
#include "support/text.h"
#include "syzygy/tbprobe.h"
#include "tools/epd_runner.h"
#include "tools/pgn_scan.h"
#include "tools/tune.h"

namespace quon::test {
namespace {

constexpr std::string_view POSITIONS[] = {
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
    "8/8/8/2k5/2pP4/8/B7/4K3 b - d3",
    "3q1rk1/N1N5/8/N1N5/8/2B5/1B6/4K3 w - -",
};

void require(bool holds) {
    if (!holds) std::abort();
}

std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string written(const char* name, std::string_view text) {
    std::ofstream(name, std::ios::binary) << text;
    return name;
}

void search_a_little(int depth = 2) {
    if (position_problem(game.position) != nullptr) return;
    limits = {};
    limits.depth_limit = u8(depth);
    limits.max_nodes = 300;
    settings.target_nps = NO_NPS_LIMIT;
    control.go_request = GO_PLAY;
    start_search(engine);
    wait_for_idle_threads(engine);
    report_search(engine);
}

// ---- Targets ----

void position(std::string_view text) {
    position_command(engine, text);
    if (position_problem(game.position) == nullptr) require(verify(game.position).empty());
    search_a_little();
}

void san(std::string_view text) {
    Position& p = game.position;
    for (const std::string_view fen : POSITIONS) {
        (void)position_from_fen(p, fen);
        for (const std::string_view line : lines_of(text)) {
            Move move = NO_MOVE;
            if (parse_san(p, line, move) == 1) require(is_legal(p, move));
            if (parse_coordinates(p, line) == NO_MOVE) continue;
            make_move(p, parse_coordinates(p, line));
            unmake_move(p);
            require(verify(p).empty());
        }
    }
}

void epd(std::string_view text) {
    options.tune_file = written("fuzz.epd", text);
    limits = {};
    limits.depth_limit = 1;
    limits.max_nodes = 300;
    (void)run_test_suite(engine, options.tune_file);
    (void)make_tuning_set(engine);
}

void pgn(std::string_view text) {
    const std::string path = written("book.pgn", text);
    for (int variant = 1; variant <= 4; ++variant) (void)scan_pgn(engine, path, variant);
    build_book(game.position, {[](std::string_view) {}, [](std::string_view) {}, {}});
    for (const char* const number : {"1", "2", "e4"})
        handle_console_command(engine, std::string("load book.pgn ") + number);
    require(verify(game.position).empty());
}

void parameters(std::string_view text) {
    const EngineOptions saved = options;
    (void)load_params(engine, written("fuzz.rc", text), params);
    for (const std::string_view fen : POSITIONS) {
        read_position(game.position, fen);
        search_a_little(3);
    }
    options = saved;
    params = {};
}

void book(std::string_view text) {
    options.book_file = written("fuzz.opn", text);
    load_book(engine);
    for (const std::string_view fen : {std::string_view(START_FEN), POSITIONS[0]}) {
        read_position(game.position, fen);
        book_show(engine, true);
    }
}

void tables(std::string_view text) {
    for (const char* const name : {"KQvK.rtbw", "KQvK.rtbz", "KPvK.rtbw", "KPvK.rtbz"})
        (void)written(name, text);
    (void)tb_init(".");
    for (const std::string_view fen :
         {"8/8/8/3k4/8/8/1Q6/K7 w - -", "8/8/8/3k4/8/8/1Q6/K7 b - -", "8/8/8/3k4/8/8/1P6/K7 w - -",
          "8/8/8/3k4/8/8/1p6/K7 w - -", "8/7k/8/8/8/2p5/8/7K b - -"}) {
        read_position(game.position, fen);
        search_a_little();
    }
}

// Commands whose work is theirs to choose.
bool too_much(std::string_view line) {
    const bool many = line.find_first_of("0123456789") != std::string_view::npos;
    for (const std::string_view word : {"Hash", "Threads", "perft", "tune", "mkbook", "load"}) {
        if (many && line.find(word) != std::string_view::npos) return true;
    }
    return false;
}

void session(std::string_view text, void (*handle)(Engine&, std::string_view)) {
    for (const std::string_view line : lines_of(text)) {
        if (line.empty() || too_much(line)) continue;
        handle(engine, line);
        if (control.go_request == NO_SEARCH) continue;
        limits.depth_limit = std::min<u8>(limits.depth_limit, 3);
        limits.max_nodes = 300;
        settings.target_nps = NO_NPS_LIMIT;
        params.limit_strength = 0;
        start_search(engine);
        if (line.find("inf") == std::string_view::npos) wait_for_idle_threads(engine);
    }
    finish_search(engine);
    handle_uci_command(engine, "ucinewgame");
    options.self_play = false;
    control = {};
}

void uci(std::string_view text) {
    set_uci_mode(engine, true);
    session(text, handle_uci_command);
}

void console(std::string_view text) {
    set_uci_mode(engine, false);
    session(text, handle_console_command);
}

void command_line(std::string_view text) {
    const EngineOptions saved = options;
    std::vector<std::string> words;
    for (const std::string_view line : lines_of(text)) words.emplace_back(line);
    const CommandLine line = read_command_line(engine, words);
    if (!line.exit_status) (void)apply_command_line(engine, line);
    options = saved;
    settings.trace = i16{0};
}

struct Target {
    std::string_view name;
    void (*run)(std::string_view text);
};

constexpr Target TARGETS[] = {
    {"position", position},
    {"san", san},
    {"epd", epd},
    {"pgn", pgn},
    {"parameters", parameters},
    {"book", book},
    {"tables", tables},
    {"uci", uci},
    {"console", console},
    {"command_line", command_line},
};

const Target* chosen = nullptr;

}  // namespace
}  // namespace quon::test

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    using namespace quon;
    using namespace quon::test;
    for (const Target& target : TARGETS) {
        if (*argc > 1 && target.name == (*argv)[1]) chosen = &target;
    }
    if (chosen == nullptr) {
        for (const Target& target : TARGETS) std::printf("%s\n", target.name.data());
        std::exit(*argc > 1 ? 1 : 0);
    }
    std::rotate(*argv + 1, *argv + 2, *argv + (*argc)--);
    init_attack_tables();
    build_kpk_bitbase();
    require(hash_alloc(engine.hash, 1) && create_threads(engine, 1));
    derive_parameters();
    set_start_position(game.position);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    quon::test::chosen->run({reinterpret_cast<const char*>(data), size});
    return 0;
}
