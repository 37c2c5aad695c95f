// The one set of flags.

#include "search/control.h"

namespace quon {

SearchControl control;

}  // namespace quon
