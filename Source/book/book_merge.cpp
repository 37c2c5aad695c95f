// Two-way merges, record by record, so that memory stays small however large the runs are.

#include "book/book_merge.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <system_error>

namespace quon {

namespace {

// A run that is read from front to back, from a file or from memory.
struct RunReader {
    RecordReader file;
    std::span<const BookRecord> memory;
    BookRecord front{};
    bool ended = false;
};

void advance(RunReader& run) {
    if (run.file) {
        run.ended = !read_record(run.file, run.front);
    } else if (run.memory.empty()) {
        run.ended = true;
    } else {
        run.front = run.memory.front();
        run.memory = run.memory.subspan(1);
    }
}

bool broken(const RunReader& run) { return run.file && read_failed(run.file); }

RunReader read_run(RecordReader file, std::span<const BookRecord> memory = {}) {
    RunReader run{std::move(file), memory};
    advance(run);
    return run;
}

// A run that may be missing; false, with a message, if it is there and cannot be opened.
bool open_run(const BookWork& work, const std::string& path, RunReader& run) {
    RecordReader file = open_records(path);
    std::error_code error;
    if (!file && (std::filesystem::exists(path, error) || error)) {
        report_unreadable(work, path);
        return false;
    }
    run = read_run(std::move(file));
    return true;
}

// Creates the file; false, with a message, if that is not possible.
bool create_run(const BookWork& work, const std::string& path, RecordWriter& out) {
    out = create_records(path);
    if (!out) report_unwritable(work, path, out.file.error());
    return bool(out);
}

// False, with a message, if not all of it has reached the file.
bool finish(const BookWork& work, RecordWriter& out) {
    const bool written = close_records(out);
    if (!written) report_unwritable(work, out.file.path(), out.file.error());
    return written;
}

// The next record of both runs together, which the readers then have passed.
BookRecord take_front(RunReader& a, RunReader& b) {
    const auto sum = [](u16 x, u16 y) { return u16(std::min(x + y, MAX_COUNT)); };
    if (b.ended || (!a.ended && stands_before(a.front, b.front))) {
        const BookRecord record = a.front;
        advance(a);
        return record;
    }
    BookRecord record = b.front;
    if (!a.ended && a.front.key == b.front.key) {
        record.losses = sum(a.front.losses, b.front.losses);
        record.wins = sum(a.front.wins, b.front.wins);
        record.draws = sum(a.front.draws, b.front.draws);
        advance(a);
    }
    advance(b);
    return record;
}

bool merge(RunReader a, RunReader b, const std::string& from, const std::string& to,
           const BookWork& work) {
    RecordWriter out;
    if (!create_run(work, to, out)) return false;
    while (!(a.ended && b.ended)) {
        if (ended(work)) return false;
        if (!write_record(out, take_front(a, b))) break;
    }
    if (broken(a) || broken(b)) {
        report_unreadable(work, from);
        return false;
    }
    return finish(work, out);
}

}  // namespace

void sort_into_run(std::vector<BookRecord>& records) {
    std::sort(records.begin(), records.end(), stands_before);
    std::size_t kept = 0;
    for (const BookRecord& record : records) {
        if (kept > 0 && records[kept - 1].key == record.key) {
            BookRecord& sum = records[kept - 1];
            sum.losses = u16(sum.losses + record.losses);
            sum.wins = u16(sum.wins + record.wins);
            sum.draws = u16(sum.draws + record.draws);
        } else {
            records[kept++] = record;
        }
    }
    records.resize(kept);
}

bool merge_runs(const std::string& path, const std::vector<BookRecord>& run,
                const std::string& to_path, const BookWork& work) {
    RunReader old_run;
    return open_run(work, path, old_run) &&
           merge(std::move(old_run), read_run({}, run), path, to_path, work);
}

bool merge_runs(const std::string& path, const std::string& other_path, const std::string& to_path,
                const BookWork& work) {
    RunReader run;
    RunReader other_run;
    return open_run(work, path, run) && open_run(work, other_path, other_run) &&
           merge(std::move(run), std::move(other_run), path + " or " + other_path, to_path, work);
}

std::optional<int> copy_frequent(const std::string& path, int min_games, const std::string& to_path,
                                 const BookWork& work) {
    RecordReader in = open_records(path);
    if (!in) {
        report_unreadable(work, path);
        return std::nullopt;
    }
    RecordWriter out;
    if (!create_run(work, to_path, out)) return std::nullopt;
    RunReader run = read_run(std::move(in));
    int kept = 0;
    for (; !run.ended; advance(run)) {
        if (ended(work)) return std::nullopt;
        if (game_count(run.front) < min_games) continue;
        if (!write_record(out, run.front)) break;
        ++kept;
    }
    if (broken(run)) {
        report_unreadable(work, path);
        return std::nullopt;
    }
    if (!finish(work, out)) return std::nullopt;
    return kept;
}

bool rename_run(const std::string& path, const std::string& new_path, const BookWork& work) {
    std::error_code error;
    std::filesystem::rename(path, new_path, error);
    if (error) report_unwritable(work, new_path, error);
    return !error;
}

namespace {

void fail(const BookWork& work, const std::string& text) {
    if (work.failure) work.failure(text);
}

}  // namespace

void report_unreadable(const BookWork& work, const std::string& path) {
    fail(work, "\ncannot read " + path);
}

void report_unwritable(const BookWork& work, const std::string& path,
                       const std::error_code& reason) {
    fail(work, "\ncannot write " + path + ": " + reason.message());
}

}  // namespace quon
