// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The enumeration sees what it is there for: orders that are wrong fail.

#include "tests/cuts/Catalogue.h"
#include "tests/cuts/CutBench.h"
#include "tests/cuts/Operations.h"
#include "tests/cuts/Recording.h"
#include "tests/cuts/StoreLog.h"
#include "tests/cuts/TreeShapes.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

/// Does this store make a new slot reachable: a list's head, a point's first child or value, a next?
bool publishes(Store const& store) {
    if (store.kind != StoreKind::Release || store.written >= 8800) {
        return false;
    }
    bool const isOfPoint = store.offset < rawValuesOffset;
    return !isOfPoint || store.offset % rawPoint(1) != field::prev;
}

class NegativeControls : public CutBench {
protected:
    /// Stores of one operation, changed, and walked. Without the change there must be no complaint.
    /// @return what is complained of then: by the walk, or a kind that is not among those that readers may meet
    std::string complaintOf(std::string const& name, std::function<void(Stores&)> const& change) {
        auto const operations = operationsOn(tree);
        auto const operation = std::find_if(operations.begin(), operations.end(),
                                            [&](auto const& candidate) { return candidate.name == name; });
        if (operation == operations.end()) {
            ADD_FAILURE() << "there is no operation " << name;
            return {};
        }
        auto const recording = sut.record(tree, *operation);
        sut.walk(recording, recording.stores(), name);
        EXPECT_EQ("", sut.violation());
        auto const allowed = documentedKinds().shownHere();
        EXPECT_EQ("", firstNotIn(allowed, sut.catalogue().kinds()));
        auto stores = recording.stores();
        change(stores);
        CutWalk changed(bench, reader);
        changed.walk(recording, recording.fitted(stores), name);
        return changed.violation().empty() ? firstNotIn(allowed, changed.catalogue().kinds())
                                           : changed.violation();
    }

    static std::string firstNotIn(std::set<std::string> const& allowed, std::set<std::string> const& kinds) {
        auto const foreign = std::find_if(kinds.begin(), kinds.end(),
                                          [&](auto const& kind) { return allowed.count(kind) == 0; });
        return foreign == kinds.end() ? "" : *foreign;
    }

    /// A store that publishes the point whose slot was wiped last before it.
    static std::size_t publication(Stores const& stores, bool ofValue) {
        for (std::size_t i = 0; i < stores.size(); ++i) {
            auto const isInWipedSlot = [&] {
                auto const slot = stores[i].offset / rawPoint(1);
                return stores[i].offset < rawValuesOffset && stores[1].offset / rawPoint(1) == slot;
            };
            bool const toValue = stores[i].offset >= rawValuesOffset && stores[i].offset < rawRootOffset;
            bool const isFirstValue =
                stores[i].offset < rawValuesOffset && stores[i].offset % rawPoint(1) == field::mvs;
            if (publishes(stores[i]) && (toValue || isFirstValue) == ofValue &&
                (ofValue || !isInWipedSlot())) {
                return i;
            }
        }
        ADD_FAILURE() << "nothing is published";
        return 0;
    }

    /// A device with two inlets that have two values each, and a group.
    Tree const tree = [] {
        for (auto const& shape : treesOf(4)) {
            if (shape.name == "E0(E0E0)G0") {
                return withValues(shape, 2);
            }
        }
        return Tree();
    }();
};

constexpr char addFirst[] = "add E4 below point 0";
constexpr char addBetween[] = "add E12 below point 0";
constexpr char addLast[] = "add E20 below point 0";
constexpr char addTop[] = "add E4 below the root";
constexpr char addGroup[] = "add G20 below the root";
constexpr char addValues[] = "add values to point 1";

TEST_F(NegativeControls, PointPublishedWithoutRelease_Fails) {
    for (auto const* const name : {addFirst, addBetween, addLast, addTop, addGroup}) {
        auto const complaint = complaintOf(
            name, [](Stores& stores) { stores[publication(stores, false)].kind = StoreKind::Plain; });
        EXPECT_NE("", complaint) << name;
    }
}

TEST_F(NegativeControls, ValuePublishedWithoutRelease_Fails) {
    for (auto const* const name : {addFirst, addValues}) {
        auto const complaint = complaintOf(
            name, [](Stores& stores) { stores[publication(stores, true)].kind = StoreKind::Plain; });
        EXPECT_NE("", complaint) << name;
    }
}

TEST_F(NegativeControls, PointLinkedBeforeItIsInitialised_Fails) {
    for (auto const* const name : {addFirst, addBetween, addLast, addTop, addGroup}) {
        auto const complaint = complaintOf(name, [](Stores& stores) {
            auto const link = stores.begin() + static_cast<std::ptrdiff_t>(publication(stores, false));
            std::rotate(stores.begin(), link, link + 1);
        });
        EXPECT_NE("", complaint) << name;
    }
}

TEST_F(NegativeControls, ValueLinkedBeforeItIsInitialised_Fails) {
    auto const complaint = complaintOf(addValues, [](Stores& stores) {
        auto const link = stores.begin() + static_cast<std::ptrdiff_t>(publication(stores, true));
        std::rotate(stores.begin(), link, link + 1);
    });
    EXPECT_NE("", complaint);
}

TEST_F(NegativeControls, PointThatGetsItsNextTooLate_Fails) {
    // Behind the link that leads to it: the rest of the list is cut off meanwhile.
    auto const complaint = complaintOf(addBetween, [](Stores& stores) {
        auto const link = stores.begin() + static_cast<std::ptrdiff_t>(publication(stores, false));
        auto const own = std::find_if(stores.begin(), stores.end(), [](Store const& store) {
            return store.kind == StoreKind::Release && store.offset % rawPoint(1) == field::next;
        });
        std::rotate(own, own + 1, link + 1);
    });
    EXPECT_EQ("point-missing", complaint);
}

TEST_F(NegativeControls, SlotFilledAnewWithoutFence_Fails) {
    for (auto const* const name :
         {"remove point 1, add beside", "remove point 2, add beside", "remove point 1, add elsewhere",
          "remove point 1, its value slots to point 2"}) {
        auto const complaint = complaintOf(name, [](Stores& stores) {
            stores.erase(std::remove_if(stores.begin(), stores.end(),
                                        [](Store const& store) { return store.kind == StoreKind::Fence; }),
                         stores.end());
        });
        EXPECT_NE("", complaint) << name;
    }
}

TEST_F(NegativeControls, PointUnlinkedWithoutReleaseBeforeItsSlotIsFilled_Fails) {
    auto const complaint = complaintOf("remove point 1, add beside", [](Stores& stores) {
        for (auto& store : stores) {
            store.kind = StoreKind::Plain;
            if (store.width == 0) {
                store.kind = StoreKind::Fence;
            }
        }
    });
    EXPECT_NE("", complaint);
}

} // namespace

} // namespace qel::test
