#include "tools/epd_runner.h"

namespace quon {

bool run_test_suite(const std::string&) { return true; }

}  // namespace quon
