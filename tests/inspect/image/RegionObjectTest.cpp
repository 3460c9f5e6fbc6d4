// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/RegionObject.h"

#include <gtest/gtest.h>

namespace qel::inspect {

TEST(RegionObjectTest, TakesWhatTheSystemSays) {
    struct stat status = {};
    status.st_dev = 7;
    status.st_ino = 8;
    status.st_uid = 9;
    status.st_gid = 10;
    status.st_mode = S_IFREG | 0640;
    status.st_size = 320032;
    status.st_nlink = 2;
    auto const object = regionObject(status);
    EXPECT_EQ(7U, object.device);
    EXPECT_EQ(8U, object.inode);
    EXPECT_EQ(9U, object.uid);
    EXPECT_EQ(10U, object.gid);
    EXPECT_EQ(0640U, object.mode);
    EXPECT_EQ(320032U, object.size);
    EXPECT_EQ(2U, object.names);
    EXPECT_TRUE(object.isRegular);
    status.st_mode = S_IFDIR | 0755;
    EXPECT_FALSE(regionObject(status).isRegular);
}

TEST(RegionObjectTest, IsTheSameByDeviceAndInodeAlone) {
    RegionObject object;
    object.device = 1;
    object.inode = 2;
    auto changed = object;
    changed.mode = 0600;
    changed.size = 5;
    EXPECT_TRUE(isSameObject(object, changed));
    changed.inode = 3;
    EXPECT_FALSE(isSameObject(object, changed));
    changed = object;
    changed.device = 3;
    EXPECT_FALSE(isSameObject(object, changed));
}

TEST(RegionObjectTest, NamesOwners) {
    EXPECT_EQ("root", userName(0));
    EXPECT_EQ("root", groupName(0));
    EXPECT_EQ("3999999999", userName(3999999999U));
    EXPECT_EQ("3999999999", groupName(3999999999U));
}

TEST(RegionObjectTest, WritesPermissionsAsLetters) {
    EXPECT_EQ("rw-r--r--", modeText(0644));
    EXPECT_EQ("---------", modeText(0));
    EXPECT_EQ("rwxrwxrwx", modeText(0777));
    EXPECT_EQ("r---wx--x", modeText(0431));
}

} // namespace qel::inspect
