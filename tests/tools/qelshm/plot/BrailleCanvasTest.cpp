// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/BrailleCanvas.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::plot {

namespace {

std::string rowOf(BrailleCanvas const& canvas, std::size_t row) {
    std::string text;
    for (std::size_t column = 0; column < canvas.width(); ++column) {
        text += canvas.glyph(column, row).text;
    }
    return text;
}

} // namespace

TEST(BrailleCanvasTest, New_IsBlank) {
    BrailleCanvas const sut(3, 2);
    EXPECT_EQ("   ", rowOf(sut, 0));
    EXPECT_EQ(std::size_t{BrailleCanvas::noCurve}, sut.glyph(0, 0).curve);
}

TEST(BrailleCanvasTest, Line_JoinsItsEnds) {
    BrailleCanvas sut(3, 1);
    sut.line(0, 0, 3, 5, 3);
    EXPECT_EQ("⣀⣀⣀", rowOf(sut, 0));
    BrailleCanvas back(2, 1);
    back.line(0, 3, 0, 0, 3);
    EXPECT_EQ("⡠⠊", rowOf(back, 0));
}

TEST(BrailleCanvasTest, SingleDot_IsALineToItself) {
    BrailleCanvas sut(1, 1);
    sut.line(0, 1, 3, 1, 3);
    EXPECT_EQ("⢀", rowOf(sut, 0));
}

TEST(BrailleCanvasTest, LaterCurve_OwnsTheCharacter) {
    BrailleCanvas sut(2, 1);
    sut.line(0, 0, 0, 3, 0);
    sut.line(1, 2, 3, 3, 3);
    EXPECT_EQ("⠉⣉", rowOf(sut, 0)) << "the dots of both";
    EXPECT_EQ(0U, sut.glyph(0, 0).curve);
    EXPECT_EQ(1U, sut.glyph(1, 0).curve);
    EXPECT_EQ("b", sut.asciiGlyph(1, 0, "ab").text);
}

TEST(BrailleCanvasTest, Mark_StandsInPlaceOfDots) {
    BrailleCanvas sut(2, 1);
    sut.line(0, 0, 0, 3, 0);
    sut.mark(1, 2, 2, 'b');
    EXPECT_EQ("⠉b", rowOf(sut, 0));
}

} // namespace qel::plot
