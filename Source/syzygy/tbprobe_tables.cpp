// Registry of tables, lazy loading, and the cache of distance tables.

#include "syzygy/tbprobe_tables.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "support/status_line.h"
#include "support/text.h"

namespace quon {

Relaxed<int> tb_largest = 0;

namespace {

constexpr int DTZ_TABLES = 64;
constexpr std::size_t MAX_TABLE_PATH = 259;  // characters

constexpr char WDL_SUFFIX[] = ".rtbw";
constexpr char DTZ_SUFFIX[] = ".rtbz";

enum class TableState : u8 { NOT_LOADED, READY, UNUSABLE };

struct RegisteredTable {
    std::string name;
    TableMaterial material;
    u64 key;
    std::atomic<TableState> state = TableState::NOT_LOADED;
    std::unique_ptr<TableFile> wdl;  // written under load_mutex before `state` says READY
};

// The most recently used distance tables, the latest first. A table that cannot be used is
// remembered with no file.
struct DtzCacheEntry {
    int table;
    std::unique_ptr<TableFile> dtz;
};

std::deque<RegisteredTable> tables;         // none moves while it is there
std::unordered_map<u64, int> table_of_key;  // of both colours' materials
std::vector<DtzCacheEntry> dtz_cache;
std::vector<std::string> directories;
std::mutex load_mutex;

// Search threads may be running: nothing is torn down.
[[noreturn]] void end_at_once(const std::string& message) {
    error_line(message);
    std::_Exit(EXIT_FAILURE);
}

void report_damage() { error_line("Corrupted table."); }

void release(MappedFile file) {
    const int error = unmap_file(file);
    if (error != 0) error_line(format("unmap failed, error code %d", error));
}

void release(std::unique_ptr<TableFile>& table) {
    if (table) release(table->file);
    table.reset();
}

void release_tables() {
    for (RegisteredTable& table : tables) release(table.wdl);
    for (DtzCacheEntry& entry : dtz_cache) release(entry.dtz);
    tables.clear();
    table_of_key.clear();
    dtz_cache.clear();
    directories.clear();
    tb_largest = 0;
}

void split_path(const std::string& path) {
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find(';', start), path.size());
        if (end > start) directories.push_back(path.substr(start, end - start));
        start = end + 1;
    }
}

// The first directory's file of that name; empty if there is none.
std::string find_file(const std::string& name, const char* suffix) {
    for (const std::string& directory : directories) {
        std::string path = directory;
        path.append("/").append(name).append(suffix);
        if (path.size() > MAX_TABLE_PATH) return {};
        if (readable_file(path)) return path;
    }
    return {};
}

void register_table(const std::string& name) {
    if (find_file(name, WDL_SUFFIX).empty()) return;
    const TableMaterial material = material_of_name(name);
    const int index = int(tables.size());
    RegisteredTable& table = tables.emplace_back();
    table.name = name;
    table.material = material;
    table.key = material_key(material.counts, false);
    tb_largest = std::max<int>(tb_largest, material.pieces);
    table_of_key.emplace(table.key, index);
    table_of_key.emplace(material_key(material.counts, true), index);
}

// Every way to write `count` letters in falling order of value, in that order, from a letter on.
void write_sides(std::vector<std::string>& sides, const std::string& begun, int count,
                 std::size_t from = 0) {
    constexpr std::string_view LETTERS = "QRBNP";
    if (count == 0) {
        sides.push_back(begun);
        return;
    }
    for (std::size_t i = from; i < LETTERS.size(); ++i) {
        write_sides(sides, begun + LETTERS[i], count - 1, i);
    }
}

void register_materials(int stronger, int weaker) {
    std::vector<std::string> first;
    std::vector<std::string> second;
    write_sides(first, "K", stronger);
    write_sides(second, "K", weaker);
    for (std::size_t i = 0; i < first.size(); ++i) {
        // Equally many pieces: each pair of sides once.
        for (std::size_t j = stronger == weaker ? i : 0; j < second.size(); ++j) {
            register_table(first[i] + "v" + second[j]);
        }
    }
}

