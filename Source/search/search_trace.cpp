// The trace file: a heading per iteration, and a line per path from the first move that differs
// from the path before it.

#include "search/search_trace.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "board/move_text.h"
#include "search/searcher.h"
#include "support/status_line.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr char TRACE_NAME[] = "trace.txt";
constexpr int INDENT = 9;  // characters of one entry with a move of four

void open_trace(SearchTrace& tracing) {
    tracing.file = std::fopen(TRACE_NAME, "w");
    if (tracing.file) return;
    error_line(format("quon: %s cannot be written", TRACE_NAME));
    std::_Exit(1);
}

}  // namespace

void trace_move(const ThreadData& t, Move move) {
    if (!is_main(t) || t.ply > t.shared->settings.trace) return;
    SearchTrace& tracing = t.shared->trace;
    if (!tracing.file) open_trace(tracing);
    if (t.iteration > tracing.iteration) {
        tracing.iteration = t.iteration;
        std::fprintf(tracing.file, "\n\nSEARCH DEPTH= %d\n", tracing.iteration);
    }
    if (t.ply <= tracing.ply) std::fprintf(tracing.file, "\n%*s", INDENT * (t.ply - 1), "");
    std::fprintf(tracing.file, "(%2d)%s ", t.plies[t.ply].depth,
                 move_to_text(move, tracing.style).c_str());
    tracing.ply = t.ply;
}

void flush_search_trace(SearchTrace& tracing) {
    if (tracing.file && (std::fflush(tracing.file) != 0 || std::ferror(tracing.file) != 0) &&
        !tracing.incomplete) {
        tracing.incomplete = true;
        error_line(format("quon: %s could not be written whole", TRACE_NAME));
    }
    tracing.iteration = 0;
}

}  // namespace quon
