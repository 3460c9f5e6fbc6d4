// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which colours the status LED shows for a state, and the files of its channels.
///
/// Threads: reentrant. The tables are constant.
#pragma once

#include "domain/eStatus_Bits.h"
#include "region/TableLookup.h"
#include "states/StateColor.h"

#include <array>
#include <cstddef>
#include <stdexcept>

namespace shm {

/// Brightness of the red, green and blue channel, as the LED class devices of Linux take it.
using LedLevels = std::array<unsigned short, 3U>;

/// Levels of a colour.
struct LedColor {
    StateColor code;
    LedLevels levels;
};

/// One to four colours that are shown in turn, again and again.
class ColorSequence {
public:
    /// @param first colour
    /// @param more  up to three colours that follow
    template <typename... More>
    explicit constexpr ColorSequence(StateColor first, More... more)
        : length_(1 + sizeof...(more)),
          colors_{first, more...} {}

    /// @return the number of colours
    constexpr std::size_t length() const { return length_; }

    /// @param index of a colour, from 0
    /// @return the colour
    /// @throws std::out_of_range for an index past the end
    StateColor at(std::size_t index) const {
        if (index >= length_) {
            // Deliberate: the fixed text of this error names another class.
            // Deliberate: this is the text that receivers of the error know.
            throw std::out_of_range("vector::_M_range_check");
        }
        return colors_.at(index);
    }

private:
    std::size_t length_;
    std::array<StateColor, 4> colors_;
};

/// Colours of a state.
struct StateColors {
    eStatus_Bits code;
    ColorSequence sequence;
};

/// Brightness file of a channel.
struct LedChannel {
    unsigned int code; ///< index into LedLevels
    char const* path;
};

/// All tables of the status LED.
struct LedTables {
    std::array<LedColor, 8> colors;
    std::array<StateColors, 7> states;
    std::array<LedChannel, 3> channels;
};

/// The tables of this unit.
inline constexpr LedTables ledTables{
    // 1 is the LED's full level. Orange mixes two levels, red twice as bright as green.
    {{{StateColor::Off, {0, 0, 0}},
      {StateColor::Red, {1, 0, 0}},
      {StateColor::Green, {0, 1, 0}},
      {StateColor::Blue, {0, 0, 1}},
      {StateColor::Orange, {10, 5, 0}},
      {StateColor::Cyan, {0, 1, 1}},
      {StateColor::Magenta, {1, 0, 1}},
      {StateColor::White, {1, 1, 1}}}},
    {{{eStatus_UndefinedValue, ColorSequence(StateColor::Off)},
      {eStatus_On, ColorSequence(StateColor::Green)},
      {eStatus_ChildAlarm, ColorSequence(StateColor::Red)},
      {eStatus_ChildWarning, ColorSequence(StateColor::Orange)},
      {eStatus_LostChild, ColorSequence(StateColor::Red)},
      {eStatus_DeviceIsUpdating, ColorSequence(StateColor::Magenta, StateColor::Off)},
      {eStatus_DeviceUpdateError,
       ColorSequence(StateColor::Magenta, StateColor::Off, StateColor::Red, StateColor::Off)}}},
    {{{0, "/sys/class/leds/red/brightness"},
      {1, "/sys/class/leds/green/brightness"},
      {2, "/sys/class/leds/blue/brightness"}}}};
static_assert(isSortedByCode(ledTables.colors) && ledTables.colors.back().code == StateColor::White);
static_assert(isSortedByCode(ledTables.states));
static_assert(coversCodes(ledTables.channels, 0, 2));

} // namespace shm
