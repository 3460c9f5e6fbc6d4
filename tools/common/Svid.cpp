#include "tools/common/Svid.h"

#include "domain/SensorIdentifier.h"

#include <charconv>
#include <system_error>

namespace qel::tools {

namespace {

using Part = SensorIdentifier::Part;

template <typename Number>
std::optional<Number> wholeNumber(std::string_view digits, int base) {
    Number result = 0;
    auto const* const end = digits.data() + digits.size();
    auto const parsed = std::from_chars(digits.data(), end, result, base);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        return std::nullopt;
    }
    return result;
}

std::string electricalName(SensorIdentifier::Parts const& parts) {
    if (parts[Part::Socket] != -1) {
        return "socket";
    }
    if (parts[Part::Circuit] != -1) {
        return "circuit";
    }
    if (parts[Part::Phase] != -1) {
        return "phase";
    }
    return parts[Part::Inlet] != -1 ? "inlet" : "unit";
}

std::string kindName(SensorIdentifier::Parts const& parts) {
    switch (parts[Part::Kind]) {
    case SensorType::Electrical:
        return electricalName(parts);
    case SensorType::I2C:
        return "sensor";
    case SensorType::SocketGroup:
        return "group";
    case SensorType::RCM:
        return "rcm";
    default:
        return "point";
    }
}

} // namespace

std::string svidText(long long svid) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text = "0x";
    for (int shift = 60; shift >= 0; shift -= 4) {
        text += digits[(static_cast<std::uint64_t>(svid) >> static_cast<unsigned>(shift)) & 0xFU];
    }
    return text;
}

std::optional<long long> parseSvid(std::string_view text) {
    constexpr int hexadecimal = 16;
    constexpr int decimal = 10;
    bool const isHexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    if (!text.empty() && text.front() == '-') {
        return wholeNumber<long long>(text, decimal);
    }
    auto const bits = wholeNumber<std::uint64_t>(isHexadecimal ? text.substr(2) : text,
                                                 isHexadecimal ? hexadecimal : decimal);
    if (!bits) {
        return std::nullopt;
    }
    return static_cast<long long>(*bits);
}

std::string pointLabel(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    std::string label = kindName(parts);
    char separator = ' ';
    for (auto const part : {Part::Inlet, Part::Phase, Part::Circuit, Part::Socket}) {
        if (parts[part] != -1) {
            label += separator + std::to_string(parts[part]);
            separator = '/';
        }
    }
    return separator == ' ' ? label + ' ' + std::to_string(parts[Part::Device]) : label;
}

} // namespace qel::tools
