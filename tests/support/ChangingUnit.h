// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The unit of tests in which sensors come and go.
#pragma once

#include <random>
#include <unordered_set>

/// One unit, one inlet and one circuit, which are always there, 120 sockets and 20 groups.
namespace qel::test::changingUnit {

constexpr long long unit = 0x0100FFFFFFFF0000;
constexpr long long inlet = 0x010001FFFFFF0000;
constexpr long long circuit = 0x010001FF01FF0000;
constexpr long long points = 143;
constexpr long long values = 263;

/// The svids of all values.
std::unordered_set<long long> whole();

/// The svids that remain if each socket and each group is left out at random.
std::unordered_set<long long> part(std::mt19937& random);

} // namespace qel::test::changingUnit
