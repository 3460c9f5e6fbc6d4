// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What one process does alone: time, instructions (under callgrind) or system calls (under strace).

#include "bench/programs/Options.h"
#include "bench/programs/Passes.h"
#include "bench/programs/Results.h"
#include "bench/works/SameRegion.h"

#include <unistd.h>
#include <valgrind/callgrind.h>

#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Callgrind writes one file per row, named by the label. It starts anew for each, or it would lose track of the
/// functions after the first file.
void countInstructions(bench::CountedRound& round) {
    auto const label = round.name() + '#' + std::to_string(round.operations());
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_TOGGLE_COLLECT; // of this thread only
    round.run();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(label.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

/// A call that strace shows and that does nothing else.
void mark(std::string const& text) {
    [[maybe_unused]] auto const refused = write(-1, text.data(), text.size());
}

void markSystemCalls(bench::CountedRound& round) {
    auto const label = round.name() + '#' + std::to_string(round.operations());
    mark("begin " + label);
    round.run();
    mark("end " + label);
}

void runSingle(bench::Options const& options) {
    bool const time = options.measure == "time";
    bool const instructions = options.measure == "instructions";
    if (!time && !instructions && options.measure != "system-calls") {
        throw std::invalid_argument("there is no measure " + options.measure);
    }
    bench::Plan const plan(options.shape);
    checkSameRegion(plan);
    std::vector<bench::Finding> findings;
    for (auto const& work : bench::singleProcessWorks()) {
        if (time) {
            auto found = timeInPasses(work, plan, options.passes, options.seconds);
            std::move(found.begin(), found.end(), std::back_inserter(findings));
            continue;
        }
        for (auto const& candidate : work.candidates) {
            if (!instructions) {
                bench::CountedRound round(work, candidate, plan);
                markSystemCalls(round);
            } else if (!candidate.throughServer) {
                bench::CountedRound round(work, candidate, plan);
                countInstructions(round);
            }
        }
    }
    if (!options.out.empty()) {
        writeFindings(options.out, options.shape, findings);
    }
}

} // namespace

int main(int argc, char** argv) {
    return bench::runProgram(argc, argv, runSingle);
}
