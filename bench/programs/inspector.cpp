// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whole runs of qelshm on a live region: elapsed time from the program's start to its end.

#include "bench/contenders/Library.h"
#include "bench/programs/Program.h"
#include "bench/programs/Results.h"
#include "bench/support/Process.h"
#include "bench/works/Entries.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <numeric>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// Arguments, and the exit status that tells that all went well.
struct Call {
    char const* arguments;
    int status;
};

// One value in fifty warns, so why has causes to list.
constexpr std::array<Call, 6> calls{
    {{"--version", 0}, {"status", 0}, {"tree", 0}, {"tree --values", 0}, {"check", 0}, {"why", 1}}};

double timeOf(std::string const& program, Call const& call) {
    std::vector<std::string> command{program};
    std::istringstream words(call.arguments);
    for (std::string word; words >> word;) {
        command.push_back(word);
    }
    auto const start = std::chrono::steady_clock::now();
    bench::Process const process(command);
    auto const status = process.exitStatus();
    auto const duration = std::chrono::steady_clock::now() - start;
    if (status != call.status) {
        throw std::runtime_error(program + ' ' + call.arguments + " ended with " + std::to_string(status));
    }
    return std::chrono::duration<double, std::nano>(duration).count();
}

void runInspector(bench::Options const& options) {
    bench::Plan const plan(options.shape);
    auto const writer = bench::writerOf<bench::Library>(plan);
    writer->propagate();
    auto const build = std::filesystem::path(bench::ownProgram()).parent_path().parent_path();
    std::string const program = build / "tools" / "qelshm" / "qelshm";

    std::vector<bench::Finding> findings;
    findings.reserve(calls.size());
    for (auto const& call : calls) {
        findings.push_back({"inspect", std::string("qelshm ") + call.arguments, "", "ns", {}});
    }
    std::mt19937 random(options.passes); // NOLINT(cert-msc32-c,cert-msc51-cpp): any order is as good
    std::vector<std::size_t> order(calls.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (unsigned int pass = 0; pass < options.passes; ++pass) {
        std::shuffle(order.begin(), order.end(), random);
        for (auto const index : order) {
            findings.at(index).numbers.push_back(timeOf(program, calls.at(index)));
        }
    }
    writeFindings(options.out, options.shape, findings);
}

} // namespace

int main(int argc, char** argv) {
    return bench::runProgram(argc, argv, runInspector);
}
