// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The constants for programs are in step with the table of keys, and so is what they are documented to be.

#include "format/ValueKeys.h"

#include "format/KeyTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <string_view>

namespace {

using shm::KeyKind;
using shm::keyTable;

char lowerCase(char letter) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

struct Constant {
    std::string name;
    std::string words; ///< its documentation

    bool says(std::string const& text) const { return words.find(text) != std::string::npos; }
};

/// What the header defines, by code.
std::map<unsigned, Constant> const& constants() {
    static auto const found = [] {
        static std::regex const line("constexpr unsigned short (\\w+) = (0x[0-9A-F]+);\\s*(///< (.*))?");
        std::map<unsigned, Constant> byCode;
        std::ifstream header(QEL_VALUE_KEYS_HEADER);
        EXPECT_TRUE(header);
        for (std::string text; std::getline(header, text);) {
            std::smatch parts;
            if (std::regex_match(text, parts, line)) {
                auto const code = static_cast<unsigned>(std::stoul(parts[2], nullptr, 16));
                EXPECT_TRUE(byCode.insert({code, {parts[1], parts[4]}}).second) << text;
            } else {
                EXPECT_EQ(text.find("unsigned short"), std::string::npos) << text;
            }
        }
        return byCode;
    }();
    return found;
}

/// "Device serial number (base unit)": deviceSerialNumberBaseUnit.
std::string camelCase(std::string_view name) {
    std::string result;
    bool startsWord = false;
    for (char const letter : name) {
        if (std::isalnum(static_cast<unsigned char>(letter)) == 0) {
            startsWord = true;
        } else {
            result += startsWord && !result.empty() ? letter : lowerCase(letter);
            startsWord = false;
        }
    }
    return result;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) { return lowerCase(letter); });
    return text;
}

TEST(ValueKeysTest, EveryNamedKeyHasAConstant) {
    EXPECT_EQ(constants().size(), 84U);
    for (auto const& row : keyTable) {
        EXPECT_EQ(constants().count(row.code), 1U) << row.name;
    }
}

TEST(ValueKeysTest, AConstantIsTheKeysNameInCamelCase) {
    for (auto const& row : keyTable) {
        auto const expected =
            row.code == shm::key::voltageAbove20V ? std::string("voltageAbove20V") : camelCase(row.name);
        EXPECT_EQ(lowerCase(constants().at(row.code).name), lowerCase(expected)) << row.code;
    }
}

TEST(ValueKeysTest, EveryConstantIsDocumented) {
    for (auto const& [code, constant] : constants()) {
        EXPECT_GE(constant.words.size(), 4U) << constant.name;
    }
}

TEST(ValueKeysTest, DocumentationTellsTheUnit) {
    for (auto const& row : keyTable) {
        auto const& constant = constants().at(row.code);
        auto const unit = std::string(shm::keyUnit(row.code));
        if (unit.empty()) {
            EXPECT_FALSE(constant.says("[")) << constant.name;
        } else {
            // The system writes VAR, the standard var.
            auto const standard = std::regex_replace(unit, std::regex("VAR"), "var");
            EXPECT_TRUE(constant.says('[' + standard + ']')) << constant.name;
        }
    }
}

TEST(ValueKeysTest, DocumentationTellsEnergiesAndPointStates) {
    EXPECT_EQ(shm::energyFactor, 1000.0);
    for (auto const& row : keyTable) {
        auto const& constant = constants().at(row.code);
        EXPECT_EQ(constant.says("factor 1000"), row.kind == KeyKind::Energy) << constant.name;
        EXPECT_EQ(constant.says("point state"), row.kind == KeyKind::PointState) << constant.name;
    }
}

} // namespace
