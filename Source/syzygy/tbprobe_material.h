#pragma once
// Material, as table names spell it and as a hash key.

#include <string_view>

#include "syzygy/tbcore.h"

namespace quon {

// The side of each letter's piece in a name such as "KQvKP": White before the "v".
TableMaterial material_of_name(std::string_view name);

// Sum of a constant per piece; kings do not count, so that bare kings have key 0. With `exchanged`
// the colours' pieces change places.
u64 material_key(const Table<u8, 16>& counts, bool exchanged);
u64 material_key(const ProbePosition& position, bool exchanged);

}  // namespace quon
