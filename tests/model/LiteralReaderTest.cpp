// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The benchmarks' straightforward way does what it is measured for.

#include "bench/literal/Reader.h"

#include "bench/literal/Writer.h"
#include "bench/support/SharedObject.h"
#include "reader/BaseQelShmVisitor.h"
#include "tests/model/RandomSensors.h"
#include "tests/model/ReferenceWriter.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <tuple>
#include <vector>

namespace qel::test {

namespace {

using Result = std::shared_ptr<shm::IQelVisitorResult>;

/// What a visitor is told: the depth, the id of the root or a point, the position of a value's slot or the point's.
using Events = std::vector<std::tuple<unsigned int, long long, std::ptrdiff_t>>;

class NotingVisitor : public shm::BaseQelShmVisitor {
public:
    NotingVisitor(Events& events, void const* region)
        : events_(events),
          region_(static_cast<std::uint8_t const*>(region)) {}

    void onRoot(shm::QelShmRoot const& root, Result& /*result*/) override {
        events_.emplace_back(0, root->guid, offsetOf(&*root));
    }
    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth, Result& /*result*/) override {
        events_.emplace_back(depth, point->guid, offsetOf(&*point));
    }
    void onMVal(shm::QelShmMVal const& value, long long svid, unsigned int depth,
                Result& /*result*/) override {
        events_.emplace_back(depth, svid, offsetOf(&*value));
    }

private:
    std::ptrdiff_t offsetOf(void const* slot) const {
        return static_cast<std::uint8_t const*>(slot) - region_;
    }

    Events& events_;
    std::uint8_t const* region_;
};

/// First byte of the region that a reader has mapped.
template <typename Reader>
void const* regionOf(Reader const& reader) {
    return &*reader.mps(0, SensorType::Any).front();
}

template <typename Reader>
Events visitOf(Reader& reader) {
    Events events;
    reader.visitor(std::make_unique<NotingVisitor>(events, regionOf(reader)));
    Result result = std::make_shared<shm::IQelVisitorResult>();
    reader.visit(result);
    reader.visitor(nullptr);
    return events;
}

template <typename Reader>
std::ptrdiff_t placeOf(Reader& reader, long long svid) {
    auto const point = reader.mpnt(svid, false);
    return point == nullptr ? -1
                            : reinterpret_cast<std::uint8_t const*>(&**point) -
                                  static_cast<std::uint8_t const*>(regionOf(reader));
}

} // namespace

TEST(LiteralReaderTest, RandomUnits_AreVisitedAndFoundAsByTheLibrary) {
    LogCapture const quiet("qel", log4cpp::Priority::FATAL);
    RawRegion const region(true);
    bench::SharedObject const object(bench::literal::objectName, rawRegionSize,
                                     bench::SharedObject::Access::Create);
    RandomSensors sensors(5, 4);
    std::size_t most = 0;
    for (int round = 0; round < 100; ++round) {
        ReferenceWriter writer;
        for (int count = 1 + round / 4; count > 0; --count) {
            writer.addStructure(sensors.anyStructure(4));
            // Siblings that no unit has, so that the order of visits is not that of the list.
            auto const level = [&] {
                return sensors.number(-1, 1);
            };
            auto const parent = writer.known().empty() ? rawNone : writer.known().begin()->second.pos;
            writer.addMP(
                reference::svidOf({level(), sensors.number(0, 5), level(), level(), level(), level()}),
                sensors.anyKeys(), parent);
        }
        writer.setActive();
        std::memcpy(region.bytes(), writer.image().data(), rawRegionSize);
        std::memcpy(object.data(), writer.image().data(), rawRegionSize);
        MappedReader library;
        bench::literal::Reader sut;

        auto const events = visitOf(sut);
        ASSERT_EQ(visitOf(library), events) << "round " << round;
        most = std::max(most, events.size());
        for (int count = 20; count > 0; --count) {
            auto const svid = sensors.anyUpdate(writer).svid & ~0xFFFFLL;
            ASSERT_EQ(placeOf(library, svid), placeOf(sut, svid)) << "round " << round;
        }
    }
    EXPECT_GT(most, 100U);
}

TEST(LiteralReaderTest, Points_AreFilteredByTheirKindAsByTheLibrary) {
    LogCapture const quiet("qel", log4cpp::Priority::FATAL);
    RawRegion const region(true);
    bench::SharedObject const object(bench::literal::objectName, rawRegionSize,
                                     bench::SharedObject::Access::Create);
    ReferenceWriter writer;
    writer.addMP(reference::svidOf({1, 0}), {}, rawNone);
    for (int i = 0; i < 30; ++i) {
        writer.addMP(reference::svidOf({1, i % 6, 1, i}), {}, 0);
    }
    std::memcpy(region.bytes(), writer.image().data(), rawRegionSize);
    std::memcpy(object.data(), writer.image().data(), rawRegionSize);
    MappedReader const library;
    bench::literal::Reader const sut;

    auto const first = region.u32(field::children);
    for (auto const kind : {SensorType::Any, SensorType::Electrical, SensorType::I2C, SensorType::SocketGroup,
                            SensorType::Reserved, SensorType::RCM}) {
        std::vector<std::uint32_t> expected;
        for (auto const& point : library.mps(first, kind)) {
            expected.push_back(point->pos);
        }
        std::vector<std::uint32_t> actual;
        for (auto const& point : sut.mps(first, kind)) {
            actual.push_back(point->pos);
        }
        EXPECT_EQ(expected, actual) << kind;
        EXPECT_FALSE(actual.empty()) << kind;
    }
}

} // namespace qel::test
