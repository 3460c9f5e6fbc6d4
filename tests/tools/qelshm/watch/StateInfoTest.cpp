// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/StateInfo.h"

#include "inspect/naming/StateText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace qel::watch {

namespace {

bool has(std::string const& text, char const* word) {
    return text.find(word) != std::string::npos;
}

} // namespace

TEST(StateInfoTest, EveryState_HasItsNameAlsoInLowerCase) {
    for (int number = eStatus_ExpectedValue - 2; number <= eStatus_SlaveVersionTooNew + 2; ++number) {
        auto const state = static_cast<eStatus_Bits>(number);
        auto const& info = stateInfo(state);
        EXPECT_EQ(inspect::stateText(state), info.text) << number;
        EXPECT_EQ(info.text.size(), info.folded.size());
        EXPECT_TRUE(std::none_of(info.folded.begin(), info.folded.end(),
                                 [](char letter) { return letter >= 'A' && letter <= 'Z'; }));
    }
}

TEST(StateInfoTest, Severity_FollowsTheName) {
    for (int number = eStatus_NoError; number <= eStatus_SlaveVersionTooNew; ++number) {
        auto const& info = stateInfo(static_cast<eStatus_Bits>(number));
        if (has(info.folded, "alarm") || has(info.folded, "lost") || has(info.folded, "error,")) {
            EXPECT_EQ(Severity::Alarm, info.severity) << info.text;
        }
        EXPECT_NE(Severity::None, info.severity) << info.text;
    }
    EXPECT_EQ(Severity::Normal, stateInfo(eStatus_NoError).severity);
    EXPECT_EQ(Severity::Normal, stateInfo(eStatus_On).severity);
    EXPECT_EQ(Severity::Notice, stateInfo(eStatus_Off).severity);
    EXPECT_EQ(Severity::Warning, stateInfo(eStatus_HighWarning).severity);
    EXPECT_EQ(Severity::Warning, stateInfo(eStatus_OnChildWarning).severity);
    EXPECT_EQ(Severity::Alarm, stateInfo(eStatus_Lost).severity);
    EXPECT_EQ(Severity::Alarm, stateInfo(eStatus_DeviceUpdateError).severity);
}

TEST(StateInfoTest, NoStateOrNoValue_HasNoSeverity) {
    EXPECT_EQ(Severity::None, stateInfo(eStatus_ExpectedValue).severity);
    EXPECT_EQ(Severity::None, stateInfo(eStatus_UndefinedValue).severity);
    EXPECT_EQ(Severity::None, stateInfo(static_cast<eStatus_Bits>(44)).severity);
    EXPECT_EQ(Severity::None, stateInfo(static_cast<eStatus_Bits>(std::numeric_limits<int>::min())).severity);
    EXPECT_EQ(Severity::None, stateInfo(static_cast<eStatus_Bits>(std::numeric_limits<int>::max())).severity);
}

} // namespace qel::watch
