// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Canvas.h"

#include "tools/qelshm/terminal/Utf8Text.h"

#define NCURSES_NOMACROS // they have the names of ordinary functions
#include <curses.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <term.h> // after curses.h
#include <unistd.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace qel::watch {

namespace {

constexpr int escapeDelayMs = 25; // an Esc may be the beginning of another key for this time

// Colour pairs are numbered like the styles; the curves of the graph follow.
constexpr short terminalsOwn = -1;
constexpr std::array<short, Ink::firstCurve + Ink::curves> pairColours{
    terminalsOwn,  COLOR_GREEN, terminalsOwn, COLOR_YELLOW,  COLOR_RED,
    COLOR_MAGENTA, COLOR_BLUE,  COLOR_CYAN,   COLOR_MAGENTA, terminalsOwn};
static_assert(pairColours[static_cast<std::size_t>(tools::Style::Alarm)] == COLOR_RED);
static_assert(pairColours[Ink::firstCurve] == COLOR_BLUE);

/// A text of the terminal's description without the delays that old terminals need; "" if it has none.
std::string capability(char const* name) {
    char const* const text = tigetstr(name);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the library's sign for a name that it does not take for a text
    if (text == nullptr || text == reinterpret_cast<char const*>(std::intptr_t{-1})) {
        return {};
    }
    std::string result(text);
    for (auto begin = result.find("$<"); begin != std::string::npos; begin = result.find("$<")) {
        auto const end = result.find('>', begin);
        result.erase(begin, end == std::string::npos ? end : end - begin + 1);
    }
    return result;
}

/// What gives the terminal back: no reports of the mouse, plain characters, a cursor, the former screen.
std::string restoringText() {
    std::string const noMouse = capability("kmous").empty() ? "" : "\x1b[?1000l\x1b[?1006l";
    return noMouse + capability("sgr0") + capability("cnorm") + capability("rmkx") + capability("rmcup");
}

attr_t attributesOf(Emphasis const& emphasis) {
    attr_t attributes = A_NORMAL;
    attributes |= emphasis.isBold ? A_BOLD : A_NORMAL;
    attributes |= emphasis.isDim ? A_DIM : A_NORMAL;
    attributes |= emphasis.isReverse ? A_REVERSE : A_NORMAL;
    attributes |= emphasis.isUnderlined ? A_UNDERLINE : A_NORMAL;
    return attributes;
}

/// Follows the size of the terminal without a signal: curses needs one, and a program that was started with SIGWINCH
/// blocked gets none. A size that the environment gives stays, as curses has it.
void followSize() {
    winsize size{};
    bool const isGiven = std::getenv("LINES") != nullptr || std::getenv("COLUMNS") != nullptr;
    if (!isGiven && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row != 0 && size.ws_col != 0 &&
        is_term_resized(size.ws_row, size.ws_col)) {
        resizeterm(size.ws_row, size.ws_col);
    }
}

} // namespace

void Canvas::Delete::operator()(::screen* terminal) const {
    endwin();
    delscreen(terminal);
}

Canvas::Canvas(bool isColoured) {
    // Only the encoding of characters; numbers do not follow the locale. A locale that is not installed means ASCII.
    static_cast<void>(std::setlocale(LC_CTYPE, ""));
    isUtf8_ = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    termios settings{};
    bool const hasSettings = ::tcgetattr(STDIN_FILENO, &settings) == 0;
    // Unlike initscr(), newterm() returns if the terminal is unknown.
    terminal_.reset(newterm(nullptr, stdout, stdin));
    if (!terminal_ || !hasSettings) {
        char const* const name = std::getenv("TERM");
        throw std::runtime_error(std::string("the terminal \"") + (name != nullptr ? name : "") +
                                 "\" cannot display the table; pipe the output through cat to get lines");
    }
    fatalSignals_ = std::make_unique<tools::FatalSignals>(STDOUT_FILENO, settings, restoringText());
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(escapeDelayMs);
    curs_set(0);
    mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
    mouseinterval(0); // no wait for a second click
    isColoured_ = isColoured && has_colors();
    if (isColoured_) {
        start_color();
        use_default_colors();
        for (short pair = 1; pair < static_cast<short>(pairColours.size()); ++pair) {
            init_pair(pair, pairColours.at(static_cast<std::size_t>(pair)), terminalsOwn);
        }
    }
}

Canvas::~Canvas() = default;

int Canvas::height() const {
    return LINES;
}

int Canvas::width() const {
    return COLS;
}

void Canvas::clear() {
    followSize();
    erase();
}

void Canvas::show() {
    refresh();
}

void Canvas::put(Area const& area, std::string const& text, Ink const& ink) const {
    auto const width = std::min(area.width, COLS - area.column);
    if (area.line < 0 || area.line >= LINES || area.column < 0 || width <= 0) {
        return;
    }
    auto const shown = tools::fitted(text, static_cast<std::size_t>(width));
    attr_set(attributesOf(ink.emphasis), isColoured_ ? ink.colour : short{0}, nullptr);
    mvaddstr(area.line, area.column, isUtf8_ ? shown.c_str() : tools::asciiOnly(shown).c_str());
}

std::optional<Input> Canvas::input() {
    int const key = getch();
    if (key == ERR) {
        return std::nullopt;
    }
    Input input{key};
    MEVENT event{};
    if (key == KEY_MOUSE && getmouse(&event) == OK) {
        input.line = event.y;
        input.mouse = (event.bstate & BUTTON4_PRESSED) != 0   ? MouseUse::WheelUp
                      : (event.bstate & BUTTON5_PRESSED) != 0 ? MouseUse::WheelDown
                      : (event.bstate & BUTTON1_PRESSED) != 0 ? MouseUse::Click
                                                              : MouseUse::None;
    }
    return input;
}

} // namespace qel::watch
