// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/support/Plan.h"

#include "format/ValueKeys.h"
#include "region/QelShmRecords.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace bench {

namespace {

constexpr unsigned int unused = 0xFF;
constexpr unsigned int phases = 3;
constexpr unsigned int pointsAboveCircuits = 2 + phases; // the unit, its inlet and the phases

/// Energies are 0, since some contenders store them in thousandths; sums of the others are exact.
double numberOf(std::uint32_t slot, std::uint16_t key) {
    constexpr double step = 0.25;
    constexpr std::uint16_t firstEnergy = shm::key::apparentEnergy;
    constexpr std::uint16_t lastEnergy = shm::key::activeEnergyResettable;
    return key >= firstEnergy && key <= lastEnergy ? 0 : slot * step;
}

/// Sensor id of an electrical point.
long long pointId(unsigned int unit, unsigned int inlet, unsigned int phase, unsigned int circuit,
                  unsigned int socket) {
    std::uint64_t bits = 0;
    for (unsigned int const level : {unit, 0U, inlet, phase, circuit, socket}) {
        bits = bits << 8U | level;
    }
    bits <<= 16U;
    return static_cast<long long>(bits);
}

} // namespace

Shape const& shapeNamed(std::string_view name) {
    auto const* const found =
        std::find_if(shapes.begin(), shapes.end(), [&](Shape const& shape) { return shape.name == name; });
    if (found == shapes.end()) {
        throw std::invalid_argument("no shape is named " + std::string(name));
    }
    return *found;
}

Plan::Plan(Shape const& shape) : shape_(shape) {
    points_.reserve(std::size_t{shape.units} * shape.pointsPerUnit);
    for (unsigned int unit = 1; unit <= shape.units; ++unit) {
        addUnit(unit);
    }
    std::vector<std::uint32_t> lastChild(points_.size(), shm::NO_POSITION);
    auto lastTop = shm::NO_POSITION;
    for (std::uint32_t pos = 0; pos < points_.size(); ++pos) {
        auto& point = points_[pos];
        bool const top = point.parent == shm::NO_POSITION;
        auto& last = top ? lastTop : lastChild[point.parent];
        point.prev = last;
        if (last != shm::NO_POSITION) {
            points_[last].next = pos;
        } else if (!top) {
            points_[point.parent].children = pos;
        }
        last = pos;
    }
}

void Plan::addUnit(unsigned int unit) {
    auto const circuits = shape_.circuitsPerUnit;
    auto const sockets = shape_.pointsPerUnit - pointsAboveCircuits - circuits;
    auto const top = add(pointId(unit, unused, unused, unused, unused), shm::NO_POSITION);
    auto const inlet = add(pointId(unit, 1, unused, unused, unused), top);
    for (unsigned int phase = 1; phase <= phases; ++phase) {
        auto const above = add(pointId(unit, 1, phase, unused, unused), inlet);
        for (unsigned int circuit = phase; circuit <= circuits; circuit += phases) {
            auto const fuse = add(pointId(unit, 1, phase, circuit, unused), above);
            auto const count = sockets * circuit / circuits - sockets * (circuit - 1) / circuits;
            for (unsigned int socket = 1; socket <= count; ++socket) {
                add(pointId(unit, 1, phase, circuit, socket), fuse);
            }
        }
    }
}

std::uint32_t Plan::add(long long svid, std::uint32_t parent) {
    points_.push_back({svid, parent, shm::NO_POSITION, shm::NO_POSITION, shm::NO_POSITION});
    return static_cast<std::uint32_t>(points_.size() - 1);
}

std::string hexOfPoint(long long svid) {
    constexpr int base = 16;
    std::array<char, 16> digits{};
    auto const result =
        std::to_chars(digits.begin(), digits.end(), static_cast<std::uint64_t>(pointOf(svid)), base);
    return {digits.begin(), result.ptr};
}

std::vector<Access> Plan::valueAccesses() const {
    std::vector<Access> accesses;
    accesses.reserve(values());
    for (auto const& access : pointAccesses()) {
        for (std::size_t key = 0; key < valueKeys.size(); ++key) {
            auto const slot = valueSlot(access.point, key);
            accesses.push_back(
                {access.svid | valueKeys.at(key), access.point, slot, numberOf(slot, valueKeys.at(key))});
        }
    }
    return accesses;
}

std::vector<Access> Plan::pointAccesses() const {
    std::vector<Access> accesses;
    accesses.reserve(points_.size());
    for (std::uint32_t pos = 0; pos < points_.size(); ++pos) {
        auto const first = valueSlot(pos, 0);
        double sum = 0;
        for (std::size_t key = 0; key < valueKeys.size(); ++key) {
            sum += numberOf(valueSlot(pos, key), valueKeys.at(key));
        }
        accesses.push_back({points_[pos].svid, pos, first, sum});
    }
    return accesses;
}

} // namespace bench
