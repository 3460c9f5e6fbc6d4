// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the writer's tests share: reach to its protected operations, sensor ids and a raw view of tree and
/// chains.
#pragma once

#include "domain/SensorIdentifier.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/RawRegion.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace qel::test {

using Keys = std::map<unsigned short, unsigned int>;
/// A unit holds 8800 values, so all 65536 keys come in eight parts, each in a region of its own.
constexpr int keyParts = 8;
constexpr int keysInAPart = 0x10000 / keyParts;

/// All keys of a part, counted from 0.
inline Keys keysOfPart(int part) {
    Keys keys;
    for (int key = keysInAPart * part; key < keysInAPart * (part + 1); ++key) {
        keys[static_cast<unsigned short>(key)] = 0;
    }
    return keys;
}

using Definitions = shm::QelSharedMemoryWriter::Definitions;

constexpr long long rootSvid = static_cast<long long>(0xFF00FFFFFFFF0000ULL);

class ExposedWriter : public shm::QelSharedMemoryWriter {
public:
    using QelSharedMemoryWriter::addMVs;
    using QelSharedMemoryWriter::bailout;
    using QelSharedMemoryWriter::connectMP;
    using QelSharedMemoryWriter::defineState;
    using QelSharedMemoryWriter::disconnectMP;
    using QelSharedMemoryWriter::initMP;
    using QelSharedMemoryWriter::initMV;
    using QelSharedMemoryWriter::parentOf;
    using QelSharedMemoryWriter::region;
    using QelSharedMemoryWriter::statesChanged;
    using QelSharedMemoryWriter::unlinkMP;
};

/// Svid of a point; -1 marks a level that is not used.
constexpr long long pointId(int device, int kind, int inlet = -1, int phase = -1, int circuit = -1,
                            int socket = -1) {
    std::uint64_t bits = 0;
    for (int const level : {device, kind, inlet, phase, circuit, socket}) {
        bits = (bits << 8U) | (static_cast<unsigned int>(level) & 0xFFU);
    }
    bits <<= 16U;
    return static_cast<long long>(bits);
}

inline std::string hex(long long number) {
    std::ostringstream text;
    text << std::hex << std::showbase << number;
    return text.str();
}

/// Definition of a point with values of these keys.
inline shm::MPDef withKeys(std::set<unsigned short> const& keys) {
    shm::MPDef definition;
    for (auto const key : keys) {
        definition.mvs[key] = 0;
    }
    return definition;
}

inline std::unique_ptr<measval::MeasureValue> measured(double number, std::uint64_t at = 1,
                                                       eStatus_Bits state = eStatus_NoError) {
    return std::make_unique<measval::MeasureValue>(number, at, state);
}

inline LogEntry writerLine(log4cpp::Priority::Value level, std::string const& text) {
    return {"qel.shm.access.writer", level, text};
}

/// What the writer itself logs; the LED thread goes on meanwhile and has a category of its own.
class WriterLog : public LogCapture {
public:
    explicit WriterLog(log4cpp::Priority::Value threshold = log4cpp::Priority::DEBUG)
        : LogCapture("qel.shm.access.writer", threshold) {}
};

/// A writer, and its region as plain bytes.
///
/// Threads: thread-bound to the test's main thread.
class WriterTest : public testing::Test {
protected:
    std::uint32_t pointField(std::uint32_t pos, std::size_t offset) const {
        return raw.u32(rawPoint(pos) + offset);
    }
    std::uint32_t valueField(std::uint32_t pos, std::size_t offset) const {
        return raw.u32(rawValue(pos) + offset);
    }
    int pointState(std::uint32_t pos) const {
        return raw.get<std::int32_t>(rawPoint(pos) + field::pointState);
    }
    int globalState() const { return raw.get<std::int32_t>(field::rootState); }
    double number(std::uint32_t pos) const { return raw.get<double>(rawValue(pos)); }

    /// Positions of a sibling list, first to last; checks the way back as well.
    std::vector<std::uint32_t> siblings(std::uint32_t first) const {
        std::vector<std::uint32_t> list;
        auto previous = rawNone;
        for (auto pos = first; pos < 800 && list.size() <= 800; pos = pointField(pos, field::next)) {
            EXPECT_EQ(previous, pointField(pos, field::prev)) << "slot " << pos;
            previous = pos;
            list.push_back(pos);
        }
        return list;
    }
    std::vector<std::uint32_t> devices() const { return siblings(raw.u32(field::devices)); }
    std::vector<std::uint32_t> groups() const { return siblings(raw.u32(field::groups)); }
    std::vector<std::uint32_t> children(std::uint32_t pos) const {
        return siblings(pointField(pos, field::children));
    }

    /// Positions of a point's values in the order of its chain.
    std::vector<std::uint32_t> values(std::uint32_t pos) const {
        std::vector<std::uint32_t> chain;
        for (auto value = pointField(pos, field::mvs); value < 8800 && chain.size() <= 8800;
             value = valueField(value, field::valueNext)) {
            chain.push_back(value);
        }
        return chain;
    }

    ExposedWriter sut;
    RawRegion raw;
};

} // namespace qel::test
