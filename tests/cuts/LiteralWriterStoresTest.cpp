// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The benchmarks' straightforward way makes the library's stores, in the library's order.

#include "bench/literal/Writer.h"

#include "tests/cuts/StoreLog.h"
#include "tests/model/RandomSensors.h"
#include "tests/model/ReferenceWriter.h"
#include "tests/model/WriterCalls.h"
#include "tests/support/LogCapture.h"
#include "tests/writer/WriterFixture.h"
#include "writer/QelShmKeptUpdate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <sstream>
#include <string>

namespace qel::test {

namespace {

/// One store a line.
std::string textOf(Stores const& stores) {
    std::ostringstream text;
    for (auto const& store : stores) {
        text << static_cast<int>(store.kind) << ' ' << store.offset << '+' << static_cast<int>(store.width)
             << ' ' << store.before << " -> " << store.written << '\n';
    }
    return text.str();
}

template <typename Call>
std::string storesOf(void const* region, Call const& call) {
    StoreLog const log(region);
    call();
    return textOf(log.stores());
}

class LiteralWriterStoresTest : public testing::Test {
protected:
    LiteralWriterStoresTest() { sut.openShm(); }

    /// The stores of one operation, which both are to make alike.
    template <typename Operation>
    void carryOut(Operation const& operation) {
        auto const expected = storesOf(library_.region(), [&] { operation(library_); });
        ASSERT_EQ(expected, storesOf(sut.region(), [&] { operation(sut); }));
        most_ = std::max(most_, expected.size());
    }

    /// The library stores numbers in turns by id and through a kept value.
    void update(RandomSensors::Update const& update) {
        auto const expected = storesOf(library_.region(), [&] {
            isKept_ = !isKept_ && update.number.has_value();
            if (isKept_) {
                library_.updateMV(kept_.try_emplace(update.svid, update.svid).first->second, *update.number,
                                  update.at, static_cast<eStatus_Bits>(update.state));
            } else {
                library_.updateMV(update.svid, valueOf(update));
            }
        });
        ASSERT_EQ(expected, storesOf(sut.region(), [&] { sut.updateMV(update.svid, valueOf(update)); }));
        most_ = std::max(most_, expected.size());
    }

    void addStructure(ReferenceWriter::Structure const& structure) {
        reference_.addStructure(structure);
        carryOut([&](auto& writer) { addTo(writer, structure); });
    }

    bench::literal::Writer sut;
    RandomSensors sensors_{1, 6};
    ReferenceWriter reference_;
    std::size_t most_ = 0;

private:
    LogCapture quiet_{"qel", log4cpp::Priority::FATAL};
    ExposedWriter library_;
    std::map<long long, shm::QelShmKeptUpdate> kept_;
    bool isKept_ = false;
};

} // namespace

TEST_F(LiteralWriterStoresTest, EveryOperation_MakesTheStoresOfTheLibraryInItsOrder) {
    for (int i = 0; i < 1000 && !HasFailure(); ++i) {
        int const dice = sensors_.number(1, 100);
        if (dice <= 15) {
            addStructure(sensors_.anyStructure(2));
        } else if (dice <= 17) {
            carryOut([](auto& writer) { writer.setActive(); });
        } else if (dice <= 90) {
            update(sensors_.anyUpdate(reference_));
        } else {
            carryOut([](auto& writer) { writer.propagateStates(); });
        }
    }
    EXPECT_GT(most_, 1000U); // so it was not silence that was compared
}

} // namespace qel::test
