#pragma once
// The parameters that the tuners may move, by name.

#include <string>
#include <vector>

#include "eval/eval_params.h"

namespace quon {

struct TunableParam {
    std::string name;
    i16* field;  // in the live record
    i16 step;
    double value;     // continuous counterpart of the field
    double gradient;  // last one measured
    i16 active;       // 1 when a tuner may change it
};

using Tunables = std::vector<TunableParam>;
extern Tunables tunables;

// Fills the registry on the first call; later calls do nothing.
void register_tunables();

}  // namespace quon
