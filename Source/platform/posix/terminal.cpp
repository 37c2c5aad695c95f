#include "platform/terminal.h"

#include <unistd.h>

namespace quon {

bool output_is_terminal() { return isatty(STDOUT_FILENO) == 1; }
bool error_output_is_terminal() { return isatty(STDERR_FILENO) == 1; }

}  // namespace quon
