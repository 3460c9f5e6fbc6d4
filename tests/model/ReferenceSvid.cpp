// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/model/ReferenceSvid.h"

namespace qel::test::reference {

namespace {

constexpr int levels = 6;

} // namespace

int levelOf(Svid svid, int level) {
    auto const bits = static_cast<std::uint64_t>(svid) >> (56 - 8 * level);
    return static_cast<signed char>(bits & 0xFF);
}

Svid svidOf(std::initializer_list<int> levelsOfId) {
    auto bits = ~std::uint64_t{0};
    int shift = 56;
    for (int const level : levelsOfId) {
        bits &= ~(std::uint64_t{0xFF} << shift);
        bits |= static_cast<std::uint64_t>(level & 0xFF) << shift;
        shift -= 8;
    }
    return pointOf(static_cast<Svid>(bits));
}

Svid pointOf(Svid svid) {
    return static_cast<Svid>(static_cast<std::uint64_t>(svid) & ~std::uint64_t{0xFFFF});
}

std::uint16_t keyOf(Svid svid) {
    return static_cast<std::uint16_t>(static_cast<std::uint64_t>(svid) & 0xFFFF);
}

bool isPointStateKey(int key) {
    return key == 0x30 || (key >= 0x33 && key <= 0x3B);
}

bool isInThousandths(int key) {
    return (key >= 32 && key <= 38) || (key >= 0xFFF9 && key <= 0xFFFC);
}

double storedNumber(int key, double delivered) {
    return isInThousandths(key) ? delivered / 1000.0 : delivered;
}

bool ParentsFirst::operator()(Svid left, Svid right) const {
    for (int level = 0; level < levels; ++level) {
        int const l = levelOf(left, level) & 0xFF;
        int const r = levelOf(right, level) & 0xFF;
        if (l != r) {
            return l == 0xFF || (r != 0xFF && l < r);
        }
    }
    return left < right;
}

std::vector<Svid> parentCandidates(Svid svid) {
    int const device = levelOf(svid, deviceLevel);
    int const inlet = levelOf(svid, inletLevel);
    int const phase = levelOf(svid, phaseLevel);
    int const circuit = levelOf(svid, circuitLevel);
    int const socket = levelOf(svid, socketLevel);
    if (device == -1 || inlet == -1) {
        return {};
    }
    // An I2C sensor hangs below its device. Any other point has the levels of its parent and one more, two where the
    // one in between is not used.
    bool const belowInlet = levelOf(svid, kindLevel) != 1 && (phase != -1 || circuit != -1);
    bool const belowPhase = belowInlet && (circuit != -1 || socket != -1);
    bool const belowCircuit = belowPhase && socket != -1;
    int const parentInlet = belowInlet ? inlet : -1;
    int const parentPhase = belowPhase ? phase : -1;
    std::vector<Svid> candidates{
        svidOf({device, 0, parentInlet, parentPhase, belowCircuit ? circuit : -1, -1})};
    if (socket != -1 && circuit == 0) { // no fuse of its own
        candidates.push_back(svidOf({device, 0, parentInlet, parentPhase, -1, -1}));
    }
    return candidates;
}

bool standsBefore(Svid added, Svid present) {
    int const kind = levelOf(added, kindLevel);
    int const other = levelOf(present, kindLevel);
    bool const isSmaller = added < present;
    switch (kind) {
    case 0: // electrical
        return other != 0 || isSmaller;
    case 1: // I2C sensor
        if (other == 0 || other == 4) {
            return false;
        }
        if (other == 2) {
            return true;
        }
        if (levelOf(added, phaseLevel) != levelOf(present, phaseLevel)) {
            return levelOf(added, phaseLevel) < levelOf(present, phaseLevel);
        }
        return levelOf(added, circuitLevel) < levelOf(present, circuitLevel);
    case 2: // socket group
        return other == 2 && isSmaller;
    case 4: // residual-current monitor
        if (other == 0) {
            return false;
        }
        return other == 1 || other == 2 || isSmaller;
    default:
        return isSmaller;
    }
}

} // namespace qel::test::reference
