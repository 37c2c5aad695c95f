// The trace file: a heading per iteration, and a line per path from the first move that differs
// from the path before it.

#include "search/search_trace.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "board/move_text.h"

namespace quon {

namespace {

constexpr char TRACE_NAME[] = "trace.txt";
constexpr int INDENT = 9;  // characters of one entry with a move of four

// Belongs to the main search thread.
struct SearchTrace {
    std::FILE* file = nullptr;
    int iteration = 0;        // the last one of this search with a heading
    int ply = 0;              // of the last entry
    bool incomplete = false;  // a write has failed, which has been told
};
SearchTrace tracing;

void open_trace() {
    tracing.file = std::fopen(TRACE_NAME, "w");
    if (tracing.file) return;
    std::fprintf(stderr, "quon: %s cannot be written\n", TRACE_NAME);
    std::_Exit(1);
}

}  // namespace

void trace_move(const ThreadData& t, Move move) {
    if (!is_main(t) || t.ply > options.trace) return;
    if (!tracing.file) open_trace();
    if (t.iteration > tracing.iteration) {
        tracing.iteration = t.iteration;
        std::fprintf(tracing.file, "\n\nSEARCH DEPTH= %d\n", tracing.iteration);
    }
    if (t.ply <= tracing.ply) std::fprintf(tracing.file, "\n%*s", INDENT * (t.ply - 1), "");
    std::fprintf(tracing.file, "(%2d)%s ", t.plies[t.ply].depth, move_to_text(move).c_str());
    tracing.ply = t.ply;
}

void flush_search_trace() {
    if (tracing.file && (std::fflush(tracing.file) != 0 || std::ferror(tracing.file) != 0) &&
        !tracing.incomplete) {
        tracing.incomplete = true;
        std::fprintf(stderr, "quon: %s could not be written whole\n", TRACE_NAME);
    }
    tracing.iteration = 0;
}

}  // namespace quon
