// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchSettings.h"

#include <gtest/gtest.h>

#include <exception>

namespace qel::watch {

TEST(WatchSettingsTest, Text_IsReadBack) {
    for (auto const order : {SortOrder::Tree, SortOrder::State, SortOrder::Name, SortOrder::Age}) {
        for (std::size_t span = 0; span < 3; ++span) {
            WatchSettings const settings{order, span == 1, span};
            EXPECT_EQ(settings, settingsFrom(settingsText(settings)));
        }
    }
}

TEST(WatchSettingsTest, MissingMembers_KeepTheirDefaults) {
    EXPECT_EQ(WatchSettings(), settingsFrom("{}"));
    EXPECT_EQ((WatchSettings{SortOrder::Age, false, 0}), settingsFrom(R"({"sort":"age","later":[1]})"));
}

TEST(WatchSettingsTest, DamagedText_IsRefused) {
    for (auto const* const text : {"", "{", "[]", "3", "null", R"({"sort":"colour"})", R"({"sort":3})",
                                   R"({"statistics":"yes"})", R"({"graph-span":"days"})", "\xff\xfe"}) {
        EXPECT_THROW(settingsFrom(text), std::exception) << text;
    }
}

} // namespace qel::watch
