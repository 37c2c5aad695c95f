#pragma once
// What a running tool hears: the wish that it end, from standard input or Ctrl-C. Everything else
// on the input is passed over, so that nobody changes the game or the settings under it. Main
// thread only.

namespace quon {

enum class ToolWish {
    NONE,
    FINISH,  // "quit", or the end of an input that was open when the tool started: end soon
    STOP,    // "stop" or Ctrl-C: end now, and break off a running search
};

// At the start of a tool. An input that is at its end already, such as the null device, does not
// end the tool.
void start_tool_input();

// At its end, so that Ctrl-C ends the process again.
void end_tool_input();

// The strongest wish so far. Looks at the input without waiting, or sleeps first, for at most
// wait_ms or until something arrives or a search thread is done.
ToolWish tool_wish(int wait_ms = 0);

}  // namespace quon