// Pieces beside the kings.
struct SideSizes {
    int stronger, weaker;
};
constexpr SideSizes MATERIALS[] = {{1, 0}, {1, 1}, {2, 0}, {2, 1}, {3, 0}, {2, 2}, {3, 1}, {4, 0}};

constexpr int NOT_REGISTERED = -1;
int find_key(u64 key) {
    const auto found = table_of_key.find(key);
    return found == table_of_key.end() ? NOT_REGISTERED : found->second;
}

RegisteredTable& table_at(int index) { return tables[std::size_t(index)]; }

// nullptr when there is no such file, or it is no table of that material.
std::unique_ptr<TableFile> load_file(const RegisteredTable& table, TableKind kind,
                                     const std::string& path, const char* suffix) {
    int error = 0;
    const MappedFile file = map_file(path, &error);
    if (error != 0) {
        end_at_once(format("MapViewOfFile() failed, name = %s%s, error = %d.", table.name.c_str(),
                           suffix, error));
    }
    std::unique_ptr<TableFile> loaded = open_table(file, kind, table.material);
    if (loaded) return loaded;
    release(file);
    report_damage();
    return nullptr;
}

void load_wdl(RegisteredTable& table) {
    const std::lock_guard lock(load_mutex);
    if (table.state.load(std::memory_order_relaxed) != TableState::NOT_LOADED) return;
    const std::string path = find_file(table.name, WDL_SUFFIX);
    if (path.empty()) {
        error_line(format("Could not find %s%s", table.name.c_str(), WDL_SUFFIX));
    } else {
        table.wdl = load_file(table, TableKind::WDL, path, WDL_SUFFIX);
    }
    table.state.store(table.wdl ? TableState::READY : TableState::UNUSABLE,
                      std::memory_order_release);
}

// The cache's entry for the table, moved to the front; made if it was not there.
DtzCacheEntry& cached_dtz(int index) {
    const auto found = std::find_if(dtz_cache.begin(), dtz_cache.end(),
                                    [index](const auto& entry) { return entry.table == index; });
    if (found != dtz_cache.end()) {
        std::rotate(dtz_cache.begin(), found, found + 1);
        return dtz_cache.front();
    }
    if (dtz_cache.size() == DTZ_TABLES) {
        release(dtz_cache.back().dtz);
        dtz_cache.pop_back();
    }
    const RegisteredTable& table = table_at(index);
    const std::string path = find_file(table.name, DTZ_SUFFIX);
    std::unique_ptr<TableFile> loaded;
    if (!path.empty()) loaded = load_file(table, TableKind::DTZ, path, DTZ_SUFFIX);
    dtz_cache.insert(dtz_cache.begin(), {index, std::move(loaded)});
    return dtz_cache.front();
}

}  // namespace

std::optional<int> tb_init(const std::string& path) {
    release_tables();
    if (path.empty() || path == "<empty>") return std::nullopt;
    split_path(path);
    for (const SideSizes& sizes : MATERIALS) register_materials(sizes.stronger, sizes.weaker);
    return int(tables.size());
}

TableUse wdl_table(const ProbePosition& position) {
    const u64 key = material_key(position, false);
    const int index = find_key(key);
    if (index == NOT_REGISTERED) return {};
    RegisteredTable& table = table_at(index);
    TableState state = table.state.load(std::memory_order_acquire);
    if (state == TableState::NOT_LOADED) {
        load_wdl(table);
        state = table.state.load(std::memory_order_acquire);
    }
    if (state != TableState::READY) return {};
    return {table.wdl.get(), key != table.key, index};
}

TableUse dtz_table(const ProbePosition& position) {
    const u64 key = material_key(position, false);
    const int index = find_key(key);
    if (index == NOT_REGISTERED) return {};
    const DtzCacheEntry& entry = cached_dtz(index);
    return {entry.dtz.get(), key != table_at(index).key, index};
}

void give_up_wdl_table(const TableUse& use) {
    // The mapping stays: other threads may be reading it.
    if (table_at(use.entry).state.exchange(TableState::UNUSABLE) == TableState::READY) {
        report_damage();
    }
}

void give_up_dtz_table(const TableUse& use) {
    report_damage();
    release(cached_dtz(use.entry).dtz);
}

}  // namespace quon
