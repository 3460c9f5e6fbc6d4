// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/RandomNumbers.h"
#include "tests/support/Rounds.h"
#include "tests/tools/qelshm/watch/TestUnit.h"
#include "tools/qelshm/watch/WatchModel.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

namespace qel::watch {

namespace {

/// A unit that changes at random, and a user who does anything.
class RandomWatch {
public:
    explicit RandomWatch(std::uint32_t seed) : random_(test::randomNumbers(seed)) { layOut(); }

    void step() {
        switch (pick(12)) {
        case 0:
            layOut();
            break;
        case 1:
            unit_->region().root.version = pick(2) == 0 ? shm::ACTIVE_VERSION : std::uint8_t{0};
            break;
        case 2:
            ++objects_;
            break;
        case 3:
            model_.setPage(pick(20));
            model_.setPaneLines(pick(20));
            break;
        case 4:
            type();
            break;
        case 5:
            model_.click(pick(30));
            break;
        default:
            model_.handle(static_cast<Action>(pick(static_cast<std::uint32_t>(Action::Quit) + 1)));
        }
        deliver();
        ticks_ += pick(3000);
        model_.update(unit_->snapshot(ticks_, objects_));
        look();
    }

private:
    std::uint32_t pick(std::uint32_t count) {
        return std::uniform_int_distribution<std::uint32_t>(0, count - 1)(random_);
    }

    /// Another structure in the same slots.
    void layOut() {
        unit_ = std::make_unique<test::TestUnit>();
        values_ = 0;
        auto const devices = pick(3);
        for (std::uint32_t device = 1; device <= devices; ++device) {
            auto const base = test::unitId + (static_cast<long long>(device - 1) << 56);
            auto const unit = unit_->point(base);
            auto const inlets = pick(4);
            for (std::uint32_t inlet = 1; inlet <= inlets; ++inlet) {
                auto const point =
                    unit_->point((base & ~(0xFFLL << 32)) | (static_cast<long long>(inlet) << 32), unit);
                auto const count = static_cast<std::uint16_t>(pick(5));
                for (std::uint16_t key = 1; key <= count; ++key) {
                    unit_->value(point, key);
                    ++values_;
                }
            }
        }
    }

    void deliver() {
        if (values_ != 0) {
            unit_->deliver(pick(values_), pick(1000), pick(3),
                           static_cast<eStatus_Bits>(static_cast<int>(pick(48)) - 2));
        }
    }

    void type() {
        static std::string const letters = "unit1/inlet2:voltage alarm zzz";
        model_.handle(Action::Filter);
        for (auto left = pick(4); left > 0; --left) {
            model_.type(letters[pick(static_cast<std::uint32_t>(letters.size()))]);
        }
        if (pick(3) == 0) {
            model_.complete();
        }
        if (pick(3) == 0) {
            model_.erase();
        }
        if (pick(2) == 0) {
            model_.endTyping();
        }
    }

    /// All that a screen asks for.
    void look() {
        auto const rows = model_.visibleRows();
        std::size_t selected = 0;
        for (auto const& row : rows) {
            selected += row.isSelected ? 1 : 0;
        }
        ASSERT_EQ(rows.empty() ? 0U : 1U, selected) << "the selected row is visible";
        ASSERT_EQ(rows.empty(), model_.rowCount() == 0);
        ASSERT_EQ(rows.empty(), model_.detail().path.empty());
        ASSERT_FALSE(model_.header().condition.empty());
        static_cast<void>(model_.paneLines());
        static_cast<void>(model_.message());
    }

    std::mt19937 random_;
    std::unique_ptr<test::TestUnit> unit_;
    std::uint32_t values_ = 0;
    unsigned objects_ = 1;
    std::uint64_t ticks_ = 0;
    WatchModel model_{WatchedNames({}), std::chrono::milliseconds(250)};
};

} // namespace

TEST(WatchModelRandomTest, AnyActionsOnAnyUnit_LeaveOneVisibleRowSelectedOrNone) {
    for (std::uint32_t seed = 1; seed <= 8; ++seed) {
        RandomWatch sut(seed);
        for (int step = 0; step < test::rounds(400, 20000) && !testing::Test::HasFatalFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            sut.step();
        }
    }
}

} // namespace qel::watch
