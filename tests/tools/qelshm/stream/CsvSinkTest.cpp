// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/CsvSink.h"

#include "tests/tools/qelshm/stream/StreamFixture.h"

#include <limits>
#include <sstream>

namespace qel::stream {

namespace {

class CsvSinkTest : public test::StreamFixture {
protected:
    std::string take(CsvSink& sut) {
        out.str("");
        lookWith(sut);
        return out.str();
    }

    std::ostringstream out;
};

} // namespace

TEST_F(CsvSinkTest, Picture_IsARowForEachPointAndValue) {
    unit.deliver(unit.inletPower, 1e-7, time, eStatus_HighAlarm);
    unit.deliver(unit.socket2Power, std::numeric_limits<double>::infinity(), time);
    unit.deliver(unit.socket2Voltage, 5.0, 0, eStatus_ExpectedValue);
    CsvSink sut(out, names, std::nullopt);
    EXPECT_EQ("event,now,name,number,unit,state,before,at\n", out.str());
    auto const text = take(sut);
    std::string const begin = "picture,2023-06-09T07:34:40Z,unit1";
    EXPECT_EQ(begin + ",,,On,,\n" + begin + "/inlet1,,,On,,\n" + begin + "/inlet1:voltage,0,V,No Error,,\n" +
                  begin + "/inlet1:active-power,1e-07,W,High Alarm,,2023-06-09T07:34:38Z\n" + begin +
                  "/inlet1/socket10,,,On,,\n" + begin + "/inlet1/socket10:active-power,0,W,No Error,,\n" +
                  begin + "/inlet1/socket2,,,On,,\n" + begin +
                  "/inlet1/socket2:active-power,,W,No Error,,2023-06-09T07:34:38Z\n" + begin +
                  "/inlet1/socket2:voltage,,V,Expected Value,,\n",
              text);
}

TEST_F(CsvSinkTest, Changes_AreRowsWithTheFormerState) {
    CsvSink sut(out, names, std::nullopt);
    take(sut);
    EXPECT_EQ("", take(sut));
    unit.deliver(unit.inletPower, 4000.25, time, eStatus_HighAlarm);
    unit.region().points[unit.inlet].state = eStatus_OnAlarm;
    EXPECT_EQ("change,2023-06-09T07:34:40Z,unit1/inlet1,,,\"On, Alarm\",On,\n"
              "change,2023-06-09T07:34:40Z,unit1/inlet1:active-power,4000.25,W,High Alarm,No "
              "Error,2023-06-09T07:34:38Z\n",
              take(sut));
}

TEST_F(CsvSinkTest, RegionThatGoes_IsARowOfItsConditionAndAPictureWhenItIsBack) {
    CsvSink sut(out, names, std::nullopt);
    take(sut);
    unit.region().root.version = 0;
    EXPECT_EQ("condition,2023-06-09T07:34:40Z,,,,inactive,,\n", take(sut));
    EXPECT_EQ("", take(sut)) << "it is said once";
    unit.region().root.version = shm::ACTIVE_VERSION;
    EXPECT_EQ(0U, take(sut).find("picture,"));
}

TEST_F(CsvSinkTest, Count_EndsTheRows) {
    CsvSink sut(out, names, 1);
    take(sut);
    EXPECT_FALSE(sut.isDone()) << "pictures do not count";
    unit.deliver(unit.inletPower, 1.0, time);
    unit.deliver(unit.inletVoltage, 1.0, time);
    EXPECT_EQ("change,2023-06-09T07:34:40Z,unit1/inlet1:voltage,1,V,No Error,No Error,2023-06-09T07:34:38Z\n",
              take(sut));
    EXPECT_TRUE(sut.isDone());
}

TEST_F(CsvSinkTest, OutputThatFails_IsTheEnd) {
    CsvSink sut(out, names, std::nullopt);
    out.setstate(std::ios::badbit);
    EXPECT_TRUE(sut.isDone());
}

} // namespace qel::stream
