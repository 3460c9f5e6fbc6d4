// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What takes several processes: time only.

#include "bench/programs/Passes.h"
#include "bench/programs/Program.h"
#include "bench/programs/Results.h"

#include <iterator>
#include <utility>

namespace {

void runSeveral(bench::Options const& options) {
    bench::Plan const plan(options.shape);
    std::vector<bench::Finding> findings;
    for (auto const& work : bench::severalProcessesWorks()) {
        auto found = timeInPasses(work, plan, options.passes, options.seconds);
        std::move(found.begin(), found.end(), std::back_inserter(findings));
    }
    writeFindings(options.out, options.shape, findings);
}

} // namespace

int main(int argc, char** argv) {
    return bench::runProgram(argc, argv, runSeveral);
}
