// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The benchmarks' straightforward way does what it is measured for. See tests/cuts for the order of its stores.

#include "bench/literal/Writer.h"

#include "format/ValueKeys.h"
#include "tests/model/RandomSensors.h"
#include "tests/model/ReferenceWriter.h"
#include "tests/model/WriterCalls.h"
#include "tests/support/LogCapture.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using log4cpp::Priority;

constexpr char category[] = "qel.shm.access.writer";

struct Scenario {
    std::uint32_t seed;
    int steps;
    int valuesPerPoint;
    int mostPoints; // of one structure
    bool fillsUp;   // both tables run out of slots
};

std::ostream& operator<<(std::ostream& out, Scenario const& scenario) {
    return out << scenario.steps << " steps";
}

class LiteralWriterTest : public testing::Test {
protected:
    LiteralWriterTest() { sut.openShm(); }

    std::uint8_t const* bytes() const { return reinterpret_cast<std::uint8_t const*>(sut.region()); }

    bench::literal::Writer sut;
};

class LiteralWriterRandomTest : public testing::TestWithParam<Scenario> {
protected:
    LiteralWriterRandomTest() { sut.openShm(); }

    // One operation on all three.
    void step() {
        int const dice = sensors_.number(1, 100);
        if (dice <= 15) {
            auto const structure = sensors_.anyStructure(GetParam().mostPoints);
            auto const expected = reference.addStructure(structure);
            callBoth([&](auto& writer) { EXPECT_EQ(expected, addTo(writer, structure)); });
        } else if (dice <= 17) {
            reference.setActive();
            callBoth([](auto& writer) { writer.setActive(); });
        } else if (dice <= 90) {
            auto const update = sensors_.anyUpdate(reference);
            bool const expected = reference.updateMV(update.svid, update.number, update.at, update.state);
            callBoth(
                [&](auto& writer) { EXPECT_EQ(expected, writer.updateMV(update.svid, valueOf(update))); });
        } else {
            reference.propagateStates();
            callBoth([](auto& writer) { writer.propagateStates(); });
        }
    }

    bench::literal::Writer sut;
    ReferenceWriter reference;

    // What the last step logged.
    std::vector<LogEntry> literalLog;
    std::vector<LogEntry> libraryLog;

private:
    template <typename Call>
    void callBoth(Call const& call) {
        call(sut);
        literalLog = log_.take();
        call(library_);
        libraryLog = log_.take();
    }

    RandomSensors sensors_{GetParam().seed, GetParam().valuesPerPoint};
    shm::QelSharedMemoryWriter library_;
    LogCapture log_{category, Priority::INFO};
};

} // namespace

TEST_P(LiteralWriterRandomTest, EveryStep_LeavesTheBytesOfTheReference_AndTheLogOfTheLibrary) {
    ASSERT_TRUE(holdsBytesOf(reference, reinterpret_cast<std::uint8_t const*>(sut.region())));
    for (int i = 0; i < GetParam().steps && !HasFailure(); ++i) {
        step();
        ASSERT_TRUE(holdsBytesOf(reference, reinterpret_cast<std::uint8_t const*>(sut.region())))
            << "step " << i;
        ASSERT_EQ(libraryLog, literalLog) << "step " << i;
    }
    EXPECT_EQ(GetParam().fillsUp, reference.freePoints().empty());
    EXPECT_EQ(GetParam().fillsUp, reference.freeValues().empty());
}

INSTANTIATE_TEST_SUITE_P(Sequences, LiteralWriterRandomTest,
                         testing::Values(Scenario{1, 1000, 6, 1, false}, Scenario{2, 600, 8, 3, false},
                                         Scenario{3, 400, 40, 80, true}),
                         [](auto const& scenario) { return "Seed" + std::to_string(scenario.param.seed); });

TEST_F(LiteralWriterTest, UpdateMV_NullValue_StoresNothing) {
    bench::literal::Definitions definitions;
    constexpr long long device = 0x0100FFFFFFFF0000;
    definitions[device].mvs[1] = 0;
    sut.addStructure(definitions);
    ReferenceWriter reference;
    reference.addStructure({{device, {1}}});

    EXPECT_FALSE(sut.updateMV(device | key::voltage, nullptr));
    EXPECT_FALSE(sut.updateMV(device | key::fuseState, nullptr));
    EXPECT_TRUE(holdsBytesOf(reference, bytes()));
}

TEST_F(LiteralWriterTest, WithoutRegion_OperationsDoNothing) {
    bench::literal::Writer closed;
    bench::literal::Definitions definitions;
    constexpr long long device = 0x0100FFFFFFFF0000;
    definitions[device].mvs[1] = 0;
    LogCapture log(category, Priority::ERROR);

    EXPECT_EQ(ReferenceWriter::Outcome::Thrown, outcomeOf([&] { return closed.addStructure(definitions); }));
    closed.setActive();
    closed.propagateStates();
    EXPECT_FALSE(closed.updateMV(device | key::voltage, valueOf({device | key::voltage, 1.0, 1, 0})));
    EXPECT_EQ((std::vector<LogEntry>{
                  {category, Priority::ERROR, "addMP: the shared memory is not mapped"},
                  {category, Priority::ERROR, "bailout: failed to handle MP 0x100ffffffff0000"},
                  {category, Priority::ERROR, "setActive: the shared memory is not mapped"},
                  {category, Priority::ERROR, "propagateStates: the shared memory is not mapped"}}),
              log.entries());
}

} // namespace qel::test
