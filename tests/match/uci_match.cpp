// Plays games between two UCI programs and watches the rules for both: legal moves, clocks, answers
// in time, no crash. A development tool, started by hand:
//
//   uci_match --games 200 --seconds 1 --increment 0.01 --openings FILE
//             --first "quon -nolog" [--option Threads=2 ...] --second "/usr/games/toga2"
//
// Openings are lines that begin with a FEN; each is played twice with colours exchanged. Prints a
// line per game and the totals; exit status 1 when a program broke a rule.

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "board/draw.h"
#include "board/fen.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "support/text.h"

using namespace quon;

namespace {

constexpr double GRACE_SECONDS = 10;  // beyond the clock: the program hangs
constexpr int MAX_MOVES = 400;        // longer games are drawn

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

enum class Fault { NONE, ILLEGAL_MOVE, TIME, CRASH, HANG };
constexpr const char* FAULT_NAMES[] = {"none", "illegal move", "loss on time", "crash", "hang"};

struct Program {
    std::string command;
    pid_t process = -1;
    int to = -1;
    int from = -1;
    std::string buffer;
    std::map<Fault, int> faults;

    void start() {
        int input[2];
        int output[2];
        if (pipe(input) != 0 || pipe(output) != 0) std::abort();
        process = fork();
        if (process == 0) {
            dup2(input[0], STDIN_FILENO);
            dup2(output[1], STDOUT_FILENO);
            for (const int end : {input[0], input[1], output[0], output[1]}) close(end);
            execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
            _exit(127);
        }
        close(input[0]);
        close(output[1]);
        to = input[1];
        from = output[0];
        buffer.clear();
    }
    void end() {
        if (process < 0) return;
        send("quit");
        close(to);
        close(from);
        for (int i = 0; i < 200 && waitpid(process, nullptr, WNOHANG) == 0; ++i) usleep(5000);
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
        process = -1;
    }
    void send(const std::string& line) const {
        const std::string text = line + "\n";
        if (write(to, text.data(), text.size()) < 0) return;  // the reader notices
    }
    // The rest of the next line that begins with the word; sets the fault when none comes in time.
    std::string wait_for(const std::string& word, double seconds, Fault& fault) {
        const double deadline = now() + seconds;
        while (true) {
            const std::size_t end = buffer.find('\n');
            if (end != std::string::npos) {
                const std::string line = buffer.substr(0, end);
                buffer.erase(0, end + 1);
                if (line.rfind(word, 0) == 0) return line.substr(word.size());
                continue;
            }
            pollfd watched{from, POLLIN, 0};
            const double left = deadline - now();
            if (left <= 0 || poll(&watched, 1, int(left * 1000) + 1) <= 0) {
                fault = Fault::HANG;
                return {};
            }
            char bytes[4096];
            const ssize_t count = read(from, bytes, sizeof bytes);
            if (count <= 0) {
                fault = Fault::CRASH;
                return {};
            }
            buffer.append(bytes, std::size_t(count));
        }
    }
};

struct Settings {
    int games = 20;
    double seconds = 1;
    double increment = 0.01;
    std::string openings;
    std::string first;
    std::string second;
    std::vector<std::string> options;
};

bool set_up(Program& program, const std::vector<std::string>& options) {
    Fault fault = Fault::NONE;
    program.start();
    program.send("uci");
    program.wait_for("uciok", GRACE_SECONDS, fault);
    for (const std::string& option : options) {
        const std::size_t equals = option.find('=');
        program.send("setoption name " + option.substr(0, equals) + " value " +
                     option.substr(equals + 1));
    }
    program.send("isready");
    program.wait_for("readyok", GRACE_SECONDS, fault);
    return fault == Fault::NONE;
}

bool bare_material(const Position& p) {
    const auto bare = [](u32 sig) { return sig == 0 || sig == 16 || sig == 256; };
    return bare(p.sig[WHITE]) && bare(p.sig[BLACK]) && (p.sig[WHITE] == 0 || p.sig[BLACK] == 0);
}

struct Result {
    double white_score = 0.5;
    std::string reason;
    Fault fault = Fault::NONE;  // of the side to move
    int plies = 0;
    double least_clock = 1e9;
};

Result play(Program* const players[2], const std::string& fen, const Settings& settings) {
    const auto game = std::make_unique<Game>();
    Position& p = game->position;
    (void)position_from_fen(p, fen);
    std::string moves;
    double clocks[2] = {settings.seconds, settings.seconds};
    Result result;
    for (const int color : {WHITE, BLACK}) {
        Fault fault = Fault::NONE;
        players[color]->send("ucinewgame");
        players[color]->send("isready");
        players[color]->wait_for("readyok", GRACE_SECONDS, fault);
    }
    while (true) {
        const bool checked = in_check(p);
        if (!has_legal_move(p)) {
            result.reason = checked ? "mate" : "stalemate";
            if (checked) result.white_score = p.side == WHITE ? 0 : 1;
            return result;
        }
        if (is_draw(p, 3) || bare_material(p) || result.plies >= 2 * MAX_MOVES) {
            result.reason = "draw";
            return result;
        }
        Program& player = *players[p.side];
        player.send("position fen " + fen + " 0 1" + (moves.empty() ? "" : " moves" + moves));
        const double start = now();
        player.send(format("go wtime %d btime %d winc %d binc %d", int(clocks[WHITE] * 1000),
                           int(clocks[BLACK] * 1000), int(settings.increment * 1000),
                           int(settings.increment * 1000)));
        std::string answer =
            player.wait_for("bestmove ", clocks[p.side] + GRACE_SECONDS, result.fault);
        clocks[p.side] -= now() - start;
        result.least_clock = std::min(result.least_clock, clocks[p.side]);
        answer = answer.substr(0, answer.find_first_of(" \r"));
        const Move move = parse_coordinates(p, answer);
        if (result.fault == Fault::NONE && clocks[p.side] < 0) result.fault = Fault::TIME;
        if (result.fault == Fault::NONE && (move == NO_MOVE || !is_legal(p, move))) {
            result.fault = Fault::ILLEGAL_MOVE;
        }
        if (result.fault != Fault::NONE) {
            result.reason = FAULT_NAMES[int(result.fault)] + (" by " + player.command) +
                            " answer '" + answer + "' in " + position_to_fen(p);
            result.white_score = p.side == WHITE ? 0 : 1;
            ++player.faults[result.fault];
            return result;
        }
        clocks[p.side] += settings.increment;
        moves += " " + answer;
        make_game_move(*game, move);
        ++result.plies;
    }
}

std::vector<std::string> read_openings(const std::string& name) {
    std::vector<std::string> openings;
    std::ifstream file(name);
    for (std::string line; std::getline(file, line);) {
        EpdRecord record;
        if (parse_epd_line(line, record)) openings.push_back(record.fen);
    }
    if (openings.empty()) openings.emplace_back(START_FEN);
    return openings;
}

Settings read_settings(int argc, char** argv) {
    Settings settings;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const std::string value = argv[i + 1];
        if (name == "--games") settings.games = std::atoi(value.c_str());
        if (name == "--seconds") settings.seconds = std::atof(value.c_str());
        if (name == "--increment") settings.increment = std::atof(value.c_str());
        if (name == "--openings") settings.openings = value;
        if (name == "--first") settings.first = value;
        if (name == "--second") settings.second = value;
        if (name == "--option") settings.options.push_back(value);
    }
    return settings;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    init_attack_tables();
    init_keys();
    set_log_enabled(false);
    const Settings settings = read_settings(argc, argv);
    const std::vector<std::string> openings = read_openings(settings.openings);
    Program first{.command = settings.first, .buffer = {}, .faults = {}};
    Program second{.command = settings.second, .buffer = {}, .faults = {}};
    if (!set_up(first, settings.options) || !set_up(second, {})) {
        std::puts("a program does not start");
        return 1;
    }
    int wins = 0;
    int draws = 0;
    int losses = 0;
    double least_clock = settings.seconds;
    for (int i = 0; i < settings.games; ++i) {
        const int first_color = i % 2;
        Program* players[2] = {&first, &second};
        if (first_color == BLACK) std::swap(players[0], players[1]);
        const Result result =
            play(players, openings[std::size_t(i / 2) % openings.size()], settings);
        const double score = first_color == WHITE ? result.white_score : 1 - result.white_score;
        ++(score == 1 ? wins : score == 0 ? losses : draws);
        least_clock = std::min(least_clock, result.least_clock);
        std::printf("game %d: %.1f in %d plies, %s\n", i + 1, score, result.plies,
                    result.reason.c_str());
        std::fflush(stdout);
        if (result.fault == Fault::CRASH || result.fault == Fault::HANG) {
            first.end();
            second.end();
            if (!set_up(first, settings.options) || !set_up(second, {})) return 1;
        }
    }
    first.end();
    second.end();
    std::printf("first: +%d =%d -%d, least time left %.3f s\n", wins, draws, losses, least_clock);
    for (const Program* program : {&first, &second}) {
        for (const auto& [fault, count] : program->faults) {
            std::printf("%s: %s %d times\n", program->command.c_str(), FAULT_NAMES[int(fault)],
                        count);
        }
    }
    return first.faults.empty() && second.faults.empty() ? 0 : 1;
}
