// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Measures the contenders of a work in turn, pass by pass.
#pragma once

#include "bench/programs/Results.h"
#include "bench/works/Work.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// A contender at a work, warmed up and ready for one round that counts; always with the same order. Throws
/// std::runtime_error when the warming round gave another result than it must.
class CountedRound {
public:
    CountedRound(Work const& work, Candidate const& candidate, Plan const& plan);
    ~CountedRound();
    CountedRound(CountedRound const&) = delete;
    CountedRound& operator=(CountedRound const&) = delete;

    void run() { entry_->run(); }
    std::string const& name() const { return name_; }
    std::size_t operations() const { return entry_->operations(); }

private:
    std::string name_;
    std::unique_ptr<Entry> entry_;
};

/// Times every contender by Google Benchmark once in each pass, in an order that is shuffled anew before the pass, as is
/// the order of values and points. A pass before the first finds out how many rounds a contender makes in that time.
/// @return for each contender the ns per operation of each pass, as "ns"
std::vector<Finding> timeInPasses(Work const& work, Plan const& plan, unsigned int passes, double seconds);

} // namespace bench
