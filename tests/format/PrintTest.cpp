// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Print.h"

#include "format/Names.h"
#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRoot.h"
#include "tests/format/RawValue.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <ios>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace field = qel::test::field;
namespace key = shm::key;
using qel::test::rawNone;
using qel::test::rawPoint;
using qel::test::rawRegionSize;
using qel::test::RawValue;
using qel::test::repeatable;
using shm::QelShmMPnt;
using shm::QelShmMVal;
using shm::QelShmRoot;

constexpr int randomSlots = 20000;

/// The whole region by its bytes, wiped at first.
class Bytes {
public:
    Bytes() : bytes_(rawRegionSize, 0xFF) {}

    template <typename Number>
    Bytes& set(std::size_t offset, Number number) {
        std::memcpy(bytes_.data() + offset, &number, sizeof number);
        return *this;
    }

    template <typename Number>
    Number get(std::size_t offset) const {
        Number number;
        std::memcpy(&number, bytes_.data() + offset, sizeof number);
        return number;
    }

    QelShmRoot root() const { return QelShmRoot(bytes_.data()); }

    /// The point in slot 0.
    QelShmMPnt point() const {
        return QelShmMPnt(reinterpret_cast<shm::record::QelShmMP const*>(bytes_.data()));
    }

    std::uint8_t& operator[](std::size_t offset) { return bytes_[offset]; }

private:
    std::vector<std::uint8_t> bytes_;
};

/// A socket point with type "Schuko" in state "On".
Bytes socketPoint() {
    Bytes bytes;
    bytes.set(field::pos, std::uint32_t{27})
        .set(field::guid, std::int64_t{0x0100010203050000})
        .set(field::pointState, std::int32_t{17})
        .set(field::pointType, std::uint8_t{30});
    return bytes;
}

/// An active region with two devices and one group.
Bytes activeRegion() {
    Bytes bytes;
    bytes.set(field::devices, std::uint32_t{5})
        .set(rawPoint(5) + field::next, std::uint32_t{799})
        .set(field::groups, std::uint32_t{9})
        .set(field::rootState, std::int32_t{17})
        .set(field::version, std::uint8_t{32});
    return bytes;
}

template <typename Handle>
std::string printed(Handle const& handle) {
    std::ostringstream out;
    out << handle;
    return out.str();
}

std::string hex(std::uint64_t number, int digits) {
    std::ostringstream out;
    out << "0x" << std::hex << std::setfill('0') << std::setw(digits) << number;
    return out.str();
}

TEST(PrintMValTest, RendersOneLine) {
    RawValue slot(key::voltage, 230.1, 0, 1234);

    EXPECT_EQ(printed(slot.handle()),
              "QSMV {key = 0x0001 [Voltage], value = 230.1 V, state = No Error, at = 1234}");
}

TEST(PrintMValTest, FillsTheKeyToFourDigits) {
    RawValue location(key::deviceLocation, 0, 0);
    RawValue top(key::voltageMeasuredAtSocketLevel, 0, 0);

    EXPECT_EQ(printed(location.handle()),
              "QSMV {key = 0x0200 [Device location], value = 0.0, state = No Error, at = 0}");
    EXPECT_EQ(
        printed(top.handle()),
        "QSMV {key = 0xfffe [Voltage measured at socket level], value = 0.0, state = No Error, at = 0}");
}

TEST(PrintMValTest, OfAWipedSlot) {
    RawValue slot;

    EXPECT_EQ(
        printed(slot.handle()),
        "QSMV {key = 0xffff [UNKNOWN KEY], value = --, state = Undefined Value, at = 18446744073709551615}");
}

TEST(PrintMValTest, OfAFreshSlot) {
    RawValue slot(3, 0, -2);

    EXPECT_EQ(printed(slot.handle()),
              "QSMV {key = 0x0003 [KEY_IDX_0x3], value = n/a, state = Expected Value, at = 0}");
}

