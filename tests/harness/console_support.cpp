#include "harness/console_support.h"

#include <unistd.h>

#include <cstdlib>
#include <tuple>

#include "engine/report.h"
#include "frontend/console_commands.h"

namespace quon::test {

ConsoleRig::ConsoleRig() : input_{dup(STDIN_FILENO)} {
    options.uci_mode = false;
    control.quit_requested = false;
    if (pipe(input_ + 1) != 0) std::abort();
    dup2(input_[1], STDIN_FILENO);
}

ConsoleRig::~ConsoleRig() {
    dup2(input_[0], STDIN_FILENO);
    for (const int descriptor : input_) close(descriptor);
}

std::string ConsoleRig::edit(const std::string& lines) const {
    const std::string bytes = lines + "\n.\n";
    EXPECT_EQ(write(input_[2], bytes.data(), bytes.size()), ssize_t(bytes.size()));
    return console("edit");
}

std::string console(const std::string& line) {
    return captured_output([&] { handle_console_command(engine, line); });
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
