// The book builder.
//
// A few hundred games' positions are gathered in memory and merged into a run on disk, which from
// time to time is merged into the growing book. What replaces the old book is a complete new one.

#include "book/book_build.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "board/fen.h"
#include "board/make.h"
#include "board/move_text.h"
#include "book/book_key.h"
#include "pgn/pgn_reader.h"
#include "platform/standard_output.h"
#include "support/line_reader.h"
#include "support/status_line.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr char GAMES_FILE[] = "book.pgn";
constexpr char BOOK_FILE[] = "book.opn";
constexpr char RUN_FILE[] = "tmp.opn";
constexpr char MERGED_FILE[] = "tmp__0.opn";
constexpr char GROWING_FILE[] = "tmp__1.opn";

constexpr int MAX_PLIES = 50;  // recorded of a game
constexpr int MIN_GAMES = 9;   // of a position that is kept
constexpr int FLUSH_EVERY = 200;
constexpr int MERGE_EVERY = 5000;  // games
constexpr int NOBODY = 2;          // the winner of a drawn or unfinished game

struct Builder {
    Position& position;
    const BookWork& work;
    Progress progress = start_progress();
    std::vector<BookRecord> run = {};  // one record for each position recorded since the last flush
    PgnReader pgn{&BOOK_GAMES};
    int games = 0;
    // Of the current game.
    int winner = NOBODY;
    bool stopped = false;  // a move could not be read
};

void tell(const BookWork& work, std::string_view text) {
    if (work.step) work.step(text);
}

bool flush(Builder& b) {
    sort_into_run(b.run);
    if (!merge_runs(RUN_FILE, b.run, MERGED_FILE, b.work) ||
        !rename_run(MERGED_FILE, RUN_FILE, b.work)) {
        return false;
    }
    b.run.clear();
    tell(b.work, ".");
    return true;
}

bool merge_into_book(const Builder& b) {
    tell(b.work, "\nmerging...");
    if (!merge_runs(GROWING_FILE, RUN_FILE, MERGED_FILE, b.work) ||
        !rename_run(MERGED_FILE, GROWING_FILE, b.work)) {
        return false;
    }
    std::remove(RUN_FILE);
    tell(b.work, "\n");
    return true;
}

bool start_game(Builder& b, std::string_view result_line) {
    const auto has = [&](const char* text) { return result_line.find(text) != result_line.npos; };
    set_start_position(b.position);
    b.winner = has("1-0") ? WHITE : has("0-1") ? BLACK : NOBODY;
    begin_game(b.pgn);
    b.stopped = false;
    ++b.games;
    return (b.games % FLUSH_EVERY != 0 || flush(b)) &&
           (b.games % MERGE_EVERY != 0 || merge_into_book(b));
}

// The position on the board, for the side that has just moved.
void record_position(Builder& b) {
    const int mover = b.position.side ^ 1;
    BookRecord record{record_key(b.position), 0, 0, 0};
    u16& outcome = b.winner == NOBODY  ? record.draws
                   : b.winner == mover ? record.wins
                                       : record.losses;
    outcome = 1;
    b.run.push_back(record);
}

void take_move(Builder& b, std::string_view text) {
    if (b.stopped || b.position.owner->game_ply >= MAX_PLIES) return;
    Move move = NO_MOVE;
    const int named = parse_san(b.position, text, move);
    if (named == 2) tell(b.work, "ambiguous move\n");
    b.stopped = named != 1;
    if (b.stopped) return;
    make_move(b.position, move);
    record_position(b);
}

// A line may come in several pieces. False when a file cannot be written.
bool take_line_piece(Builder& b, const LinePiece& piece) {
    const bool has_moves = begin_piece(b.pgn, piece);
    if (piece.text.find("[Result") != std::string_view::npos) return start_game(b, piece.text);
    if (!has_moves) return true;
    std::string_view rest = piece.text;
    while (const std::optional<PgnToken> token = next_token(b.pgn, rest)) {
        if (token->kind == PgnToken::MOVE) take_move(b, token->text);
    }
    return true;
}

void report_progress(Builder& b, const LineReader& reader) {
    if (!progress_due(b.progress)) return;
    const double megabytes = double(reader.bytes_read) / 1e6;
    const std::string text =
        format("%d games, %.1f MB/s", b.games, megabytes / (progress_seconds(b.progress) + 0.001));
    show_progress(b.progress, text, double(reader.bytes_read), double(reader.file_size));
}

bool read_games(Builder& b, LineReader& reader) {
    for (LinePiece piece; next_piece(reader, piece);) {
        if (ended(b.work) || !take_line_piece(b, piece)) return false;
        report_progress(b, reader);
    }
    end_progress();
    if (!read_failed(reader)) return true;
    report_unreadable(b.work, GAMES_FILE);
    return false;
}

// The frequent positions of the grown book become the new one; returns how many these are.
std::optional<int> prune_into_book(const Builder& b) {
    tell(b.work, "pruning...");
    const std::optional<int> kept = copy_frequent(GROWING_FILE, MIN_GAMES, RUN_FILE, b.work);
    if (!kept || !rename_run(RUN_FILE, BOOK_FILE, b.work)) return std::nullopt;
    tell(b.work, "\n");
    return kept;
}

void remove_temporaries() {
    for (const char* path : {RUN_FILE, MERGED_FILE, GROWING_FILE}) std::remove(path);
}

}  // namespace

void build_book(Position& position, const BookWork& work) {
    LineReader reader;
    if (!open_lines(reader, GAMES_FILE, BOOK_GAMES.line_limit, BOOK_GAMES.long_line)) {
        if (is_no_file(GAMES_FILE)) report_unreadable(work, GAMES_FILE);
        return;
    }
    remove_temporaries();
    set_start_position(position);

    Builder b{position, work};
    const bool merged = read_games(b, reader) && flush(b) && merge_into_book(b);
    const std::optional<int> kept = merged ? prune_into_book(b) : std::nullopt;
    end_progress();
    remove_temporaries();
    if (!kept && ended(work)) tell(work, "\nended, no book made\n");
    if (kept) tell(work, "done\n");
    if (kept && output_is_terminal()) {
        tell(work, format("%d games, %d positions kept, %.1f seconds\n", b.games, *kept,
                          progress_seconds(b.progress)));
    }
    set_start_position(position);
}

}  // namespace quon
