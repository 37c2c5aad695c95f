#pragma once
// Runs of book records in files: sorted as a book is, each key once. A failure is told; the
// files read are then as they were. Long work asks whether to keep on all the time; once the answer
// was no it fails without a word.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "book/book_record.h"

namespace quon {

// No counter grows beyond this when runs are merged.
constexpr int MAX_COUNT = 60000;

// What work on books tells, and whether it is to go on. Each may be empty.
struct BookWork {
    std::function<void(std::string_view)> step;     // progress, as it stands
    std::function<void(std::string_view)> failure;  // a line
    std::function<bool()> keep_on;                  // false ends the work
};
inline bool ended(const BookWork& work) { return work.keep_on && !work.keep_on(); }

// Sorts records and adds up those of equal keys.
void sort_into_run(std::vector<BookRecord>& records);

// Writes both runs as one to `to_path`. The file may be missing; it stands for an empty run then.
[[nodiscard]] bool merge_runs(const std::string& path, const std::vector<BookRecord>& run,
                              const std::string& to_path, const BookWork& work);
[[nodiscard]] bool merge_runs(const std::string& path, const std::string& other_path,
                              const std::string& to_path, const BookWork& work);

// Copies the records of at least `min_games` games; returns how many these are.
[[nodiscard]] std::optional<int> copy_frequent(const std::string& path, int min_games,
                                               const std::string& to_path, const BookWork& work);

// Gives the file another name, in place of a file that has it.
[[nodiscard]] bool rename_run(const std::string& path, const std::string& new_path,
                              const BookWork& work);

// Both tell the failure; that of writing with the system's reason.
void report_unreadable(const BookWork& work, const std::string& path);
void report_unwritable(const BookWork& work, const std::string& path,
                       const std::error_code& reason);

}  // namespace quon
