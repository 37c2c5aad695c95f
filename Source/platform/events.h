#pragma once
// Standard input without blocking, and the main thread's bed: it sleeps until input arrives, a
// search thread calls, or time is up. All but wake_main_thread belong to the main thread.

#include <string>

namespace quon {

// Once, before any other function here: input mode, broken-pipe handling.
void init_events();

enum class InputState { OPEN, ENDED };
// Appends whatever standard input holds now; never waits. ENDED once the input is closed or broken
// and everything it held has been handed out. A console hands out whole lines.
InputState read_input(std::string& bytes);
// Whether a person types it.
bool input_is_terminal();
// True if the file of that name is what standard input reads: then a tool takes its bytes as data.
bool is_standard_input(const std::string& path);

// Sleeps until input is waiting, wake_main_thread is called, or timeout_ms have passed (negative:
// no limit). With watch_input false input does not end the sleep.
void wait_for_event(int timeout_ms, bool watch_input);
// Ends the current or the next wait_for_event; any thread.
void wake_main_thread();

}  // namespace quon
