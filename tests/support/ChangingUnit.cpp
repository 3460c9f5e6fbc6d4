// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ChangingUnit.h"

#include "format/ValueKeys.h"

namespace qel::test::changingUnit {

namespace {

namespace key = shm::key;

template <typename IsPresent>
std::unordered_set<long long> valuesOf(IsPresent const& isPresent) {
    std::unordered_set<long long> svids{unit | key::voltage, inlet | key::voltage, circuit | key::voltage};
    for (long long socket = 1; socket <= 120; ++socket) {
        if (isPresent()) {
            svids.insert(0x010001FF01000001 | socket << 16U);
            svids.insert(0x010001FF01000004 | socket << 16U);
        }
    }
    for (long long group = 1; group <= 20; ++group) {
        if (isPresent()) {
            svids.insert(0x0102FF00FFFF0013 | group << 32U);
        }
    }
    return svids;
}

} // namespace

std::unordered_set<long long> whole() {
    return valuesOf([] { return true; });
}

std::unordered_set<long long> part(std::mt19937& random) {
    std::bernoulli_distribution present(0.5);
    return valuesOf([&] { return present(random); });
}

} // namespace qel::test::changingUnit
