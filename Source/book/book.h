#pragma once
// The opening book in use: an index in memory, the records in their file. Main thread only.

#include <optional>

#include "book/book_record.h"

namespace quon {

// The book of someone who names none.
constexpr char DEFAULT_BOOK[] = "quon.opn";

// Opens the book that the settings name, in place of the one in use. Says so when a file was asked
// for that cannot be read, or when it is damaged; a damaged book is used as far as it goes. That
// the default book is not there is no news.
void book_open();
// From here on there is no book.
void book_close();
bool book_in_use();

// The record of a key, as record_key makes it. A file that has vanished or changed since yields
// nothing, or what it now says of this very key.
std::optional<BookRecord> book_find(BookKey key);

}  // namespace quon
