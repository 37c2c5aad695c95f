#pragma once
// What a running tool hears on standard input and from Ctrl-C: that it is to end. "isready" is
// answered; everything else is passed over, so that nobody changes the game or the settings under
// it. Main thread only.

#include <string>

namespace quon {

// At the start of a tool. An input that is at its end already, such as the null device, does not
// end the tool. `file` is the file that the tool reads, if it reads one: if that is standard input
// no commands are taken from there.
void start_tool_input(const std::string& file = {});

// At the start of a console command that takes long. "stop" and "." end it, and so does "quit",
// which stays on the input like all other lines: the console handles them in their order
// afterwards. The end of the input does not end it.
void start_command_input();

// At the end of both, so that Ctrl-C ends the process again.
void end_tool_input();

// True once the tool is to end: after "quit", "stop", Ctrl-C, the end of an input that was open
// when the tool started, or when nobody reads standard output any more. Then the stop flag is set
// as well, so that a running search breaks off. Looks without waiting, or sleeps first, for at most
// wait_ms or until something arrives or a search thread is done.
bool end_wished(int wait_ms = 0);

}  // namespace quon
