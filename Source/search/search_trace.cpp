// The trace file: a heading per iteration, and a line per path from the first move that differs
// from the path before it.

#include "search/search_trace.h"

#include <cstdlib>
#include <string>

#include "board/move_text.h"
#include "search/searcher.h"
#include "support/output_file.h"
#include "support/status_line.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr char TRACE_NAME[] = "trace.txt";
constexpr int INDENT = 9;  // characters of one entry with a move of four

void open_trace(SearchTrace& tracing) {
    if (tracing.file.open(TRACE_NAME, FileMode::WRITE)) return;
    error_line(format("quon: %s cannot be written", TRACE_NAME));
    std::_Exit(1);
}

}  // namespace

void trace_move(const ThreadData& t, Move move) {
    if (!is_main(t) || t.ply > t.shared->settings.trace) return;
    SearchTrace& tracing = t.shared->trace;
    if (!tracing.file.is_open()) open_trace(tracing);
    if (t.iteration > tracing.iteration) {
        tracing.iteration = t.iteration;
        tracing.file.write(format("\n\nSEARCH DEPTH= %d\n", tracing.iteration));
    }
    if (t.ply <= tracing.ply) tracing.file.write(format("\n%*s", INDENT * (t.ply - 1), ""));
    tracing.file.write(
        format("(%2d)%s ", t.plies[t.ply].depth, move_to_text(move, tracing.style).c_str()));
    tracing.ply = t.ply;
}

void flush_search_trace(SearchTrace& tracing) {
    if (tracing.file.is_open()) tracing.file.flush();
    if (tracing.file.failed() && !tracing.told) {
        tracing.told = true;
        report_incomplete(TRACE_NAME);
    }
    tracing.iteration = 0;
}

}  // namespace quon
