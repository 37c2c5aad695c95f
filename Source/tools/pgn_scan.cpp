// The PGN scanner: one pass over the file, a game at a time.

#include "tools/pgn_scan.h"

#include "engine/engine.h"
#include "engine/output.h"
#include "pgn/game_reader.h"
#include "support/line_reader.h"
#include "support/status_line.h"
#include "support/text.h"
#include "tools/scan_writers.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

constexpr char BLUNDERS_NAME[] = "tmpX.epd";
constexpr int TOLD_GAMES = 100;  // a line on standard output for so many

struct Scan {
    const ScanVariant* variant;
    LineReader lines;
    GameReader reader;
    ScanOutput output;
    Progress progress;
};

void write_game(Engine& engine, Scan& scan) {
    GameReader& reader = scan.reader;
    if (reader.moves.empty()) return;
    if (reader.cut) {
        end_progress();
        error_line(format("quon: game %d is longer than %d plies and is cut", reader.games,
                          int(MAX_SCAN_MOVES)));
    }
    scan.variant->write_game(engine, scan.output, reader);
    next_game(reader);
}

void take_tag(Engine& engine, Scan& scan, std::string_view line) {
    write_game(engine, scan);
    GameReader& reader = scan.reader;
    if (scan.variant->copies_tags) {
        scan.output.main.write(std::string(line) + "\n");
        if (line.find("Round ") != std::string_view::npos) {
            scan.output.main.write(format("[Tag \"game_%d\"]\n", reader.games));
        }
    }
    const int before = reader.games;
    read_tag(reader, line);
    if (reader.games != before && reader.games % TOLD_GAMES == 0) {
        print_unlogged(format("game %d\n", reader.games));
    }
}

// Somebody wants the scan to end, or there is no use in going on.
bool must_end(Engine& engine, Scan& scan) {
    if (progress_due(scan.progress)) {
        const double seconds = progress_seconds(scan.progress);
        const auto bytes = double(scan.lines.bytes_read);
        show_progress(scan.progress,
                      format("game %d, %.0f games/s, %.1f MB/s", scan.reader.games,
                             scan.reader.games / seconds, bytes / seconds / 1e6),
                      bytes, double(scan.lines.file_size));
    }
    return end_wished(engine) || scan.output.main.failed() || scan.output.blunders.failed();
}

// Ends early without the game that is being read.
void read_games(Engine& engine, Scan& scan) {
    LinePiece piece;
    while (next_piece(scan.lines, piece)) {
        if (begin_piece(scan.reader.pgn, piece)) {
            read_move_text(scan.reader, piece);
        } else {
            take_tag(engine, scan, piece.text);
        }
        if (must_end(engine, scan)) return;
    }
    write_game(engine, scan);
    if (scan.reader.pgn.comment_depth > 0) error_line("quon: a comment is never closed");
}

}  // namespace

bool scan_pgn(Engine& engine, const std::string& path, int variant) {
    Scan scan{};
    scan.variant = &scan_variants[variant - 1];
    if (!can_be_read(path) ||
        !open_tool_file(scan.lines, path, SCANNED_GAMES.line_limit, SCANNED_GAMES.long_line)) {
        return false;
    }
    for (const char* name : {scan.variant->main_name, BLUNDERS_NAME}) {
        if (overwrites_input(path, name)) return false;
    }
    if (!scan.output.main.open(scan.variant->main_name, FileMode::WRITE) ||
        !scan.output.blunders.open(BLUNDERS_NAME, FileMode::WRITE)) {
        return true;
    }
    set_log_enabled(true);
    scan.progress = start_progress();
    start_tool_input(engine, path);
    read_games(engine, scan);
    end_progress();
    scan.output.main.write("\n");
    const bool main_written = close_output(scan.output.main);
    const bool blunders_written = close_output(scan.output.blunders);
    end_tool_input(engine);
    print_unlogged(
        format("games= %d, positions= %.0f\n", scan.reader.games, double(scan.output.positions)));
    return read_well(scan.lines, path) && main_written && blunders_written;
}

}  // namespace quon
