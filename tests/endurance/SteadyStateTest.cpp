// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What a real-time host relies on: once everything was used once, delivering, reading and visiting ask nothing of the
// kernel. Nothing is timed here.

#include "domain/MeasureValue.h"
#include "format/ValueKeys.h"
#include "reader/BaseQelShmVisitor.h"
#include "reader/IQelVisitorResult.h"
#include "reader/QelSharedMemoryReader.h"
#include "reader/QelShmKeptMVal.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/KernelContact.h"
#include "tests/support/Sanitizers.h"
#include "writer/QelSharedMemoryWriter.h"
#include "writer/QelShmKeptUpdate.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

constexpr unsigned int million = 1'000'000;
constexpr int refused = 77; // exit status of a child that may not refuse system calls

// The keys of every point.
constexpr std::array<std::uint16_t, 11> keys{
    shm::key::voltage,        shm::key::current,        shm::key::peakCurrent,   shm::key::powerFactor,
    shm::key::apparentPower,  shm::key::activePower,    shm::key::reactivePower, shm::key::frequency,
    shm::key::apparentEnergy, shm::key::reactiveEnergy, shm::key::activeEnergy};

/// One unit with this many inlets and six phases below each.
shm::QelSharedMemoryWriter::Definitions definitions(unsigned int inlets) {
    constexpr unsigned long long unit = 0x0100'FFFF'FFFF'0000;
    constexpr unsigned int inletShift = 40;
    constexpr unsigned int phaseShift = 32;
    constexpr unsigned int phases = 6;
    constexpr unsigned long long unused = 0xFF;
    shm::QelSharedMemoryWriter::Definitions points;
    auto const add = [&](unsigned long long svid) {
        for (auto const key : keys) {
            points[static_cast<long long>(svid)].mvs.emplace(key, shm::NO_POSITION);
        }
    };
    auto const level = [&](unsigned long long svid, unsigned int shift, unsigned long long number) {
        return (svid & ~(unused << shift)) | (number << shift);
    };
    add(unit);
    for (unsigned int inlet = 1; inlet <= inlets; ++inlet) {
        auto const above = level(unit, inletShift, inlet);
        add(above);
        for (unsigned int phase = 1; phase <= phases; ++phase) {
            add(level(above, phaseShift, phase));
        }
    }
    return points;
}

/// Opens at once what otherwise waits for the hardware manager.
class OpenReader : public shm::QelSharedMemoryReader {
public:
    OpenReader() : QelSharedMemoryReader(0, false) { QelSharedMemoryReader::openShm(); }
};

class SummingVisitor : public shm::BaseQelShmVisitor {
public:
    explicit SummingVisitor(double& sum) : sum_(sum) {}
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        sum_ += value->value;
    }

private:
    double& sum_;
};

/// A writer and a reader of one unit, and what they do over and over.
class Unit {
public:
    explicit Unit(unsigned int inlets) {
        auto const points = definitions(inlets);
        writer_.addStructure(points);
        writer_.setActive();
        for (auto const& [svid, definition] : points) {
            for (auto const& [key, position] : definition.mvs) {
                svids_.push_back(svid | key);
                updates_.emplace_back(svid | key);
                values_.emplace_back(svid | key);
            }
        }
        reader_ = std::make_unique<OpenReader>();
        reader_->visitor(std::make_unique<SummingVisitor>(sum_));
        reader_->syncPositions(true);
    }

    std::size_t size() const { return svids_.size(); }

    void update(unsigned int times) {
        each(times, [&](std::size_t index, std::uint64_t at) {
            return writer_.updateMV(svids_[index], std::make_unique<measval::MeasureValue>(
                                                       static_cast<double>(at), at, stateOf(at)));
        });
    }

    void updateKept(unsigned int times) {
        each(times, [&](std::size_t index, std::uint64_t at) {
            return writer_.updateMV(updates_[index], static_cast<double>(at), at, stateOf(at));
        });
    }

    void fetch(unsigned int times) {
        each(times, [&](std::size_t index, std::uint64_t /*at*/) {
            auto const value = reader_->mval(svids_[index], false);
            return value && value->key == (svids_[index] & 0xFFFF);
        });
    }

    void fetchKept(unsigned int times) {
        each(times, [&](std::size_t index, std::uint64_t /*at*/) {
            auto const value = reader_->mval(values_[index]);
            return value && value->key == (svids_[index] & 0xFFFF);
        });
    }

    void visit(unsigned int times) {
        for (unsigned int count = 0; count < times; ++count) {
            reader_->visit(result_);
        }
    }

    void scan(unsigned int times) {
        for (unsigned int count = 0; count < times; ++count) {
            for (auto const& point : reader_->points()) {
                for (auto const& value : point.values()) {
                    sum_ += value->value;
                }
            }
        }
    }

    /// Whether every operation did what it is there for.
    bool isWhole() const { return failures_ == 0; }

private:
    static eStatus_Bits stateOf(std::uint64_t at) {
        constexpr std::uint64_t warns = 50;
        return at % warns == 0 ? eStatus_HighWarning : eStatus_NoError;
    }