TEST(PrintMValTest, SetsTheStreamToDecimalAndLeavesItSo) {
    RawValue slot(key::voltage, 1, 0, 255);
    std::ostringstream out;
    out << std::hex << std::showbase;

    out << slot.handle();
    out << ' ' << 255;

    EXPECT_EQ(out.str(), "QSMV {key = 0x0001 [Voltage], value = 1.0 V, state = No Error, at = 255} 255");
}

TEST(PrintMValTest, LeavesAllOtherFlagsWidthAndFillAlone) {
    RawValue slot(key::voltage, 1, 0, 255);
    std::ostringstream out;
    out << std::oct << std::showbase << std::uppercase << std::left << std::setfill('*')
        << std::setprecision(3);
    auto const before = out.flags();

    out << slot.handle();

    EXPECT_EQ(out.flags(), (before & ~std::ios_base::basefield) | std::ios_base::dec);
    EXPECT_EQ(out.fill(), '*');
    EXPECT_EQ(out.precision(), 3);
    EXPECT_EQ(out.str(), "QSMV {key = 0x0001 [Voltage], value = 1.0 V, state = No Error, at = 255}");
}

TEST(PrintMValTest, OfANullHandle_ChangesNoFlag) {
    std::ostringstream out;
    out << std::hex;
    auto const before = out.flags();

    out << QelShmMVal();

    EXPECT_EQ(out.str(), "QSMV {}");
    EXPECT_EQ(out.flags(), before);
}

TEST(PrintMValTest, ReturnsTheStream) {
    RawValue slot;
    std::ostringstream out;
    EXPECT_EQ(&(out << slot.handle()), &out);
    EXPECT_EQ(&(out << QelShmMVal()), &out);
}

TEST(PrintMValTest, OfAnyBytes) {
    auto random = repeatable(1);
    RawValue slot;
    for (int i = 0; i < randomSlots; ++i) {
        slot.randomize(random);
        if (i % 2 != 0) {
            slot.set(field::valueKey, static_cast<std::uint16_t>(random() % 600));
            slot.set(field::valueState, static_cast<std::int32_t>(random() % 50) - 3);
        }
        auto const mv = slot.handle();
        auto const key = slot.get<std::uint16_t>(field::valueKey);
        auto const state = static_cast<eStatus_Bits>(slot.get<std::int32_t>(field::valueState));

        ASSERT_EQ(printed(mv), "QSMV {key = " + hex(key, 4) + " [" + shm::keyName(key) +
                                   "], value = " + tav::ValueFormatter::str(mv) +
                                   ", state = " + std::string(shm::stateName(state)) +
                                   ", at = " + std::to_string(slot.get<std::uint64_t>(field::valueAt)) + "}");
    }
}

TEST(PrintMPntTest, RendersOneLine) {
    auto bytes = socketPoint();
    bytes.set(field::mvs, std::uint32_t{12});

    EXPECT_EQ(printed(bytes.point()), "QSMP {guid = 0x0100010203050000, pos = 27, State = On, Type = Schuko, "
                                      "mvs = true, children = false}");
}

TEST(PrintMPntTest, OfAWipedSlot) {
    EXPECT_EQ(printed(Bytes().point()), "QSMP {guid = 0xffffffffffffffff, pos = 4294967295, "
                                        "State = Undefined Value, Type = , mvs = false, children = false}");
}

TEST(PrintMPntTest, FillsTheGuidToSixteenDigits) {
    auto bytes = socketPoint();
    bytes.set(field::guid, std::int64_t{0xAB0000});

    EXPECT_EQ(printed(bytes.point()).substr(0, 33), "QSMP {guid = 0x0000000000ab0000, ");
}

TEST(PrintMPntTest, ShowsValuesWhileTheLinkIsAValuePosition) {
    auto const values = [](std::uint32_t link) {
        auto bytes = socketPoint();
        bytes.set(field::mvs, link);
        return printed(bytes.point()).find(", mvs = true, children = false}") != std::string::npos;
    };
    EXPECT_TRUE(values(0));
    EXPECT_TRUE(values(8799));
    EXPECT_FALSE(values(8800));
    EXPECT_FALSE(values(rawNone - 1));
    EXPECT_FALSE(values(rawNone));
}

