// Helpers of the console tests.

#include "harness/console_support.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

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
    if (p.key != q.key || p.pawn_key != q.pawn_key || p.fifty != q.fifty) return "keys or fifty";
    if (p.flaw != q.flaw) return "flaw";
    if (a.game_ply != b.game_ply || a.ply != b.ply || a.last_move != b.last_move) return "record";
    for (int i = 0; i < a.game_ply; ++i) {
        const UndoRecord& r = a.undo[i];
        const UndoRecord& s = b.undo[i];
        if (r.key != s.key || r.pawn_key != s.pawn_key || r.move != s.move) return "undo";
        if (r.captured != s.captured || r.ep != s.ep || r.fifty != s.fifty || r.castle != s.castle)
            return "undo";
    }
    return verify(p).empty() ? std::string(verify(q)) : std::string(verify(p));
}

}  // namespace quon::test
