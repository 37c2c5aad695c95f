#pragma once
// The tables of the path's directories: found at initialisation, loaded on their first probe.

#include "syzygy/tbprobe_material.h"

namespace quon {

// A table for the position's material, loaded and ready, or nullptr.
struct TableUse {
    const TableFile* table = nullptr;
    bool exchanged = false;  // the position's White has the pieces of the table's Black
    int entry = -1;          // in the registry
};

TableUse wdl_table(const ProbePosition& position);
TableUse dtz_table(const ProbePosition& position);

// A lookup has found the table damaged: it is not used any more.
void give_up_wdl_table(const TableUse& use);
void give_up_dtz_table(const TableUse& use);

}  // namespace quon
