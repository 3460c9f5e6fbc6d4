// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/LiveUnit.h"

#include "domain/MeasureValue.h"

#include <memory>
#include <stdexcept>
#include <unordered_map>

namespace qel::tools {

LiveUnit::LiveUnit() {
    if (!writer_.root()) {
        throw std::runtime_error("the shared memory cannot be created; --log-level error tells why");
    }
}

void LiveUnit::build(Structure const& structure, std::uint64_t time) {
    writer_.addStructure(structure.definitions());
    structure_ = structure;
    introduce(structure.points(), time);
    writer_.setActive();
}

bool LiveUnit::change(Structure const& structure, std::uint64_t time) {
    bool const isChanged = writer_.modifyStructure(structure.svids());
    auto const added = structure.pointsMissingIn(structure_);
    structure_ = structure;
    introduce(added, time);
    return isChanged;
}

void LiveUnit::introduce(std::vector<PointId> const& points, std::uint64_t time) {
    constexpr double noNumber = 0.0;
    std::unordered_map<long long, int> types;
    for (auto const& point : points) {
        types.emplace(pointSvid(point), typeCode(point));
        deliver({valueSvid({point, stateKey(point.kind)}), time, noNumber, eStatus_On});
    }
    writer_.injectTypes(types);
}

bool LiveUnit::deliver(Reading const& reading) {
    return writer_.updateMV(
        reading.svid, std::make_unique<measval::MeasureValue>(reading.number, reading.time, reading.state));
}

eStatus_Bits LiveUnit::propagate() {
    writer_.propagateStates();
    return writer_.root()->state;
}

} // namespace qel::tools
