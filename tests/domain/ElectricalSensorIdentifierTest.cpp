// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/ElectricalSensorIdentifier.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

namespace {

std::uint64_t bits(ElectricalSensorIdentifier const& sut) {
    return static_cast<std::uint64_t>(sut.getSensorVariableID(0));
}

TEST(ElectricalSensorIdentifierTest, Construction_LevelsFollowTheKindAndTheDeviceIsUnused) {
    EXPECT_EQ(bits(ElectricalSensorIdentifier(1, 2, 3, 4)), 0xFF00010203040000ULL);
    EXPECT_EQ(bits(ElectricalSensorIdentifier(-1, -1, -1, -1)), 0xFF00FFFFFFFF0000ULL);
    EXPECT_EQ(bits(ElectricalSensorIdentifier(0, 127, -128, -2)), 0xFF00007F80FE0000ULL);
}

TEST(ElectricalSensorIdentifierTest, Set_ChangesOneLevel) {
    for (unsigned index = 2; index <= 5; ++index) {
        ElectricalSensorIdentifier sut(1, 2, 3, 4);
        sut.set(index, 0x55);
        auto const shift = 56U - 8U * index;
        EXPECT_EQ(bits(sut), (0xFF00010203040000ULL & ~(0xFFULL << shift)) | 0x55ULL << shift) << index;
    }
}

TEST(ElectricalSensorIdentifierTest, Set_ALevelCanBeTakenBack) {
    ElectricalSensorIdentifier sut(1, 2, 3, 4);
    sut.set(5, -1);
    EXPECT_EQ(bits(sut), 0xFF00010203FF0000ULL);
}

TEST(ElectricalSensorIdentifierTest, Set_IndexThatIsNoLevelThrows) {
    ElectricalSensorIdentifier sut(1, 2, 3, 4);
    for (unsigned const index : {0U, 1U, 6U, 7U, 8U, 0xFFFFFFFFU}) {
        EXPECT_THROW(sut.set(index, 9), std::out_of_range) << index;
    }
    EXPECT_EQ(bits(sut), 0xFF00010203040000ULL);
}

TEST(ElectricalSensorIdentifierTest, SetDevice_ChangesTheFirstByte) {
    ElectricalSensorIdentifier sut(1, 2, 3, 4);
    sut.setDevice(7);
    EXPECT_EQ(bits(sut), 0x0700010203040000ULL);
}

} // namespace
