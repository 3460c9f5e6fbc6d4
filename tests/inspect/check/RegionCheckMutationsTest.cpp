// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// checkRegion on a good region with one field broken.

#include "inspect/check/RegionCheck.h"

#include "format/ValueKeys.h"
#include "tests/inspect/SampleUnit.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

namespace qel::inspect {

namespace {

using shm::record::Region;
using test::pointId;

constexpr std::uint32_t none = 0xFFFFFFFF;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// A change that breaks a field, and the one finding that it leads to. Names and numbers of fields, slots and offsets are
/// repeated here on purpose.
struct Mutation {
    char const* name;
    void (*apply)(Region& region);
    std::string code;
    std::string place;
    std::string field;
    std::uint64_t offset;
    std::string found;
    std::string expected;
};

std::ostream& operator<<(std::ostream& out, Mutation const& mutation) {
    return out << mutation.name;
}

constexpr std::uint64_t point(std::uint64_t pos, std::uint64_t offset) {
    return pos * 48 + offset;
}
constexpr std::uint64_t value(std::uint64_t pos, std::uint64_t offset) {
    return 38400 + pos * 32 + offset;
}
constexpr std::uint64_t root(std::uint64_t offset) {
    return 320000 + offset;
}

std::string described(Findings const& findings) {
    std::string text;
    for (auto const& finding : findings) {
        text += std::string(kindOf(finding.code).name) + ": " + placeText(finding) + ' ' +
                std::string(finding.field.name) + " at " + std::to_string(finding.offset) + ": found " +
                finding.found.text() + ", expected " + finding.expected.text() + '\n';
    }
    return text;
}

class RegionCheckMutationsTest : public testing::TestWithParam<Mutation> {};

TEST_P(RegionCheckMutationsTest, GiveExactlyTheirFinding) {
    auto const& mutation = GetParam();
    auto region = test::sampleUnit();
    ASSERT_EQ("", described(checkRegion(Image(region.get(), sizeof *region))));

    mutation.apply(*region);

    auto const findings = checkRegion(Image(region.get(), sizeof *region));
    EXPECT_EQ(mutation.code + ": " + mutation.place + ' ' + mutation.field + " at " +
                  std::to_string(mutation.offset) + ": found " + mutation.found + ", expected " +
                  mutation.expected + '\n',
              described(findings));
}

Mutation const rootMutations[] = {
    {"VersionOfAnotherLayout", [](Region& r) { r.root.version = 33; }, "version-unknown", "root", "version",
     root(28), "0x21", "0x20 (active) or 0xff (inactive)"},
    {"VersionZero", [](Region& r) { r.root.version = 0; }, "version-unknown", "root", "version", root(28),
     "0x00", "0x20 (active) or 0xff (inactive)"},
    {"RootIdOfAPoint", [](Region& r) { r.root.guid = pointId(1, 0); }, "root-id-wrong", "root", "guid",
     root(0), "0x0100ffffffff0000", "0xff00ffffffff0000"},
    {"RootUnusedSet", [](Region& r) { r.root.unused = 1; }, "root-unused-set", "root", "unused", root(8), "1",
     "0"},
    {"RootReservedChanged", [](Region& r) { r.root.reserved[1] = 0; }, "reserved-changed", "root", "reserved",
     root(30), "0x00", "0xff"},
    {"GlobalStateTooHigh", [](Region& r) { r.root.state = static_cast<eStatus_Bits>(44); },
     "state-out-of-range", "root", "state", root(24), "UNKNOWN STATE (44)", "-2 to 43"},
    {"GlobalStateNotThatOfThePoints", [](Region& r) { r.root.state = eStatus_ChildWarning; },
     "global-state-not-folded", "root", "state", root(24), "Child Warning (24)", "On (17)"},

    {"DevicesAtTheSecondDevice", [](Region& r) { r.root.devices = 17; }, "head-not-first", "root", "devices",
     root(16), "slot 17", "slot 0"},
    {"DevicesAtAChild", [](Region& r) { r.root.devices = 1; }, "head-not-first", "root", "devices", root(16),
     "slot 1", "slot 0"},
    {"DevicesAtTheFirstGroup", [](Region& r) { r.root.devices = 13; }, "point-linked-twice", "root",
     "devices", root(16), "slot 13", "slot 0"},
    {"DevicesLost", [](Region& r) { r.root.devices = none; }, "head-not-first", "root", "devices", root(16),
     "none", "slot 0"},
    {"DevicesOutOfRange", [](Region& r) { r.root.devices = 800; }, "link-out-of-range", "root", "devices",
     root(16), "slot 800", "slot 0"},
    {"DevicesAtAnUnusedSlot", [](Region& r) { r.root.devices = 799; }, "link-to-unused-slot", "root",
     "devices", root(16), "slot 799", "slot 0"},
    {"GroupsAtTheFirstDevice", [](Region& r) { r.root.groups = 0; }, "point-linked-twice", "root", "groups",
     root(20), "slot 0", "slot 13"},
    {"GroupsAtTheLastGroup", [](Region& r) { r.root.groups = 15; }, "head-not-first", "root", "groups",
     root(20), "slot 15", "slot 13"},
    {"GroupsOutOfRange", [](Region& r) { r.root.groups = 0xFFFFFFFE; }, "link-out-of-range", "root", "groups",
     root(20), "slot 4294967294", "slot 13"},
};

Mutation const linkMutations[] = {
    {"NextLost", [](Region& r) { r.points[3].next = none; }, "next-not-mirrored", "point 3", "next",
     point(3, 4), "none", "slot 4"},
    {"NextSkipsASibling", [](Region& r) { r.points[3].next = 5; }, "next-not-mirrored", "point 3", "next",
     point(3, 4), "slot 5", "slot 4"},
    {"NextAtItself", [](Region& r) { r.points[4].next = 4; }, "point-linked-twice", "point 4", "next",
     point(4, 4), "slot 4", "slot 5"},
    {"NextBackAtTheFirst", [](Region& r) { r.points[5].next = 3; }, "point-linked-twice", "point 5", "next",
     point(5, 4), "slot 3", "slot 6"},
    {"NextOfTheLastBackInTheMiddle", [](Region& r) { r.points[6].next = 4; }, "point-linked-twice", "point 6",
     "next", point(6, 4), "slot 4", "none"},
    {"NextAtTheParent", [](Region& r) { r.points[6].next = 2; }, "point-linked-twice", "point 6", "next",
     point(6, 4), "slot 2", "none"},
    {"NextIntoAListWalkedBefore", [](Region& r) { r.points[6].next = 7; }, "point-linked-twice", "point 6",
     "next", point(6, 4), "slot 7", "none"},
    {"NextIntoAListThatIsLostByIt", [](Region& r) { r.points[7].next = 3; }, "next-not-mirrored", "point 7",
     "next", point(7, 4), "slot 3", "slot 8"},
    {"NextIntoAListWalkedLater", [](Region& r) { r.points[1].next = 18; }, "point-linked-twice", "point 1",
     "next", point(1, 4), "slot 18", "slot 10"},
    {"NextIntoTheMiddleOfAListWalkedLater", [](Region& r) { r.points[7].next = 11; }, "point-linked-twice",
     "point 7", "next", point(7, 4), "slot 11", "slot 8"},
    {"NextOfTheLastDeviceAtTheFirstGroup", [](Region& r) { r.points[19].next = 13; }, "point-linked-twice",
     "point 19", "next", point(19, 4), "slot 13", "none"},
    {"DevicesCircular", [](Region& r) { r.points[19].next = 0; }, "point-linked-twice", "point 19", "next",
     point(19, 4), "slot 0", "none"},
    {"GroupsCircular", [](Region& r) { r.points[15].next = 13; }, "point-linked-twice", "point 15", "next",
     point(15, 4), "slot 13", "none"},
    {"NextAtAFreedSlot", [](Region& r) { r.points[9].next = 20; }, "next-not-mirrored", "point 9", "next",
     point(9, 4), "slot 20", "slot 2"},
    {"NextOutOfRange", [](Region& r) { r.points[3].next = 900; }, "link-out-of-range", "point 3", "next",
     point(3, 4), "slot 900", "slot 4"},
    {"NextOfTheLastOutOfRange", [](Region& r) { r.points[6].next = 800; }, "link-out-of-range", "point 6",
     "next", point(6, 4), "slot 800", "none"},
    {"NextAtAnUnusedSlot", [](Region& r) { r.points[3].next = 500; }, "link-to-unused-slot", "point 3",
     "next", point(3, 4), "slot 500", "slot 4"},
    {"NextOfADeviceLost", [](Region& r) { r.points[0].next = none; }, "next-not-mirrored", "point 0", "next",
     point(0, 4), "none", "slot 17"},
    {"NextOfADeviceSkipsOne", [](Region& r) { r.points[0].next = 19; }, "next-not-mirrored", "point 0",
     "next", point(0, 4), "slot 19", "slot 17"},
    {"NextOfAGroupAtADevice", [](Region& r) { r.points[13].next = 17; }, "point-linked-twice", "point 13",
     "next", point(13, 4), "slot 17", "slot 14"},

    {"PrevLost", [](Region& r) { r.points[4].prev = none; }, "prev-not-mirrored", "point 4", "prev",
     point(4, 8), "none", "slot 3"},
    {"PrevAtALaterSibling", [](Region& r) { r.points[4].prev = 6; }, "prev-not-mirrored", "point 4", "prev",
     point(4, 8), "slot 6", "slot 3"},
    {"PrevAtItself", [](Region& r) { r.points[4].prev = 4; }, "prev-not-mirrored", "point 4", "prev",
     point(4, 8), "slot 4", "slot 3"},
    {"PrevOfTheFirst", [](Region& r) { r.points[3].prev = 5; }, "prev-not-mirrored", "point 3", "prev",
     point(3, 8), "slot 5", "none"},
    {"PrevOutOfRange", [](Region& r) { r.points[6].prev = 1000; }, "prev-not-mirrored", "point 6", "prev",
     point(6, 8), "slot 1000", "slot 5"},
    {"PrevOfADevice", [](Region& r) { r.points[17].prev = 19; }, "prev-not-mirrored", "point 17", "prev",
     point(17, 8), "slot 19", "slot 0"},
    {"PrevOfTheFirstGroup", [](Region& r) { r.points[13].prev = 0; }, "prev-not-mirrored", "point 13", "prev",
     point(13, 8), "slot 0", "none"},

    {"ChildrenAtTheSecondChild", [](Region& r) { r.points[2].children = 4; }, "head-not-first", "point 2",
     "children", point(2, 16), "slot 4", "slot 3"},
    {"ChildrenAtItself", [](Region& r) { r.points[0].children = 0; }, "point-linked-twice", "point 0",
     "children", point(0, 16), "slot 0", "slot 1"},
    {"ChildrenAtTheGrandparent", [](Region& r) { r.points[2].children = 0; }, "point-linked-twice", "point 2",
     "children", point(2, 16), "slot 0", "slot 3"},
    {"ChildrenOfAnother", [](Region& r) { r.points[2].children = 7; }, "point-linked-twice", "point 2",
     "children", point(2, 16), "slot 7", "slot 3"},
    {"ChildrenOfOneWithoutThem", [](Region& r) { r.points[3].children = 18; }, "point-linked-twice",
     "point 3", "children", point(3, 16), "slot 18", "none"},
    {"ChildrenAtAFreedSlot", [](Region& r) { r.points[2].children = 20; }, "head-not-first", "point 2",
     "children", point(2, 16), "slot 20", "slot 3"},
    {"ChildrenOutOfRange", [](Region& r) { r.points[2].children = 801; }, "link-out-of-range", "point 2",
     "children", point(2, 16), "slot 801", "slot 3"},
    {"ChildrenAtAnUnusedSlot", [](Region& r) { r.points[2].children = 600; }, "link-to-unused-slot",
     "point 2", "children", point(2, 16), "slot 600", "slot 3"},
    {"ChildrenLost", [](Region& r) { r.points[2].children = none; }, "child-not-listed", "point 3", "parent",
     point(3, 20), "slot 2", "a point that lists it as a child"},

    {"ParentAtTheGrandparent", [](Region& r) { r.points[4].parent = 1; }, "parent-mismatch", "point 4",
     "parent", point(4, 20), "slot 1", "slot 2"},
    {"ParentOfTheFirstChildLost", [](Region& r) { r.points[3].parent = none; }, "parent-mismatch", "point 3",
     "parent", point(3, 20), "none", "slot 2"},
    {"ParentAtItself", [](Region& r) { r.points[2].parent = 2; }, "parent-mismatch", "point 2", "parent",
     point(2, 20), "slot 2", "slot 1"},
    {"ParentOfADevice", [](Region& r) { r.points[17].parent = 0; }, "parent-mismatch", "point 17", "parent",
     point(17, 20), "slot 0", "none"},
    {"ParentOutOfRange", [](Region& r) { r.points[0].parent = 800; }, "parent-mismatch", "point 0", "parent",
     point(0, 20), "slot 800", "none"},
};

Mutation const pointMutations[] = {
    {"PosOfAnother", [](Region& r) { r.points[3].pos = 4; }, "pos-mismatch", "point 3", "pos", point(3, 0),
     "slot 4", "slot 3"},
    {"PosLost", [](Region& r) { r.points[3].pos = none; }, "pos-mismatch", "point 3", "pos", point(3, 0),
     "none", "slot 3"},
    {"IdWithAKey", [](Region& r) { r.points[5].guid |= 0x13; }, "id-has-key", "point 5", "guid", point(5, 24),
     "0x010001ff01030013", "0x010001ff01030000"},
    {"IdOfTheRoot", [](Region& r) { r.points[5].guid = test::rootSvid; }, "id-of-root", "point 5", "guid",
     point(5, 24), "0xff00ffffffff0000", "an id of a point"},
    {"IdOfASibling", [](Region& r) { r.points[5].guid = r.points[4].guid; }, "id-not-unique", "point 5",
     "guid", point(5, 24), "0x010001ff01020000", "an id that no other point has"},
    {"IdOfAPointFarAway", [](Region& r) { r.points[18].guid = r.points[0].guid; }, "id-not-unique",
     "point 18", "guid", point(18, 24), "0x0100ffffffff0000", "an id that no other point has"},
    {"SensorAmongTheDevices", [](Region& r) { r.points[17].guid = pointId(2, 1); }, "kind-not-of-list",
     "point 17", "guid", point(17, 24), "0x0201ffffffff0000", "an id of sensor type 0"},
    {"DeviceAtTheHeadOfTheGroups", [](Region& r) { r.points[13].guid = pointId(1, 0, -1, -1, -1, 1); },
     "kind-not-of-list", "point 13", "guid", point(13, 24), "0x0100ffffff010000", "an id of sensor type 2"},
    {"SocketsNotByNumber", [](Region& r) { r.points[5].guid = pointId(1, 0, 1, -1, 1, 9); }, "order-broken",
     "point 6", "guid", point(6, 24), "0x010001ff01040000", "an id that belongs behind that of its prev"},
    {"SensorsNotByPhase", [](Region& r) { r.points[12].guid = pointId(1, 1, 1, 0); }, "order-broken",
     "point 12", "guid", point(12, 24), "0x01010100ffff0000", "an id that belongs behind that of its prev"},
    {"GroupBeforeSensors", [](Region& r) { r.points[16].guid = pointId(1, 2, 1); }, "order-broken",
     "point 11", "guid", point(11, 24), "0x01010101ffff0000", "an id that belongs behind that of its prev"},
    {"DevicesNotByNumber", [](Region& r) { r.points[19].guid = pointId(1, 0, -1, -1, -1, -2); },
     "order-broken", "point 19", "guid", point(19, 24), "0x0100fffffffe0000",
     "an id that belongs behind that of its prev"},
    {"PointStateTooHigh", [](Region& r) { r.points[4].state = static_cast<eStatus_Bits>(44); },
     "state-out-of-range", "point 4", "state", point(4, 40), "UNKNOWN STATE (44)", "-2 to 43"},
    {"PointStateTooLow", [](Region& r) { r.points[4].state = static_cast<eStatus_Bits>(-3); },
     "state-out-of-range", "point 4", "state", point(4, 40), "UNKNOWN STATE (-3)", "-2 to 43"},
    {"PointStateNotThatOfItsValues", [](Region& r) { r.points[4].state = eStatus_OnAlarm; },
     "state-not-folded", "point 4", "state", point(4, 40), "On, Alarm (9)", "On (17)"},
    {"PointReservedChanged", [](Region& r) { r.points[4].reserved[2] = 0x7F; }, "reserved-changed", "point 4",
     "reserved", point(4, 47), "0x7f", "0xff"},
};

Mutation const valueMutations[] = {
    {"ValuesOutOfRange", [](Region& r) { r.points[3].mvs = 8800; }, "link-out-of-range", "point 3", "mvs",
     point(3, 12), "slot 8800", "0 to 8799, or none"},
    {"ValuesAtAnUnusedSlot", [](Region& r) { r.points[3].mvs = 8799; }, "link-to-unused-slot", "point 3",
     "mvs", point(3, 12), "slot 8799", "a value of the point, or none"},
    {"ValuesOfAnother", [](Region& r) { r.points[4].mvs = 5; }, "value-linked-twice", "point 4", "mvs",
     point(4, 12), "slot 5", "a value that no other link leads to, or none"},
    {"ValuesFromTheMiddleOfAnothers", [](Region& r) { r.points[4].mvs = 6; }, "value-linked-twice", "point 4",
     "mvs", point(4, 12), "slot 6", "a value that no other link leads to, or none"},
    {"ChainBackAtItsFirst", [](Region& r) { r.values[7].next = 5; }, "value-linked-twice",
     "value 7 of point 3", "next", value(7, 20), "slot 5", "a value that no other link leads to, or none"},
    {"ChainAtItself", [](Region& r) { r.values[6].next = 6; }, "value-linked-twice", "value 6 of point 3",
     "next", value(6, 20), "slot 6", "a value that no other link leads to, or none"},
    {"ChainIntoOneFollowedBefore", [](Region& r) { r.values[10].next = 5; }, "value-linked-twice",
     "value 10 of point 4", "next", value(10, 20), "slot 5", "a value that no other link leads to, or none"},
    // Either link may be wrong; the one that is met later is reported.
    {"ChainIntoOneFollowedLater", [](Region& r) { r.values[7].next = 8; }, "value-linked-twice", "point 4",
     "mvs", point(4, 12), "slot 8", "a value that no other link leads to, or none"},
    {"ChainOutOfRange", [](Region& r) { r.values[6].next = 0x80000000; }, "link-out-of-range",
     "value 6 of point 3", "next", value(6, 20), "slot 2147483648", "0 to 8799, or none"},
    {"ChainAtAnUnusedSlot", [](Region& r) { r.values[6].next = 28; }, "link-to-unused-slot",
     "value 6 of point 3", "next", value(6, 20), "slot 28", "a value of the point, or none"},
    {"KeyLost", [](Region& r) { r.values[6].key = 0xFFFF; }, "key-missing", "value 6 of point 3", "key",
     value(6, 24), "0xffff", "0x0000 to 0xfffe"},
    {"KeyOfTheValueBefore", [](Region& r) { r.values[6].key = shm::key::voltage; }, "key-not-unique",
     "value 6 of point 3", "key", value(6, 24), "0x0001", "a key that no other value of the point has"},
    {"NumberNaN", [](Region& r) { r.values[6].value = notANumber; }, "number-not-finite",
     "value 6 of point 3", "value", value(6, 0), "nan", "a finite number"},
    {"NumberInfinite", [](Region& r) { r.values[6].value = -infinite; }, "number-not-finite",
     "value 6 of point 3", "value", value(6, 0), "-inf", "a finite number"},
    {"ValueStateTooHigh", [](Region& r) { r.values[6].state = static_cast<eStatus_Bits>(50); },
     "state-out-of-range", "value 6 of point 3", "state", value(6, 16), "UNKNOWN STATE (50)", "-2 to 43"},
    {"ValueStateTooLow", [](Region& r) { r.values[6].state = static_cast<eStatus_Bits>(-3); },
     "state-out-of-range", "value 6 of point 3", "state", value(6, 16), "UNKNOWN STATE (-3)", "-2 to 43"},
    {"ValueReservedChanged", [](Region& r) { r.values[6].reserved[0] = 0; }, "reserved-changed",
     "value 6 of point 3", "reserved", value(6, 26), "0x00", "0xff"},
};

std::string nameOf(testing::TestParamInfo<Mutation> const& mutation) {
    return mutation.param.name;
}

INSTANTIATE_TEST_SUITE_P(Root, RegionCheckMutationsTest, testing::ValuesIn(rootMutations), nameOf);
INSTANTIATE_TEST_SUITE_P(Links, RegionCheckMutationsTest, testing::ValuesIn(linkMutations), nameOf);
INSTANTIATE_TEST_SUITE_P(Points, RegionCheckMutationsTest, testing::ValuesIn(pointMutations), nameOf);
INSTANTIATE_TEST_SUITE_P(Values, RegionCheckMutationsTest, testing::ValuesIn(valueMutations), nameOf);

} // namespace

} // namespace qel::inspect
