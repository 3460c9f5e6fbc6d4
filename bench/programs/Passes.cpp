// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/programs/Passes.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>

namespace bench {

namespace {

constexpr double nanosecondsPerSecond = 1e9;

/// The orders of a plan's values and points, newly shuffled.
Order shuffledOrder(Plan const& plan, std::mt19937_64& random) {
    Order order{plan.valueAccesses(), plan.pointAccesses()};
    std::shuffle(order.values.begin(), order.values.end(), random);
    std::shuffle(order.points.begin(), order.points.end(), random);
    return order;
}

/// The name of a row: the work, the contender and its variant.
std::string rowName(Work const& work, Candidate const& candidate) {
    auto const name = work.name + '|' + candidate.contender;
    return candidate.variant.empty() ? name : name + '|' + candidate.variant;
}

/// Readies an entry for a pass and lets it do one round uncounted. Throws when that gave another result than it must.
void warmUp(Entry& entry, Order const& order, std::string const& name) {
    entry.begin(order);
    if (entry.preparing()) {
        entry.prepare();
    }
    auto const result = entry.run();
    if (result != entry.expected()) {
        throw std::runtime_error(name + " gives " + std::to_string(result) + " instead of " +
                                 std::to_string(entry.expected()));
    }
}

/// Keeps what one benchmark found and prints nothing.
class Keeper : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(Context const& /*context*/) override { return true; }
    void ReportRuns(std::vector<Run> const& runs) override {
        if (runs.front().error_occurred) {
            throw std::runtime_error(runs.front().benchmark_name() + ": " + runs.front().error_message);
        }
        run_ = runs.front();
    }

    /// @param elapsed the elapsed time, not the time that the thread ran
    double secondsPerRound(bool elapsed) const {
        return (elapsed ? run_.real_accumulated_time : run_.cpu_accumulated_time) /
               static_cast<double>(run_.iterations);
    }
    benchmark::IterationCount iterations() const { return run_.iterations; }

private:
    Run run_;
};

/// A contender during the passes.
struct Runner {
    std::string name;
    std::unique_ptr<Entry> entry;
    bool elapsed;
    benchmark::IterationCount rounds = 0;
    std::vector<double> nanoseconds;
};

void doRounds(benchmark::State& state, Runner const& runner, Order const& order) {
    auto& entry = *runner.entry;
    warmUp(entry, order, runner.name);
    for ([[maybe_unused]] auto const round : state) {
        if (entry.preparing()) {
            state.PauseTiming();
            entry.prepare();
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(entry.run());
        if (entry.measured() >= 0) {
            state.SetIterationTime(entry.measured());
        }
    }
    entry.end();
}

void measure(Runner& runner, Order const& order, double seconds) {
    benchmark::ClearRegisteredBenchmarks();
    auto* const registered = benchmark::RegisterBenchmark(
        runner.name.c_str(), [&](benchmark::State& state) { doRounds(state, runner, order); });
    bool const measuresItself = runner.entry->measured() >= 0;
    if (measuresItself) {
        registered->UseManualTime()->Iterations(1);
    } else if (runner.rounds == 0) {
        registered->MinTime(seconds);
    } else {
        registered->Iterations(runner.rounds);
    }
    if (!measuresItself && runner.elapsed) {
        registered->UseRealTime();
    }
    Keeper keeper;
    benchmark::RunSpecifiedBenchmarks(&keeper);
    if (runner.rounds == 0) {
        runner.rounds = std::max<benchmark::IterationCount>(keeper.iterations(), 1);
        return;
    }
    auto const operations = measuresItself ? 1 : runner.entry->operations();
    runner.nanoseconds.push_back(keeper.secondsPerRound(measuresItself || runner.elapsed) /
                                 static_cast<double>(operations) * nanosecondsPerSecond);
}

} // namespace

CountedRound::CountedRound(Work const& work, Candidate const& candidate, Plan const& plan)
    : name_(rowName(work, candidate)),
      entry_(candidate.enter(plan)) {
    std::mt19937_64 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): counts of two runs are to be comparable
    warmUp(*entry_, shuffledOrder(plan, random), name_);
    if (entry_->preparing()) {
        entry_->prepare();
    }
}

CountedRound::~CountedRound() {
    entry_->end();
}

std::vector<Finding> timeInPasses(Work const& work, Plan const& plan, unsigned int passes, double seconds) {
    std::mt19937_64 random{std::random_device{}()};
    std::vector<Runner> runners;
    for (auto const& candidate : work.candidates) {
        runners.push_back({rowName(work, candidate), candidate.enter(plan), candidate.waits, 0, {}});
    }
    std::vector<std::size_t> turns(runners.size());
    std::iota(turns.begin(), turns.end(), std::size_t{0});
    for (unsigned int pass = 0; pass <= passes; ++pass) {
        auto const order = shuffledOrder(plan, random);
        std::shuffle(turns.begin(), turns.end(), random);
        for (auto const turn : turns) {
            measure(runners[turn], order, seconds);
        }
    }
    std::vector<Finding> findings;
    for (std::size_t index = 0; index < runners.size(); ++index) {
        auto const& candidate = work.candidates[index];
        findings.push_back(
            {work.name, candidate.contender, candidate.variant, "ns", runners[index].nanoseconds});
    }
    return findings;
}

} // namespace bench
