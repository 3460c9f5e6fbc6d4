// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What one process does alone: time, instructions (under callgrind, or of an emulated processor) or system calls (under
/// strace).

#include "bench/programs/Passes.h"
#include "bench/programs/Program.h"
#include "bench/programs/Results.h"
#include "bench/works/SameRegion.h"

#include <unistd.h>
#if __has_include(<valgrind/callgrind.h>) // a sysroot has none
#include <valgrind/callgrind.h>
#endif

#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Callgrind writes one file per row, named by the label. It starts anew for each, or it would lose track of the
/// functions after the first file.
void countInstructions(bench::CountedRound& round) {
#ifdef CALLGRIND_START_INSTRUMENTATION
    auto const label = round.name() + '#' + std::to_string(round.operations());
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_TOGGLE_COLLECT; // of this thread only
    round.run();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(label.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
#else
    throw std::invalid_argument("this program was built without callgrind: " + round.name());
#endif
}

/// A call that strace and the emulator's plugin show and that does nothing else.
void mark(std::string const& text) {
    [[maybe_unused]] auto const refused = write(-1, text.data(), text.size());
}

void markRound(bench::CountedRound& round) {
    auto const label = round.name() + '#' + std::to_string(round.operations());
    auto const begin = "begin " + label;
    auto const end = "end " + label;
    mark(begin);
    round.run();
    mark(end);
}

/// The emulator's plugin sees the marks and not their texts, so the rows are told in their order.
void countEmulated(bench::Work const& work, bench::Candidate const& candidate, bench::Plan const& plan,
                   std::vector<bench::Finding>& findings) {
    bench::CountedRound round(work, candidate, plan);
    markRound(round);
    findings.push_back({work.name,
                        candidate.contender,
                        candidate.variant,
                        "marked operations",
                        {static_cast<double>(round.operations())}});
}

/// @throws std::invalid_argument for a measure that does not exist
void measure(bench::Work const& work, bench::Candidate const& candidate, bench::Options const& options,
             bench::Plan const& plan, std::vector<bench::Finding>& findings) {
    if (options.measure == "system-calls") {
        bench::CountedRound round(work, candidate, plan);
        markRound(round);
    } else if (candidate.throughServer) { // instructions of this process would tell little
        return;
    } else if (options.measure == "emulated-instructions") {
        countEmulated(work, candidate, plan, findings);
    } else if (options.measure == "instructions") {
        bench::CountedRound round(work, candidate, plan);
        countInstructions(round);
    } else {
        throw std::invalid_argument("there is no measure " + options.measure);
    }
}

void runSingle(bench::Options const& options) {
    bench::Plan const plan(options.shape);
    checkSameRegion(plan);
    std::vector<bench::Finding> findings;
    mark("begin"); // nothing in between: what the marks themselves take
    mark("end");
    for (auto const& work : bench::singleProcessWorks()) {
        if (options.measure == "time") {
            auto found = timeInPasses(work, plan, options.passes, options.seconds);
            std::move(found.begin(), found.end(), std::back_inserter(findings));
            continue;
        }
        for (auto const& candidate : work.candidates) {
            measure(work, candidate, options, plan, findings);
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
