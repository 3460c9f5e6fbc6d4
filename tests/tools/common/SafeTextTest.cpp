// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/SafeText.h"

#include <gtest/gtest.h>

#include <array>

namespace qel::tools {

namespace {

struct Case {
    std::string text;
    std::string safe;
};

} // namespace

TEST(SafeTextTest, PrintableText_StaysAsItIs) {
    for (std::string const text :
         {"", "unit1/inlet1", "21.5 \u00B0C", "\u20AC", "\U0001F50C", "a\\x1Bb", "~ \u00A0"}) {
        EXPECT_EQ(text, safeText(text));
    }
}

TEST(SafeTextTest, ControlCharacters_AreEscaped) {
    std::array<Case, 6> const cases{
        {{"\x1b[31m", R"(\x1B[31m)"},
         {"a\nb\tc", R"(a\x0Ab\x09c)"},
         {std::string("\0", 1), R"(\x00)"},
         {"\x7f", R"(\x7F)"},
         {"\xC2\x9B", R"(\xC2\x9B)"}, // what begins a control sequence in one character
         {"\xC2\x80.\xC2\x9F", R"(\xC2\x80.\xC2\x9F)"}}};
    for (auto const& [text, safe] : cases) {
        EXPECT_EQ(safe, safeText(text));
    }
}

TEST(SafeTextTest, BytesThatAreNoUtf8_AreEscaped) {
    std::array<Case, 9> const cases{
        {{"\xFFzz", R"(\xFFzz)"},
         {"\x80", R"(\x80)"},
         {"12 \xC2", R"(12 \xC2)"},
         {"\xC2W", R"(\xC2W)"},
         {"\xC0\xAF", R"(\xC0\xAF)"},                           // too long for its code
         {"\xE0\x80\xAF", R"(\xE0\x80\xAF)"},                   // likewise
         {"\xED\xA0\x80", R"(\xED\xA0\x80)"},                   // a surrogate
         {"\xF4\x90\x80\x80", R"(\xF4\x90\x80\x80)"},           // behind the last code
         {"\xF0\x9F\x94 \xC3\xA4", "\\xF0\\x9F\\x94 \u00E4"}}}; // cut, then one that is whole
    for (auto const& [text, safe] : cases) {
        EXPECT_EQ(safe, safeText(text));
    }
}

} // namespace qel::tools
