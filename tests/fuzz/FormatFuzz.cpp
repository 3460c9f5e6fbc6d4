// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Feeds slots with any content to all that renders them.
///
/// An input is a value's key (2 bytes), state (4), number (8) and time (8), a point's sensor id (8), state (4) and type
/// (1), the root's version (1) and state (4), lowest bytes first, and then a separator.

#include "format/HexText.h"
#include "format/Names.h"
#include "format/Print.h"
#include "format/StateName.h"
#include "format/Units.h"
#include "format/ValueFormatter.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"
#include "region/QelShmRoot.h"

#include "domain/SensorIdentifier.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/Verdict.h"
#include "tests/hostile/Rendering.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

namespace qel::fuzz {

namespace {

using shm::record::Region;
using tav::ValueFormatter;

constexpr std::size_t numberSize = 32;

template <typename Item>
std::string printed(Item const& item) {
    std::ostringstream out;
    out << item;
    return out.str();
}

eStatus_Bits state(Input& input) {
    return static_cast<eStatus_Bits>(static_cast<std::int32_t>(input.number(4)));
}

/// The documented format, given to printf, must make the text that the formatter makes by itself.
void compareWithPrintf(unsigned short key, double number, std::string const& separator) {
    auto const text = ValueFormatter::str(key, number, separator);
    require(text.size() < numberSize, "a text exceeds its buffer");
    if (separator.find_first_of(std::string("%\0", 2)) == std::string::npos) {
        char expected[numberSize];
        static_cast<void>(
            std::snprintf(expected, sizeof expected, ValueFormatter::format(key, separator).c_str(), number));
        require(text == expected, "a text is not what its format makes: " + text);
    }
}

void renderValue(Input& input, Region& region) {
    auto& slot = region.values[0];
    slot.key = static_cast<std::uint16_t>(input.number(2));
    slot.state = state(input);
    slot.value = input.real();
    slot.at = input.number(sizeof slot.at);
    auto const tooLong = test::renderedTooLong(shm::QelShmMVal(&slot));
    require(tooLong.empty(), tooLong);
    require(!shm::keyName(slot.key).empty(), "a key without a name");
    require(!shm::stateName(slot.state).empty(), "a state without a name");
    require(shm::hexText(slot.at, slot.key % 64U).size() >= 3, "a number without digits");
    require(!tav::unitText(static_cast<std::uint8_t>(slot.key)).empty(), "a unit without a text");
}

void renderPoint(Input& input, Region& region) {
    auto& slot = region.points[0];
    slot.guid = static_cast<std::int64_t>(input.number(sizeof slot.guid));
    slot.state = state(input);
    slot.type = input.byte();
    auto const tooLong = test::renderedTooLong(shm::QelShmMPnt(&slot));
    require(tooLong.empty(), tooLong);
    require(!SensorIdentifier::explain(slot.guid).empty(), "an id without a text");
    require(!printed(SensorIdentifier::extractSensorType(slot.guid)).empty(), "a kind without a text");
}

void renderRoot(Input& input, Region& region) {
    region.root.version = input.byte();
    region.root.state = state(input);
    require(printed(shm::QelShmRoot(&region)).find("devices = 0, groups = 0}") != std::string::npos,
            "points in empty lists");
}

void render(Input input) {
    static auto const region = [] {
        auto wiped = std::make_unique<Region>();
        std::memset(static_cast<void*>(wiped.get()), shm::WIPE_BYTE, sizeof(Region));
        return wiped;
    }();
    renderValue(input, *region);
    renderPoint(input, *region);
    renderRoot(input, *region);
    std::string const separator(reinterpret_cast<char const*>(input.rest()), input.restSize());
    auto const& value = region->values[0];
    compareWithPrintf(value.key, value.value, separator);
}

} // namespace

} // namespace qel::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    qel::fuzz::requireQuick([&] { qel::fuzz::render({data, size}); });
    return 0;
}
