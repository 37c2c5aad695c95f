#pragma once
// Runs of book records in files: sorted as a book is, each key once. A failure is printed; the
// files read are then as they were. Long work asks `keep_on`, if given, all the time; once that
// has said no it fails without a word.

#include <optional>
#include <string>
#include <vector>

#include "book/book_record.h"

namespace quon {

// No counter grows beyond this when runs are merged.
constexpr int MAX_COUNT = 60000;

using KeepOn = bool (*)();
inline bool ended(KeepOn keep_on) { return keep_on && !keep_on(); }

// Sorts records and adds up those of equal keys.
void sort_into_run(std::vector<BookRecord>& records);

// Writes both runs as one to `to_path`. The file may be missing; it stands for an empty run then.
[[nodiscard]] bool merge_runs(const std::string& path, const std::vector<BookRecord>& run,
                              const std::string& to_path, KeepOn keep_on = nullptr);
[[nodiscard]] bool merge_runs(const std::string& path, const std::string& other_path,
                              const std::string& to_path, KeepOn keep_on = nullptr);

// Copies the records of at least `min_games` games; returns how many these are.
[[nodiscard]] std::optional<int> copy_frequent(const std::string& path, int min_games,
                                               const std::string& to_path,
                                               KeepOn keep_on = nullptr);

// Gives the file another name, in place of a file that has it.
[[nodiscard]] bool rename_run(const std::string& path, const std::string& new_path);

// Both print the failure, on a line of its own; that of writing with the system's reason, read from
// errno.
void report_unreadable(const std::string& path);
void report_unwritable(const std::string& path);

}  // namespace quon
