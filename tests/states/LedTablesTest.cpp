// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/LedTables.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using shm::ledTables;
using shm::StateColor;

TEST(LedTablesTest, ColorsAreNumbered) {
    static_assert(sizeof(StateColor) == 2);
    EXPECT_EQ(static_cast<int>(StateColor::Off), 0);
    EXPECT_EQ(static_cast<int>(StateColor::Red), 1);
    EXPECT_EQ(static_cast<int>(StateColor::Green), 2);
    EXPECT_EQ(static_cast<int>(StateColor::Blue), 3);
    EXPECT_EQ(static_cast<int>(StateColor::Orange), 4);
    EXPECT_EQ(static_cast<int>(StateColor::Cyan), 5);
    EXPECT_EQ(static_cast<int>(StateColor::Magenta), 6);
    EXPECT_EQ(static_cast<int>(StateColor::White), 7);
}

TEST(LedTablesTest, EveryColorHasItsLevels) {
    std::map<int, std::vector<int>> levels;
    for (auto const& color : ledTables.colors) {
        levels[static_cast<int>(color.code)] = {color.levels[0], color.levels[1], color.levels[2]};
    }
    EXPECT_EQ(levels, (std::map<int, std::vector<int>>{{0, {0, 0, 0}},
                                                       {1, {1, 0, 0}},
                                                       {2, {0, 1, 0}},
                                                       {3, {0, 0, 1}},
                                                       {4, {10, 5, 0}},
                                                       {5, {0, 1, 1}},
                                                       {6, {1, 0, 1}},
                                                       {7, {1, 1, 1}}}));
}

TEST(LedTablesTest, SevenStatesHaveColors) {
    std::map<int, std::vector<int>> sequences;
    for (auto const& state : ledTables.states) {
        for (std::size_t index = 0; index < state.sequence.length(); ++index) {
            sequences[state.code].push_back(static_cast<int>(state.sequence.at(index)));
        }
    }
    EXPECT_EQ(sequences,
              (std::map<int, std::vector<int>>{
                  {-1, {0}}, {17, {2}}, {23, {1}}, {24, {4}}, {25, {1}}, {34, {6, 0}}, {35, {6, 0, 1, 0}}}));
}

TEST(LedTablesTest, EachChannelIsAnLedClassDevice) {
    std::map<unsigned, std::string> paths;
    for (auto const& channel : ledTables.channels) {
        paths[channel.code] = channel.path;
    }
    EXPECT_EQ(paths, (std::map<unsigned, std::string>{{0, "/sys/class/leds/red/brightness"},
                                                      {1, "/sys/class/leds/green/brightness"},
                                                      {2, "/sys/class/leds/blue/brightness"}}));
}

TEST(LedTablesTest, At_IndexPastTheEndThrows) {
    shm::ColorSequence const sut(StateColor::Magenta, StateColor::Off);
    EXPECT_EQ(sut.at(1), StateColor::Off);
    try {
        sut.at(2);
        FAIL() << "nothing was thrown";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "vector::_M_range_check");
    }
}

TEST(LedTablesTest, Sequence_HasAtLeastOneColor) {
    static_assert(!std::is_default_constructible_v<shm::ColorSequence>);
    EXPECT_EQ(shm::ColorSequence(StateColor::Red).length(), 1U);
}

} // namespace
