// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/SnapshotSource.h"

#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

namespace qel::watch {

namespace {

void removeObject() {
    ASSERT_EQ(0, ::shm_unlink(shm::REGION_NAME));
}

} // namespace

TEST(SnapshotSourceTest, NoObject_IsWaitedFor) {
    SnapshotSource sut;
    auto const before = sut.take();
    EXPECT_EQ(inspect::Opening::Absent, before.source.opening);
    EXPECT_EQ(0U, before.image.size());
    EXPECT_EQ(0U, before.objects);

    test::RawRegion const region(true);
    region.fill(0x20);
    auto const after = sut.take();
    EXPECT_EQ(inspect::Opening::Opened, after.source.opening);
    EXPECT_TRUE(after.image.isActive());
    EXPECT_EQ(1U, after.objects);
    EXPECT_GE(after.ticks, before.ticks);
    removeObject();
}

TEST(SnapshotSourceTest, ObjectThatStays_IsReadAnewEachTime) {
    test::RawRegion const region(true);
    SnapshotSource sut;
    region.fill(0x20);
    EXPECT_TRUE(sut.take().image.isActive());
    region.fill(0x21);
    auto const snapshot = sut.take();
    EXPECT_FALSE(snapshot.image.isActive());
    EXPECT_EQ(1U, snapshot.objects);
    removeObject();
}

TEST(SnapshotSourceTest, RemovedObject_IsLetGo) {
    test::RawRegion const region(true);
    SnapshotSource sut;
    removeObject();
    auto const snapshot = sut.take();
    EXPECT_EQ(inspect::Opening::Absent, snapshot.source.opening);
    EXPECT_EQ(0U, snapshot.image.size());
    EXPECT_EQ(1U, snapshot.objects);
}

TEST(SnapshotSourceTest, ReplacedObject_IsFollowed) {
    test::RawRegion const old(true);
    old.fill(0x21);
    SnapshotSource sut;
    sut.take();
    removeObject();
    test::RawRegion const young(true);
    young.fill(0x20);
    auto const snapshot = sut.take();
    EXPECT_TRUE(snapshot.image.isActive());
    EXPECT_FALSE(snapshot.source.isReplaced);
    EXPECT_EQ(2U, snapshot.objects);
    removeObject();
}

} // namespace qel::watch
