// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/GuardedMappings.h"

#include "tests/hostile/HostileUnit.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace qel::test {

namespace {

using Place = GuardedMappings::Place;

/// Asked of the kernel, which gives an error where the program itself would end.
class GuardedMappingsTest : public testing::TestWithParam<Place> {
protected:
    GuardedMappingsTest() { EXPECT_EQ(0, ::pipe2(pipe_, O_NONBLOCK | O_CLOEXEC)); }
    ~GuardedMappingsTest() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }

    bool isReadable(std::uint8_t const* byte) const {
        auto const written = ::write(pipe_[1], byte, 1);
        EXPECT_TRUE(written == 1 || errno == EFAULT);
        return written == 1;
    }

    void expectGuarded(std::uint8_t const* region) const {
        EXPECT_TRUE(isReadable(region));
        EXPECT_TRUE(isReadable(region + rawRegionSize - 1));
        bool const isFront = GetParam() == Place::BehindFrontGuard;
        auto const gap = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) - rawRegionSize % 4096;
        EXPECT_FALSE(isReadable(region - 1 - (isFront ? 0 : gap)));
        EXPECT_FALSE(isReadable(region + rawRegionSize + (isFront ? gap : 0)));
    }

    GuardedMappings const guards_{GetParam()};

private:
    int pipe_[2] = {-1, -1};
};

TEST_P(GuardedMappingsTest, MappingsOfTheLibraryAndOfTests_LieBetweenGuards_AndShowTheSameBytes) {
    RawRegion const raw(true);
    MappedReader const reader;
    auto const* const mapped = reinterpret_cast<std::uint8_t const*>(&*reader.root()) - rawRootOffset;
    ASSERT_NE(raw.bytes(), mapped);
    expectGuarded(raw.bytes());
    expectGuarded(mapped);
    for (std::size_t const offset : {std::size_t{0}, rawRootOffset, rawRegionSize - 1}) {
        raw.bytes()[offset] = 0xA5;
        EXPECT_EQ(0xA5, mapped[offset]);
    }
}

TEST_P(GuardedMappingsTest, WriterToo) {
    ExposedWriter writer;
    expectGuarded(reinterpret_cast<std::uint8_t const*>(writer.region()));
}

TEST_P(GuardedMappingsTest, Unmapped_LeavesNothingBehind) {
    std::uint8_t const* bytes = nullptr;
    {
        RawRegion const raw(true);
        bytes = raw.bytes();
    }
    EXPECT_FALSE(isReadable(bytes));
    EXPECT_FALSE(isReadable(bytes + rawRegionSize - 1));
}

INSTANTIATE_TEST_SUITE_P(Region, GuardedMappingsTest,
                         testing::Values(Place::BehindFrontGuard, Place::BeforeRearGuard), placeName);

} // namespace

} // namespace qel::test
