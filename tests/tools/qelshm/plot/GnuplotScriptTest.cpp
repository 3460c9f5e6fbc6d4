// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/GnuplotScript.h"

#include <gmock/gmock.h>

#include <string>

namespace qel::plot {

TEST(GnuplotScriptTest, Text_StaysBetweenItsQuotes) {
    EXPECT_EQ(R"("unit1/inlet1:active-power")", gnuplotText("unit1/inlet1:active-power"));
    EXPECT_EQ(R"("it\047s")", gnuplotText("it's"));
    EXPECT_EQ(R"("\140id\140 \044\050id\051 \100x \134 \042\043")", gnuplotText("`id` $(id) @x \\ \"#"));
    EXPECT_EQ(R"("a\134x0Asystem")", gnuplotText("a\nsystem"));
    EXPECT_EQ(R"("\302\260C")", gnuplotText("°C"));
    EXPECT_EQ(R"("\077\077x")", gnuplotText("\xEF\xBF\xBE\xEF\xBF\xBFx")) << "not in XML";
}

TEST(GnuplotScriptTest, Pieces_AreSeparatedByBlankLines) {
    Curve curve{"a:x", "W", 19, Series(1000, 5000, 100)};
    curve.series.add(1000, 1.5, inspect::StateClass::Plain);
    curve.series.add(2000, 2.5, inspect::StateClass::Plain);
    curve.series.pause(2000);
    curve.series.add(5000, 3.5, inspect::StateClass::Plain);
    auto const script = gnuplotScript({"t", 1000, 5000, {curve}, {{7, "fuse"}}}, {400, 300});
    EXPECT_THAT(script,
                testing::HasSubstr("$curve0 << END\n1.000 1.5\n2.000 2.5\n\n5.000 3.5\n5.000 3.5\n\nEND\n"));
    EXPECT_THAT(script, testing::HasSubstr("set label \"fuse\" at graph 0.01, first 7 "));
    EXPECT_THAT(script, testing::HasSubstr("set yrange [1:7]"));
}

TEST(GnuplotScriptTest, CurveWithoutNumbers_IsStillNamed) {
    Curve const empty{"a:x", "W", 19, Series(1000, 5000, 100)};
    EXPECT_THAT(gnuplotScript({"t", 1000, 5000, {empty}, {}}, {400, 300}),
                testing::HasSubstr("plot NaN with lines"));
}

} // namespace qel::plot