    template <typename Operation>
    void each(unsigned int times, Operation const& operation) {
        for (unsigned int count = 0; count < times; ++count) {
            if (!operation(count % svids_.size(), count)) {
                ++failures_;
            }
        }
    }

    shm::QelSharedMemoryWriter writer_;
    std::unique_ptr<OpenReader> reader_;
    std::vector<long long> svids_;
    std::vector<shm::QelShmKeptUpdate> updates_;
    std::vector<shm::QelShmKeptMVal> values_;
    std::shared_ptr<shm::IQelVisitorResult> result_ = std::make_shared<shm::IQelVisitorResult>();
    double sum_ = 0;
    unsigned int failures_ = 0;
};

struct Operation {
    char const* name;
    void (Unit::*run)(unsigned int times);
};

constexpr std::array<Operation, 4> single{{{"updateMV", &Unit::update},
                                           {"updateMV of a kept value", &Unit::updateKept},
                                           {"mval", &Unit::fetch},
                                           {"mval of a kept value", &Unit::fetchKept}}};
constexpr std::array<Operation, 2> scanning{{{"visit", &Unit::visit}, {"points and values", &Unit::scan}}};

/// Prints what a body asked of the kernel, and for whom.
/// The kernel itself may take a page away, to move it or while memory is short. The code's own faults come every time, so the
/// best of three rounds counts.
bool isQuiet(char const* name, std::function<void()> const& body) {
    constexpr int rounds = 3;
    KernelContact contact;
    for (int round = 0; round < rounds; ++round) {
        contact = kernelContactOf(body);
        if (contact.systemCalls != 0) {
            break;
        }
        if (contact.pageFaults == 0) {
            return true;
        }
    }
    std::cerr << name << ": " << contact << std::endl;
    return false;
}

template <typename Operations>
bool areQuiet(Unit& unit, Operations const& operations, unsigned int times) {
    bool quiet = true;
    for (auto const& operation : operations) {
        quiet = isQuiet(operation.name, [&] { (unit.*operation.run)(times); }) && quiet;
    }
    return quiet;
}

/// In a process of its own, which may do nothing any more after it was warm.
/// @param scans as many visits and scans of everything
int statusOfUnit(unsigned int inlets, unsigned int scans) {
    return inForkedChild(
               [=]() -> int {
                   Unit unit(inlets);
                   for (int round = 0; round < 2; ++round) {
                       for (auto const& operation : single) {
                           (unit.*operation.run)(static_cast<unsigned int>(unit.size()));
                       }
                       for (auto const& operation : scanning) {
                           (unit.*operation.run)(1);
                       }
                   }
                   if (!refuseSystemCalls()) {
                       ::_exit(refused);
                   }
                   bool const isSingleQuiet = areQuiet(unit, single, million); // each tells what it found
                   bool const isScanQuiet = areQuiet(unit, scanning, scans);
                   ::_exit(isSingleQuiet && isScanQuiet && unit.isWhole() ? 0 : 1);
               },
               std::chrono::minutes(4))
        .value_or(-1);
}

/// A child that does something which a quiet one does not.
int statusOf(std::function<void()> const& body) {
    return inForkedChild([&] {
               body(); // warm
               if (!refuseSystemCalls()) {
                   return refused;
               }
               return isQuiet("on purpose", body) ? 0 : 1;
           })
        .value_or(-1);
}

class SteadyStateTest : public testing::Test {
protected:
    void SetUp() override {
        if (underAddressSanitizer || underThreadSanitizer) {
            GTEST_SKIP() << "a sanitizer's runtime asks the kernel for memory";
        }
        if (statusOf([] {}) == refused) {
            GTEST_SKIP() << "this machine refuses filters of system calls";
        }
    }
};

TEST_F(SteadyStateTest, SmallUnit_AMillionOfEachOperationAsksNothingOfTheKernel) {
    EXPECT_EQ(0, statusOfUnit(1, million));
}

TEST_F(SteadyStateTest, FullTables_AMillionOfEachOperationAsksNothingOfTheKernel) {
    constexpr unsigned int inlets = 114; // 799 points
    constexpr unsigned int scans = million / (799 * keys.size()) + 1;
    EXPECT_EQ(0, statusOfUnit(inlets, scans)); // a million values visited
}

TEST_F(SteadyStateTest, Harness_SeesASystemCall) {
    EXPECT_EQ(1, statusOf([] { ::getppid(); }));
}

TEST_F(SteadyStateTest, Harness_SeesAPageFault) {
    constexpr std::size_t page = 4096;
    constexpr std::size_t pages = 8;
    auto* const memory = static_cast<char*>(
        ::mmap(nullptr, pages * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(MAP_FAILED, memory);
    std::size_t next = 0; // each round touches another page
    EXPECT_EQ(1, statusOf([&] { *const_cast<char volatile*>(&memory[next++ * page]) = 1; }));
    ::munmap(memory, pages * page);
}

} // namespace

} // namespace qel::test
