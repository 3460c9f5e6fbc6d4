// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Attachment.h"

#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

namespace qel::watch {

namespace {

void removeObject() {
    ASSERT_EQ(0, ::shm_unlink(shm::REGION_NAME));
}

} // namespace

TEST(AttachmentTest, NoObject_IsWaitedFor) {
    Attachment sut;
    auto const before = sut.look();
    EXPECT_EQ(inspect::Opening::Absent, before.source.opening);
    EXPECT_EQ(0U, before.image.size());
    EXPECT_EQ(0U, before.objects);

    test::RawRegion const region(true);
    region.fill(0x20);
    auto const after = sut.look();
    EXPECT_EQ(inspect::Opening::Opened, after.source.opening);
    EXPECT_TRUE(after.image.isActive());
    EXPECT_EQ(1U, after.objects);
    EXPECT_GE(after.ticks, before.ticks);
    removeObject();
}

TEST(AttachmentTest, ObjectThatStays_IsReadAnewEachTime) {
    test::RawRegion const region(true);
    Attachment sut;
    region.fill(0x20);
    EXPECT_TRUE(sut.look().image.isActive());
    region.fill(0x21);
    auto const look = sut.look();
    EXPECT_FALSE(look.image.isActive());
    EXPECT_EQ(1U, look.objects);
    removeObject();
}

TEST(AttachmentTest, RemovedObject_IsLetGo) {
    test::RawRegion const region(true);
    Attachment sut;
    removeObject();
    auto const look = sut.look();
    EXPECT_EQ(inspect::Opening::Absent, look.source.opening);
    EXPECT_EQ(0U, look.image.size());
    EXPECT_EQ(1U, look.objects);
}

TEST(AttachmentTest, ReplacedObject_IsFollowed) {
    test::RawRegion const old(true);
    old.fill(0x21);
    Attachment sut;
    sut.look();
    removeObject();
    test::RawRegion const young(true);
    young.fill(0x20);
    auto const look = sut.look();
    EXPECT_TRUE(look.image.isActive());
    EXPECT_FALSE(look.source.isReplaced);
    EXPECT_EQ(2U, look.objects);
    removeObject();
}

} // namespace qel::watch
