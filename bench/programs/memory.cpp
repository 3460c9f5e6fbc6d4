// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Memory: allocations per operation, bytes per value in the store, and bytes of heap in its writer and its reader.

#include "bench/contenders/Floor.h"
#include "bench/contenders/Hash.h"
#include "bench/contenders/Interprocess.h"
#include "bench/contenders/Library.h"
#include "bench/contenders/Literal.h"
#include "bench/contenders/Lmdb.h"
#include "bench/contenders/Mmv.h"
#include "bench/contenders/Redis.h"
#include "bench/contenders/Sqlite.h"
#include "bench/programs/AllocationCount.h"
#include "bench/programs/Passes.h"
#include "bench/programs/Program.h"
#include "bench/programs/Results.h"

#include <memory>
#include <vector>

namespace {

using Findings = std::vector<bench::Finding>;

void countAllocations(bench::Work const& work, bench::Plan const& plan, Findings& findings) {
    for (auto const& candidate : work.candidates) {
        bench::CountedRound round(work, candidate, plan);
        auto const before = bench::allocationCount().allocations;
        round.run();
        auto const allocations = bench::allocationCount().allocations - before;
        findings.push_back({work.name,
                            candidate.contender,
                            candidate.variant,
                            "allocations",
                            {static_cast<double>(allocations) / static_cast<double>(round.operations())}});
    }
}

template <typename Contender>
void measureBytes(bench::Plan const& plan, Findings& findings) {
    auto const add = [&](char const* what, std::size_t bytes) {
        findings.push_back({"size", Contender::name, "", what, {static_cast<double>(bytes)}});
    };
    auto const input = std::make_unique<typename Contender::Input>(plan);
    auto const empty = bench::allocationCount().bytes;
    auto const writer = std::make_unique<typename Contender::Writer>();
    writer->open();
    writer->build(*input);
    auto const written = bench::allocationCount().bytes;
    auto const reader = std::make_unique<typename Contender::Reader>(plan);
    auto const read = bench::allocationCount().bytes;
    add("store bytes", writer->bytes());
    add("writer bytes", written - empty);
    add("reader bytes", read - written);
}

template <typename... Contenders>
void measureBytesOf(bench::Plan const& plan, Findings& findings) {
    (measureBytes<Contenders>(plan, findings), ...);
}

void runMemory(bench::Options const& options) {
    bench::Plan const plan(options.shape);
    Findings findings;
    for (auto const& work : bench::singleProcessWorks()) {
        countAllocations(work, plan, findings);
    }
    measureBytesOf<bench::Floor, bench::Hash, bench::Library, bench::Literal, bench::InterprocessMap,
                   bench::InterprocessHash, bench::Mmv, bench::Lmdb, bench::Sqlite, bench::Redis>(plan,
                                                                                                  findings);
    writeFindings(options.out, options.shape, findings);
}

} // namespace

int main(int argc, char** argv) {
    return bench::runProgram(argc, argv, runMemory);
}
