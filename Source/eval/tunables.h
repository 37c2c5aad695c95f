#pragma once
// The parameters that the tuners may move, by name.

#include <string>
#include <vector>

#include "eval/eval_params.h"

namespace quon {

struct TunableParam {
    std::string name;
    i16* field;  // in the record that is tuned
    i16 step;
    double value;     // continuous counterpart of the field
    double gradient;  // last one measured
    i16 active;       // 1 when a tuner may change it
};

using Tunables = std::vector<TunableParam>;

// Fills an empty registry with the parameters of the record; does nothing to a filled one.
void register_tunables(Tunables& tunables, EvalParams& params);

}  // namespace quon
