// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What every contender holds: the points and values of an installation of some shape.
#pragma once

#include "domain/eStatus_Bits.h"
#include "format/ValueKeys.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Size and form of an installation.
struct Shape {
    std::string_view name; ///< as the command line knows it
    unsigned int units;
    unsigned int pointsPerUnit;
    unsigned int circuitsPerUnit; ///< the other points of a unit, but five, are sockets of these
};

constexpr std::array<Shape, 3> shapes{{
    {"20x40", 20, 40, 5},
    {"1x800", 1, 800, 53},
    {"1x45", 1, 45, 8},
}};

/// The shape of that name; throws std::invalid_argument when there is none.
Shape const& shapeNamed(std::string_view name);

/// The keys that every point has, ascending.
constexpr std::array<std::uint16_t, 11> valueKeys{
    shm::key::voltage,        shm::key::current,        shm::key::peakCurrent,   shm::key::powerFactor,
    shm::key::apparentPower,  shm::key::activePower,    shm::key::reactivePower, shm::key::frequency,
    shm::key::apparentEnergy, shm::key::reactiveEnergy, shm::key::activeEnergy};

/// One access, in every contender's terms.
struct Access {
    long long svid;      ///< sensor id of the value (or of the point, where points are looked up)
    std::uint32_t point; ///< slot of the point
    std::uint32_t value; ///< slot of the value
    double number;       ///< of the value, or the sum of the point's, all the time
};

constexpr long long keyMask = 0xFFFF;

constexpr long long pointOf(long long svid) {
    return svid & ~keyMask;
}

constexpr std::uint16_t keyOf(long long svid) {
    return static_cast<std::uint16_t>(svid & keyMask);
}

/// What an update stores.
struct Sample {
    double number;
    std::uint64_t at;
    eStatus_Bits state;
};

/// A point with its place in the tree; positions are slots, none is NO_POSITION.
struct PlannedPoint {
    long long svid;
    std::uint32_t parent;
    std::uint32_t next;
    std::uint32_t prev;
    std::uint32_t children;
};

/// The points in the order in which a writer lays them out: parents before their children, so that the point with
/// index p takes slot p and its values take the slots from p * valueKeys.size() on.
class Plan {
public:
    explicit Plan(Shape const& shape);

    Shape const& shape() const { return shape_; }
    std::vector<PlannedPoint> const& points() const { return points_; }
    std::size_t values() const { return points_.size() * valueKeys.size(); }

    /// One access per value and per point, in the order of their slots.
    std::vector<Access> valueAccesses() const;
    std::vector<Access> pointAccesses() const;

private:
    std::uint32_t add(long long svid, std::uint32_t parent);
    void addUnit(unsigned int unit);

    Shape shape_;
    std::vector<PlannedPoint> points_;
};

/// The point of a sensor id in hexadecimal digits.
std::string hexOfPoint(long long svid);

/// Slot of a point's value with the given index in valueKeys.
constexpr std::uint32_t valueSlot(std::uint32_t point, std::size_t keyIndex) {
    return static_cast<std::uint32_t>(point * valueKeys.size() + keyIndex);
}

/// What updates store. Its number depends on the slot alone, so that a sum over values is known beforehand.
constexpr Sample sampleOf(Access const& access) {
    return {access.number, access.value, eStatus_NoError};
}

/// What a value holds at first: one in fifty warns.
constexpr Sample firstSampleOf(Access const& access) {
    constexpr std::uint32_t warns = 50;
    return {access.number, access.value, access.value % warns == 0 ? eStatus_HighWarning : eStatus_NoError};
}

} // namespace bench
