// The settings and limits, at their defaults.

#include "frontend/engine_options.h"

namespace quon {

EngineOptions options;
SearchLimits limits;

}  // namespace quon
