#include "tools/qelshm/Text.h"

#include "tools/common/TimeText.h"

#include "format/Names.h"
#include "format/ValueFormatter.h"
#include "inspect/StateText.h"
#include "inspect/Svid.h"
#include "region/QelShmMVal.h"

#include <algorithm>

namespace qel::tools {

namespace {

// The longest usual text of each; a longer one shifts the rest of its line.
constexpr std::size_t labelWidth = 20;
constexpr std::size_t typeWidth = 32;
constexpr std::size_t nameWidth = 16;
constexpr std::size_t numberWidth = 16;
constexpr std::size_t stateWidth = 14;

} // namespace

std::size_t characterCount(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; // not one that continues a character
    }));
}

std::string padded(std::string_view text, std::size_t width) {
    return std::string(text) + std::string(width - std::min(width, characterCount(text)), ' ');
}

std::string numberText(shm::record::QelShmMVal const& value) {
    return tav::ValueFormatter::str(shm::QelShmMVal(&value));
}

std::string pointLine(PointView const& point) {
    std::string const indent((point.depth - 1) * std::size_t{2}, ' ');
    return inspect::svidText(point.svid) + "  " +
           padded(indent + inspect::pointLabel(point.svid), labelWidth) + "  " +
           padded(point.type, typeWidth) + "  " + inspect::stateText(point.state);
}

std::string valueLine(PointView const& point, shm::record::QelShmMVal const& value) {
    return "  " + inspect::svidText(point.svid | value.key) + "  " +
           padded(shm::keyName(value.key), nameWidth) + "  " + padded(numberText(value), numberWidth) + "  " +
           padded(inspect::stateText(value.state), stateWidth) + "  " + momentText(value.at);
}

std::string changeLine(PointView const& point, shm::record::QelShmMVal const& value) {
    return momentText(value.at) + "  " + padded(inspect::pointLabel(point.svid), labelWidth) + "  " +
           padded(shm::keyName(value.key), nameWidth) + "  " + padded(numberText(value), numberWidth) + "  " +
           inspect::stateText(value.state);
}

} // namespace qel::tools