TEST(PrintMPntTest, ShowsChildrenWhileTheLinkIsAPointPosition) {
    auto const children = [](std::uint32_t link) {
        auto bytes = socketPoint();
        bytes.set(field::children, link);
        return printed(bytes.point()).find(", mvs = false, children = true}") != std::string::npos;
    };
    EXPECT_TRUE(children(0));
    EXPECT_TRUE(children(799));
    EXPECT_FALSE(children(800));
    EXPECT_FALSE(children(8799));
    EXPECT_FALSE(children(rawNone));
}

TEST(PrintMPntTest, WritesThePositionInTheStreamsBase) {
    auto const bytes = socketPoint();
    std::ostringstream out;
    out << std::hex << std::showbase;

    out << bytes.point();

    EXPECT_EQ(out.str(), "QSMP {guid = 0x0100010203050000, pos = 0x1b, State = On, Type = Schuko, "
                         "mvs = false, children = false}");
}

TEST(PrintMPntTest, LeavesBooleansAsWordsAndAllElseAlone) {
    auto const bytes = socketPoint();
    std::ostringstream out;
    out << std::oct << std::uppercase << std::left << std::setfill('*');
    auto const before = out.flags();

    out << bytes.point();

    EXPECT_EQ(out.flags(), before | std::ios_base::boolalpha);
    EXPECT_EQ(out.fill(), '*');
    EXPECT_EQ(out.str(), "QSMP {guid = 0x0100010203050000, pos = 33, State = On, Type = Schuko, "
                         "mvs = false, children = false}");
}

TEST(PrintMPntTest, OfANullHandle_ChangesNoFlag) {
    std::ostringstream out;
    auto const before = out.flags();

    out << QelShmMPnt();

    EXPECT_EQ(out.str(), "QSMP {}");
    EXPECT_EQ(out.flags(), before);
}

TEST(PrintMPntTest, ReturnsTheStream) {
    auto const bytes = socketPoint();
    std::ostringstream out;
    EXPECT_EQ(&(out << bytes.point()), &out);
    EXPECT_EQ(&(out << QelShmMPnt()), &out);
}

TEST(PrintMPntTest, OfAnyBytes) {
    auto random = repeatable(2);
    Bytes bytes;
    for (int i = 0; i < randomSlots; ++i) {
        for (std::size_t offset = 0; offset < rawPoint(1); ++offset) {
            bytes[offset] = static_cast<std::uint8_t>(random());
        }
        if (i % 2 != 0) {
            bytes.set(field::mvs, static_cast<std::uint32_t>(random() % 17600));
            bytes.set(field::children, static_cast<std::uint32_t>(random() % 1600));
            bytes[field::guid + 6] = static_cast<std::uint8_t>(random() % 6); // the kind
        }
        auto const state = static_cast<eStatus_Bits>(bytes.get<std::int32_t>(field::pointState));

        ASSERT_EQ(printed(bytes.point()),
                  "QSMP {guid = " + hex(bytes.get<std::uint64_t>(field::guid), 16) +
                      ", pos = " + std::to_string(bytes.get<std::uint32_t>(field::pos)) +
                      ", State = " + std::string(shm::stateName(state)) + ", Type = " + bytes.point().tstr() +
                      ", mvs = " + (bytes.get<std::uint32_t>(field::mvs) < 8800 ? "true" : "false") +
                      ", children = " + (bytes.get<std::uint32_t>(field::children) < 800 ? "true" : "false") +
                      "}");
    }
}

TEST(PrintRootTest, OfAnActiveRegion) {
    EXPECT_EQ(printed(activeRegion().root()),
              "QSR {valid = true, version = 0x20, State = On, devices = 0x2, groups = 0x1}");
}

TEST(PrintRootTest, OfAWipedRegion) {
    EXPECT_EQ(printed(Bytes().root()),
              "QSR {valid = true, version = 0xff, State = Undefined Value, devices = 0, groups = 0}");
}

TEST(PrintRootTest, OfAnUnknownStateAndAnyVersion) {
    auto bytes = activeRegion();
    bytes.set(field::rootState, std::int32_t{44}).set(field::version, std::uint8_t{0});

    EXPECT_EQ(printed(bytes.root()),
              "QSR {valid = true, version = 0, State = UNKNOWN STATE, devices = 0x2, groups = 0x1}");
}

