#pragma once
// Standard output without blocking, so that nobody who prints is held up without knowing it. One
// thread at a time.

#include <string_view>

namespace quon {

// Once, behind init_events; before it the functions below may block on an output shared with
// another writer.
void init_output();

enum class OutputState { OPEN, LOST };
// Writes what standard output takes now and removes it from the front of the text. LOST once
// nothing can be written any more, as when the reader is gone or the disk is full.
OutputState offer_output(std::string_view& text);
// Sleeps until standard output takes more, or timeout_ms have passed.
void wait_for_room(int timeout_ms);
// How many of the bytes written the reader has not taken yet; 0 where the system does not tell.
int unread_output();

// Whether a person watches an output.
bool output_is_terminal();
bool error_output_is_terminal();

}  // namespace quon
