// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A work, and contenders that are ready to do it.
#pragma once

#include "bench/support/Plan.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The order in which a pass goes over values and points; the same for every contender.
struct Order {
    std::vector<Access> values;
    std::vector<Access> points;
};

/// A contender at a work.
class Entry {
public:
    Entry() = default;
    virtual ~Entry() = default;
    Entry(Entry const&) = delete;
    Entry& operator=(Entry const&) = delete;

    /// Before the rounds of a pass.
    virtual void begin(Order const& order) = 0;

    /// After them.
    virtual void end() {}

    /// What comes before each round and does not count; asked for only if preparing() is true.
    virtual bool preparing() const { return false; }
    virtual void prepare() {}

    /// One round. Its result is a number that anybody can tell beforehand, see expected().
    virtual double run() = 0;

    /// What run() must give, so that nobody wins by doing less.
    virtual double expected() const = 0;

    /// How many operations a round makes; known after begin().
    virtual std::size_t operations() const = 0;

    /// The time in seconds that one operation took in the last round, where an entry measures that by itself; negative
    /// where it does not. Such an entry does one round in each pass.
    virtual double measured() const { return -1; }
};

/// One row of a work.
struct Candidate {
    std::string contender;
    std::string variant; ///< what tells rows of one contender apart, empty where there is one only
    bool throughServer;
    bool waits; ///< see InProcess
    std::function<std::unique_ptr<Entry>(Plan const&)> enter;
};

struct Work {
    std::string name;
    std::vector<Candidate> candidates;
};

/// What one process does alone.
std::vector<Work> singleProcessWorks();

/// What takes several.
std::vector<Work> severalProcessesWorks();

} // namespace bench
