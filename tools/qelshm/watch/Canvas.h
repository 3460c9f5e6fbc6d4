// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The screen of the terminal.
#pragma once

#include "tools/qelshm/terminal/FatalSignals.h"
#include "tools/qelshm/watch/Ink.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct screen; // of curses, SCREEN there

namespace qel::watch {

/// A stretch of a line of the screen. Reentrant.
struct Area {
    int line;
    int column;
    int width;
};

/// What the mouse did. Reentrant.
enum class MouseUse : std::uint8_t { None, Click, WheelUp, WheelDown };

/// A key, or a use of the mouse. Reentrant.
struct Input {
    int key = 0; ///< as curses numbers it
    MouseUse mouse = MouseUse::None;
    int line = 0; ///< of the mouse
};

/// Takes over the terminal and restores it in the end, also when a signal ends the program. Follows the size of the
/// terminal; can be suspended. Writes ASCII if the terminal has no UTF-8, and attributes alone without colours.
///
/// Threads: thread-bound to the thread that made it. One object per process.
class Canvas {
public:
    /// @param isColoured whether colours are wanted
    /// @throws std::runtime_error when the terminal is not usable
    explicit Canvas(bool isColoured);
    ~Canvas();
    Canvas(Canvas const&) = delete;
    Canvas& operator=(Canvas const&) = delete;

    int height() const;
    int width() const;
    bool isUtf8() const { return isUtf8_; }
    bool isColoured() const { return isColoured_; }

    /// Begins with an empty screen of the size that the terminal has by now.
    void clear();
    /// Writes a text into an area, filled up with blanks; what does not fit is cut off.
    void put(Area const& area, std::string const& text, Ink const& ink = {}) const;
    /// Shows what was written.
    void show();

    /// Takes the next input. Does not wait.
    /// @return nothing when none is left
    std::optional<Input> input();

private:
    struct Delete {
        void operator()(::screen* terminal) const;
    };
    std::unique_ptr<::screen, Delete> terminal_;
    std::unique_ptr<tools::FatalSignals> fatalSignals_;
    bool isUtf8_;
    bool isColoured_;
};

} // namespace qel::watch
