// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/inspect/SampleUnit.h"

#include "format/ValueKeys.h"
#include "tests/writer/WriterFixture.h"

namespace qel::test {

namespace {

namespace key = shm::key;

Definitions samplePoints() {
    Definitions points;
    points[pointId(1, 0)] = withKeys({key::voltage, key::current, key::activePower});
    points[pointId(1, 0, 1)] = {};
    points[pointId(1, 0, 1, -1, 1)] = withKeys({key::voltage, key::current});
    for (int socket = 1; socket <= 4; ++socket) {
        points[pointId(1, 0, 1, -1, 1, socket)] = withKeys({key::voltage, key::current, key::activePower});
    }
    for (int phase = 1; phase <= 3; ++phase) {
        points[pointId(1, 0, 1, phase)] = withKeys({key::voltage});
    }
    points[pointId(1, 0, 2)] = {};
    points[pointId(1, 1, 1, 1)] = withKeys({40, 41});
    points[pointId(1, 1, 1, 2)] = withKeys({40, 41});
    for (int group = 1; group <= 3; ++group) {
        points[pointId(1, 2, -1, -1, -1, group)] = group == 1 ? withKeys({key::activePower}) : shm::MPDef();
    }
    points[pointId(1, 4, 1)] = withKeys({key::peakCurrent});
    points[pointId(2, 0)] = withKeys({key::voltage});
    points[pointId(2, 0, 1)] = {};
    points[pointId(3, 0)] = {};
    return points;
}

} // namespace

std::unique_ptr<shm::record::Region> sampleUnit() {
    ExposedWriter writer;
    auto const points = samplePoints();
    writer.addStructure(points);
    writer.addStructure({{pointId(1, 0, 1, -1, 1, 5), withKeys({key::voltage})}});
    writer.removeStructure(points);
    writer.setActive();
    for (auto const& [svid, definition] : points) {
        for (auto const& value : definition.mvs) {
            writer.updateMV(svid | value.first, measured(value.first * 1.5, 1700000000000));
        }
    }
    writer.propagateStates();
    return std::make_unique<shm::record::Region>(*writer.region());
}

} // namespace qel::test
