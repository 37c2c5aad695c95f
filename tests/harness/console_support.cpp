// Helpers of the console tests.

#include "harness/console_support.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <tuple>

#include "board/fen.h"
#include "board/verify.h"
#include "engine/report.h"
#include "frontend/console_commands.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "search/run.h"

namespace quon::test {

ConsoleRig::ConsoleRig()
    : before(std::filesystem::current_path()),
      directory(std::filesystem::temp_directory_path() / "quon-console-XXXXXX") {
    if (mkdtemp(directory.data()) == nullptr) std::abort();
    std::filesystem::current_path(directory);
    options.uci_mode = false;
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    dup2(ends[0], STDIN_FILENO);  // open to the end of the process
    close(ends[0]);
}

ConsoleRig::~ConsoleRig() {
    std::filesystem::current_path(before);
    std::filesystem::remove_all(directory);
}

std::string console(const std::string& line) {
    return captured_output([&] { handle_console_command(engine, line); });
}

std::string edit(const std::string& lines) {
    int ends[2];
    const int input = dup(STDIN_FILENO);
    if (pipe(ends) != 0) std::abort();
    const std::string bytes = lines + "\n.\n";
    EXPECT_EQ(write(ends[1], bytes.data(), bytes.size()), ssize_t(bytes.size()));
    dup2(ends[0], STDIN_FILENO);
    std::string output = console("edit");
    dup2(input, STDIN_FILENO);
    for (const int descriptor : {input, ends[0], ends[1]}) close(descriptor);
    return output;
}

std::string board_text() {
    return captured_output([] { print_board(game.position); });
}

std::string game_fen() { return position_to_fen(game.position); }

std::string game_difference(const Game& a, const Game& b) {
    const Position& p = a.position;
    const Position& q = b.position;
    if (position_to_fen(p) != position_to_fen(q)) return "fen";
    if (p.key != q.key || p.pawn_key != q.pawn_key || p.fifty != q.fifty || p.flaw != q.flaw)
        return "keys, fifty or flaw";
    if (a.game_ply != b.game_ply || a.ply != b.ply || a.last_move != b.last_move) return "record";
    const auto fields = [](const UndoRecord& r) {
        return std::tuple(r.key, r.pawn_key, r.move, r.captured, r.ep, r.fifty, r.castle);
    };
    for (int i = 0; i < a.game_ply; ++i) {
        if (fields(a.undo[i]) != fields(b.undo[i])) return "undo";
    }
    return std::string(verify(p)) + std::string(verify(q));
}

}  // namespace quon::test
