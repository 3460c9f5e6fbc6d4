// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Tails: how long single operations take, each timed by itself, without and with other processes that scan.

#include "bench/contenders/Library.h"
#include "bench/programs/Program.h"
#include "bench/programs/Results.h"
#include "bench/support/Durations.h"
#include "bench/works/Entries.h"
#include "bench/works/Helper.h"
#include "bench/works/Operations.h"
#include "bench/works/Stamp.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Readers that scan without pause beside the operations.
constexpr std::array<unsigned int, 2> loads{0, 4};

/// Times operations one by one until the time is over.
using Sampler = std::function<void(double seconds, bench::Durations& durations)>;

/// The loop has the operation inline, so that nothing but the operation lies between two looks at the clock.
template <typename Operation>
Sampler sampler(Operation operation) {
    return [operation = std::move(operation)](double seconds, bench::Durations& durations) mutable {
        constexpr double nanosecondsPerSecond = 1e9;
        auto const end = bench::now() + static_cast<std::int64_t>(seconds * nanosecondsPerSecond);
        for (auto before = bench::now(); before < end; before = bench::now()) {
            operation();
            auto const after = bench::now();
            durations.record(after - before);
        }
    };
}

/// One operation after the other, over all values in shuffled order, over and over.
template <typename Side, typename Operation>
Sampler single(bench::Plan const& plan) {
    auto accesses = plan.valueAccesses();
    std::shuffle(accesses.begin(), accesses.end(), std::mt19937_64{std::random_device{}()});
    return sampler([side = std::make_shared<Side>(plan), accesses = std::move(accesses),
                    next = std::size_t{0}]() mutable {
        benchmark::DoNotOptimize(Operation::run(**side, accesses[next]));
        next = next + 1 < accesses.size() ? next + 1 : 0;
    });
}

/// Nothing: what is left is the clock and whatever the machine does meanwhile.
Sampler nothing(bench::Plan const& /*plan*/) {
    return sampler([] { benchmark::ClobberMemory(); });
}

/// Until a value that one contender's writer stores is read by a reader of another one in another process.
template <typename Contender, typename Watching>
Sampler visible(bench::Plan const& plan) {
    auto const writer = bench::writerOf<Contender>(plan);
    auto const watcher = std::make_shared<bench::Helper>("watch", Watching::name, plan.shape());
    return [=, access = bench::watched(plan)](double seconds, bench::Durations& durations) {
        constexpr double nanosecondsPerSecond = 1e9;
        watcher->start();
        auto const end = bench::now() + static_cast<std::int64_t>(seconds * nanosecondsPerSecond);
        while (bench::now() < end) {
            auto const seen = watcher->control().seen.load();
            writer->updateLate(access, bench::stamp);
            watcher->waitUntilSeen(seen + 1);
            durations.record(watcher->control().latency.load());
        }
        watcher->stop();
    };
}

/// An operation of the table.
struct Row {
    char const* name;
    Sampler (*enter)(bench::Plan const& plan);
};

constexpr std::array<Row, 5> rows{{
    {"the clock alone", nothing},
    {"`updateMV`", single<bench::WriterSide<bench::Library>, bench::Update>},
    {"`updateMV` of a kept value", single<bench::KeptWriterSide<bench::LibraryKept>, bench::Update>},
    {"kept value, read", single<bench::ReaderSide<bench::LibraryKept>, bench::Fetch>},
    {"`updateMV` until seen by a kept value", visible<bench::Library, bench::LibraryKept>},
}};

/// Shares of all operations: 0, a half, 80 %, 90 %, 95 %, 98 %, 99 % and so on, for as long as some operations lie beyond.
std::vector<double> sharesFor(std::uint64_t count) {
    constexpr std::array<std::uint64_t, 3> steps{1, 2, 5};
    constexpr std::uint64_t ten = 10;
    std::vector<double> shares;
    for (std::uint64_t decade = 1; decade <= count; decade *= ten) {
        for (auto const step : steps) {
            shares.push_back(1 - 1 / static_cast<double>(decade * step));
        }
    }
    return shares;
}

void addFindings(char const* name, unsigned int readers, bench::Durations const& durations,
                 std::vector<bench::Finding>& findings) {
    auto const shares = sharesFor(durations.count());
    std::vector<double> quantiles;
    quantiles.reserve(shares.size());
    for (auto const share : shares) {
        quantiles.push_back(durations.quantile(share));
    }
    auto const add = [&](char const* what, std::vector<double> numbers) {
        findings.push_back({"tails", name, std::to_string(readers), what, std::move(numbers)});
    };
    add("shares", shares);
    add("quantiles", quantiles);
    add("longest", {static_cast<double>(durations.longest())});
    add("count", {static_cast<double>(durations.count())});
}

void runTails(bench::Options const& options) {
    constexpr double warmUpShare = 0.1;
    bench::Plan const plan(options.shape);
    std::vector<Sampler> samplers;
    samplers.reserve(rows.size());
    for (auto const& row : rows) {
        samplers.push_back(row.enter(plan));
    }
    std::vector<std::unique_ptr<bench::Helper>> readers;
    std::vector<bench::Finding> findings;
    for (auto const load : loads) {
        while (readers.size() < load) {
            readers.push_back(std::make_unique<bench::Helper>("scan", bench::Library::name, plan.shape()));
            readers.back()->start();
        }
        std::vector<bench::Durations> durations(rows.size());
        for (auto& warmUp : samplers) {
            bench::Durations ignored;
            warmUp(options.seconds * warmUpShare, ignored);
        }
        for (unsigned int pass = 0; pass < options.passes; ++pass) {
            for (std::size_t row = 0; row < rows.size(); ++row) {
                samplers[row](options.seconds, durations[row]);
            }
        }
        for (std::size_t row = 0; row < rows.size(); ++row) {
            addFindings(rows.at(row).name, load, durations[row], findings);
        }
    }
    for (auto const& reader : readers) {
        reader->stop();
    }
    writeFindings(options.out, options.shape, findings);
}

} // namespace

int main(int argc, char** argv) {
    return bench::runProgram(argc, argv, runTails);
}
