#include "tools/pgn_scan.h"

namespace quon {

bool scan_pgn(const std::string&, int) { return true; }

}  // namespace quon
