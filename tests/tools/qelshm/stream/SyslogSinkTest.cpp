// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/SyslogSink.h"

#include "tests/tools/qelshm/stream/StreamFixture.h"

#include <syslog.h>

#include <utility>

namespace qel::stream {

namespace {

using Messages = std::vector<std::pair<int, std::string>>;

class SyslogSinkTest : public test::StreamFixture {
protected:
    Messages take() {
        messages.clear();
        lookWith(sut);
        return messages;
    }

    Messages messages;
    SyslogSink sut{[this](int priority, std::string const& text) {
        messages.emplace_back(priority, text);
    }};
};

} // namespace

TEST_F(SyslogSinkTest, ChangedState_IsAMessageWithItsPriority) {
    EXPECT_EQ(Messages{}, take());
    unit.deliver(unit.inletPower, 4000.0, time, eStatus_HighAlarm);
    EXPECT_EQ((Messages{{LOG_ERR, "unit1/inlet1:active-power 4000.0 W: No Error => High Alarm"}}), take());
    unit.deliver(unit.inletPower, 3000.0, time, eStatus_HighWarning);
    EXPECT_EQ((Messages{{LOG_WARNING, "unit1/inlet1:active-power 3000.0 W: High Alarm => High Warning"}}),
              take());
    unit.deliver(unit.inletPower, 2000.0, time, eStatus_NoError);
    EXPECT_EQ((Messages{{LOG_NOTICE, "unit1/inlet1:active-power 2000.0 W: High Warning => No Error"}}),
              take());
    unit.region().points[unit.inlet].state = eStatus_Off;
    EXPECT_EQ((Messages{{LOG_INFO, "unit1/inlet1: On => Off"}}), take());
}

TEST_F(SyslogSinkTest, ChangedNumber_IsNoMessage) {
    take();
    unit.deliver(unit.inletPower, 4000.0, time);
    EXPECT_EQ(Messages{}, take());
}

} // namespace qel::stream
