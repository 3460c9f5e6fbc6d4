// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/BaseQelShmVisitor.h"

#include "format/ValueKeys.h"
#include "reader/IQelVisitorResult.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

/// Looks for one key.
class KeySeeker : public shm::BaseQelShmVisitor {
public:
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        found_ = value->key == shm::key::current;
    }
};

TEST(BaseQelShmVisitorTest, Callbacks_DoNothing) {
    shm::BaseQelShmVisitor sut;
    auto result = std::make_shared<shm::IQelVisitorResult>();
    auto const* const before = result.get();
    sut.onRoot(shm::QelShmRoot(), result);
    sut.onMPnt(shm::QelShmMPnt(), 1, result);
    sut.onMVal(shm::QelShmMVal(), 1, 1, result);
    EXPECT_FALSE(sut.mvFound());
    EXPECT_EQ(result.get(), before);
    EXPECT_EQ(result.use_count(), 1);
}

TEST(BaseQelShmVisitorTest, MvFound_GivesWhatADerivedVisitorSet) {
    KeySeeker sut;
    auto result = std::make_shared<shm::IQelVisitorResult>();
    shm::record::QelShmMVal value{};
    EXPECT_FALSE(sut.mvFound());
    value.key = shm::key::voltage;
    sut.onMVal(shm::QelShmMVal(&value), 0, 1, result);
    EXPECT_FALSE(sut.mvFound());
    value.key = shm::key::current;
    sut.onMVal(shm::QelShmMVal(&value), 0, 1, result);
    EXPECT_TRUE(sut.mvFound());
}

} // namespace