TEST(PrintRootTest, WithListHeadsOutOfRange_CountsNothing) {
    for (std::uint32_t const head : {800U, 8799U, 0x80000000U, rawNone}) {
        auto bytes = activeRegion();
        bytes.set(field::devices, head).set(field::groups, head);
        EXPECT_EQ(printed(bytes.root()),
                  "QSR {valid = true, version = 0x20, State = On, devices = 0, groups = 0}");
    }
}

TEST(PrintRootTest, LeavesTheStreamHexadecimalWithBasePrefixAndBooleansAsWords) {
    auto const bytes = activeRegion();
    std::ostringstream out;
    out << std::uppercase << std::setfill('*');
    auto const before = out.flags();

    out << bytes.root() << ' ' << 16 << ' ' << true;

    using Base = std::ios_base;
    EXPECT_EQ(out.flags(), (before & ~Base::basefield) | Base::hex | Base::showbase | Base::boolalpha);
    EXPECT_EQ(out.fill(), '*');
    EXPECT_EQ(out.str(),
              "QSR {valid = true, version = 0X20, State = On, devices = 0X2, groups = 0X1} 0X10 true");
}

TEST(PrintRootTest, OfANullHandle_LeavesTheBaseAlone) {
    for (auto const base : {std::ios_base::dec, std::ios_base::oct, std::ios_base::hex}) {
        std::ostringstream out;
        out.setf(base, std::ios_base::basefield);
        auto const before = out.flags();

        out << QelShmRoot();

        EXPECT_EQ(out.str(), "QSR {valid = false}");
        EXPECT_EQ(out.flags(), before | std::ios_base::boolalpha);
    }
}

TEST(PrintRootTest, ReturnsTheStream) {
    auto const bytes = activeRegion();
    std::ostringstream out;
    EXPECT_EQ(&(out << bytes.root()), &out);
    EXPECT_EQ(&(out << QelShmRoot()), &out);
}

TEST(PrintTest, DoesNotFollowTheLocale) {
    qel::test::CommaLocale const locale;
    if (!locale.problem().empty()) {
        GTEST_SKIP() << locale.problem();
    }
    RawValue value(key::voltage, 230.1, 0, 1700000000123);
    std::ostringstream out; // of the process's locale
    out << value.handle();
    EXPECT_EQ(out.str(),
              "QSMV {key = 0x0001 [Voltage], value = 230.1 V, state = No Error, at = 1700000000123}");

    Bytes bytes;
    out.str("");
    out << bytes.point();
    EXPECT_NE(out.str().find(", pos = 4294967295, "), std::string::npos) << out.str();
}

/// Has words of its own for booleans, and digits in groups.
struct OwnWords : std::numpunct<char> {
    std::string do_truename() const override { return "ja"; }
    std::string do_falsename() const override { return "nein"; }
    std::string do_grouping() const override { return "\1"; }
    char do_thousands_sep() const override { return '.'; }
};

TEST(PrintTest, DoesNotFollowTheStreamsLocale) {
    Bytes bytes;
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new OwnWords));
    out << bytes.point() << bytes.root();
    std::ostringstream plain;
    plain << bytes.point() << bytes.root();
    EXPECT_EQ(out.str(), plain.str());
    EXPECT_NE(out.str().find("version = 0xff"), std::string::npos) << out.str();
}

TEST(PrintTest, ChangesNothingInTheRegion) {
    auto bytes = activeRegion();
    std::vector<std::uint8_t> before;
    for (std::size_t offset = 0; offset < rawRegionSize; ++offset) {
        before.push_back(bytes[offset]);
    }

    printed(bytes.root());
    printed(bytes.point());
    printed(QelShmMVal(reinterpret_cast<shm::record::QelShmMVal const*>(&bytes[qel::test::rawValuesOffset])));

    for (std::size_t offset = 0; offset < rawRegionSize; ++offset) {
        ASSERT_EQ(bytes[offset], before[offset]) << offset;
    }
}

} // namespace
