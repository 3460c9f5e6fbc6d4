// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the writer reads out of sensor ids, once more and byte by byte: parents, the order of siblings, the meaning of
/// keys.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace qel::test::reference {

using Svid = std::int64_t;

/// Bytes of an id, from the highest on; the two below them are the key.
enum Level { deviceLevel, kindLevel, inletLevel, phaseLevel, circuitLevel, socketLevel };

constexpr Svid rootSvid = static_cast<Svid>(0xFF00FFFFFFFF0000U);

// Threads: reentrant, all of them.

/// One level as a signed number, -1 for a level that is not used.
int levelOf(Svid svid, int level);

/// The id of a point from its levels, deviceLevel first.
Svid svidOf(std::initializer_list<int> levels);

/// The id without its key, and the key alone.
Svid pointOf(Svid svid);
std::uint16_t keyOf(Svid svid);

/// Keys that stand for the state of the point itself.
bool isPointStateKey(int key);

/// Keys of energies, which are delivered in thousandths of their unit.
bool isInThousandths(int key);

/// What is stored of a number that is delivered for a key.
double storedNumber(int key, double delivered);

/// The order in which a set of points is added: parents before children, so an unused level stands before every used
/// one.
struct ParentsFirst {
    bool operator()(Svid left, Svid right) const;
};

/// Ids of the points below which a point may hang, the preferred one first; none for a top-level point.
std::vector<Svid> parentCandidates(Svid svid);

/// Whether a new point goes in front of one that is linked among its siblings already.
bool standsBefore(Svid added, Svid present);

} // namespace qel::test::reference
