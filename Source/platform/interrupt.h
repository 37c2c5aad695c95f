#pragma once
// The interrupt key and the system's requests to end, for long work that wants to end cleanly.

namespace quon {

enum class Interruption {
    NONE,
    KEY,      // Ctrl-C: what runs is to end
    REQUEST,  // the program is to end: it is asked to, or its terminal is gone
};

// From now on the first Ctrl-C, or request to end, is only noted and wakes the main thread; a
// second one of either kind ends the process at once. One that the process was started to ignore,
// as in the background of a shell, stays ignored. Main thread, after init_events.
void catch_interrupts();

// What has come since then.
Interruption interruption();

// What they did before catch_interrupts they do again.
void release_interrupts();

}  // namespace quon
