#pragma once
// Reading a mapped table: little-endian numbers, and a cursor that never leaves the file.

#include "board/types.h"
#include "platform/file_map.h"

namespace quon {

inline u32 byte_at(const std::byte* at) { return std::to_integer<u32>(*at); }
inline u32 read_u16(const std::byte* at) { return byte_at(at) | byte_at(at + 1) << 8; }
inline u32 read_u32(const std::byte* at) { return read_u16(at) | read_u16(at + 2) << 16; }

struct TableCursor {
    MappedFile file;
    u64 at = 0;

    // The next bytes, or nullptr when the file is too short; the cursor moves behind them.
    const std::byte* take(u64 bytes) {
        if (at > file.size() || bytes > file.size() - at) return nullptr;
        const std::byte* const start = file.data() + at;
        at += bytes;
        return start;
    }
    // To the next multiple of a power of two, counted from the start of the file.
    void align(u64 unit) { at = (at + unit - 1) & ~(unit - 1); }
};

}  // namespace quon
