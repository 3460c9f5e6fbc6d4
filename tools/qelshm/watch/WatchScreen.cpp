// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchScreen.h"

#include "tools/qelshm/terminal/LineColours.h"
#include "tools/qelshm/terminal/Text.h"
#include "tools/qelshm/watch/Graph.h"
#include "tools/qelshm/watch/WatchKeys.h"

#include "format/ValueFormatter.h"

#include <curses.h>
#include <langinfo.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace qel::watch {

/// A stretch of a line.
struct WatchScreen::Area {
    int line;
    int column;
    int width;
};

enum class WatchScreen::Pair : short { Plain, Alarm, Warning, Notice, Normal, Graph };

namespace {

constexpr int headerLines = 3; // two of facts, one of titles
constexpr int footerLines = 1;
constexpr int graphHeight = 4;
constexpr int paneLines = graphHeight + 3; // its title, the graph's title, the graph, its scale
constexpr int leastLinesWithPane = 18;
constexpr int leastColumnsWithValues = 80; // of the pane's list of values
constexpr int listWidth = 46;
constexpr int listValueWidth = 12;
constexpr int listStateWidth = 15;
constexpr int valueWidth = 14;
constexpr int stateWidth = 18;
constexpr int ageWidth = 6;
constexpr int escapeDelayMs = 25; // that long an Esc may be the beginning of another key
constexpr std::uint64_t msPerSecond = 1000;

bool isPaneShown() {
    return LINES >= leastLinesWithPane;
}

} // namespace

void WatchScreen::Delete::operator()(::screen* terminal) const {
    endwin();
    delscreen(terminal);
}

WatchScreen::WatchScreen() {
    // Only how characters are encoded: numbers stay as they are without a locale. One that is not installed leaves ASCII.
    static_cast<void>(std::setlocale(LC_CTYPE, ""));
    isUtf8_ = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    // Unlike initscr(), newterm() comes back when the terminal is not known.
    terminal_.reset(newterm(nullptr, stdout, stdin));
    if (!terminal_) {
        char const* const name = std::getenv("TERM");
        throw std::runtime_error(std::string("the terminal \"") + (name != nullptr ? name : "") +
                                 "\" cannot show a table; pipe the output through cat for lines");
    }
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(escapeDelayMs);
    curs_set(0);
    hasColours_ = has_colors() && areColoursAllowed();
    if (hasColours_) {
        start_color();
        use_default_colors();
        init_pair(static_cast<short>(Pair::Alarm), COLOR_RED, -1);
        init_pair(static_cast<short>(Pair::Warning), COLOR_YELLOW, -1);
        init_pair(static_cast<short>(Pair::Notice), COLOR_CYAN, -1);
        init_pair(static_cast<short>(Pair::Normal), COLOR_GREEN, -1);
        init_pair(static_cast<short>(Pair::Graph), COLOR_BLUE, -1);
    }
}

WatchScreen::~WatchScreen() = default;

std::optional<int> WatchScreen::key() {
    int const key = getch();
    return key == ERR ? std::nullopt : std::optional(key);
}

WatchScreen::Pair WatchScreen::pairOf(Severity severity) {
    switch (severity) {
    case Severity::None:
        return Pair::Plain;
    case Severity::Normal:
        return Pair::Normal;
    case Severity::Notice:
        return Pair::Notice;
    case Severity::Warning:
        return Pair::Warning;
    case Severity::Alarm:
        return Pair::Alarm;
    }
    return Pair::Plain;
}

void WatchScreen::put(Area const& area, std::string const& text, unsigned attributes, Pair pair) const {
    auto const width = std::min(area.width, COLS - area.column);
    if (area.line < 0 || area.line >= LINES || width <= 0) {
        return;
    }
    auto const shown = fitted(text, static_cast<std::size_t>(width));
    attr_set(attributes, hasColours_ ? static_cast<short>(pair) : short{0}, nullptr);
    mvaddstr(area.line, area.column, isUtf8_ ? shown.c_str() : asciiOnly(shown).c_str());
}

void WatchScreen::drawHeader(WatchModel const& model) const {
    auto const view = model.header();
    int const timeWidth = static_cast<int>(view.time.size()) + 1;
    put({0, 0, COLS}, " qelshm watch   " + view.condition, A_BOLD | A_REVERSE, Pair::Plain);
    constexpr int stateColumn = 30;
    if (view.isLive) {
        put({0, stateColumn, COLS - stateColumn}, ' ' + view.state + "   LED " + view.led, A_BOLD | A_REVERSE,
            pairOf(view.severity));
    }
    put({0, std::max(COLS - timeWidth, 0), timeWidth}, view.time, A_BOLD | A_REVERSE, Pair::Plain);
    std::string const facts = " points " + std::to_string(view.points) + '/' + std::to_string(shm::MP_COUNT) +
                              "   values " + std::to_string(view.values) + '/' +
                              std::to_string(shm::MV_COUNT) + "   structure changes " +
                              std::to_string(view.structureChanges) + "   " +
                              (view.note.empty() ? "last delivery " + view.lastDelivery : view.note);
    put({1, 0, COLS}, facts, view.note.empty() ? A_NORMAL : A_BOLD, Pair::Plain);
}

void WatchScreen::drawTitles(WatchModel const& model) const {
    std::string title = std::string(" Point, value (by ") + sortName(model.order()) + ')';
    if (model.isFollowing()) {
        title += " (follow)";
    }
    if (!model.filterText().empty()) {
        title += " /" + model.filterText();
    }
    int const nameWidth = std::max(COLS - valueWidth - stateWidth - ageWidth, 0);
    put({2, 0, nameWidth}, title, A_UNDERLINE, Pair::Plain);
    put({2, nameWidth, valueWidth}, "Value", A_UNDERLINE, Pair::Plain);
    put({2, nameWidth + valueWidth, stateWidth}, "State", A_UNDERLINE, Pair::Plain);
    put({2, nameWidth + valueWidth + stateWidth, ageWidth}, "Age", A_UNDERLINE, Pair::Plain);
}

void WatchScreen::drawRow(int line, RowView const& row) const {
    unsigned const selected = row.isSelected ? A_REVERSE : A_NORMAL;
    int const nameWidth = std::max(COLS - valueWidth - stateWidth - ageWidth, 0);
    std::string mark = "  ";
    if (row.isFoldable) {
        char const* const folded = isUtf8_ ? "▸ " : "+ ";
        char const* const open = isUtf8_ ? "▾ " : "- ";
        mark = row.isFolded ? folded : open;
    }
    auto const name = ' ' + std::string(row.depth * std::size_t{2}, ' ') + mark + row.name;
    put({line, 0, COLS}, "", selected, Pair::Plain);
    if (row.isPoint) {
        int const typeColumn = static_cast<int>(widthOf(name)) + 2;
        put({line, 0, nameWidth + valueWidth}, name, selected | A_BOLD, Pair::Plain);
        put({line, typeColumn, nameWidth + valueWidth - typeColumn}, row.type, selected | A_DIM, Pair::Plain);
    } else {
        // A change flashes: the number alone stands out, also in the selected row.
        put({line, 0, nameWidth - 1}, name, selected, Pair::Plain);
        auto const width = std::min(static_cast<int>(widthOf(row.value)), valueWidth - 1);
        put({line, nameWidth, width}, row.value, row.isFresh ? selected ^ A_REVERSE : selected, Pair::Plain);
    }
    put({line, nameWidth + valueWidth, stateWidth}, row.state, selected, pairOf(row.severity));
    put({line, nameWidth + valueWidth + stateWidth, ageWidth}, row.age, selected | A_DIM, Pair::Plain);
}

void WatchScreen::drawTable(WatchModel const& model, int lines) const {
    int line = headerLines;
    for (auto const& text : model.message()) {
        put({++line, 2, COLS - 2}, text, A_BOLD, Pair::Warning);
    }
    if (model.message().empty() && model.rowCount() == 0) {
        put({line + 1, 2, COLS - 2},
            "Nothing to show: no point or value is watched, or the filter fits none.", A_BOLD, Pair::Plain);
    }
    line = headerLines;
    for (auto const& row : model.visibleRows()) {
        if (line >= headerLines + lines) {
            break;
        }
        drawRow(line++, row);
    }
}

void WatchScreen::drawValues(PaneView const& pane, int line, int width) const {
    constexpr std::size_t lines = paneLines - 1;
    auto const shown = std::find_if(pane.values.begin(), pane.values.end(),
                                    [](RowView const& value) { return value.isSelected; });
    auto const index = static_cast<std::size_t>(shown - pane.values.begin());
    auto const first = index < lines ? 0 : index + 1 - lines;
    int const nameWidth = width - listValueWidth - listStateWidth;
    for (auto value = first; value < std::min(first + lines, pane.values.size()); ++value) {
        auto const& view = pane.values[value];
        int const row = line + static_cast<int>(value - first);
        put({row, 0, nameWidth}, (view.isSelected ? " >" : "  ") + view.name,
            view.isSelected ? A_BOLD : A_NORMAL, Pair::Plain);
        put({row, nameWidth, listValueWidth}, ' ' + view.value, A_NORMAL, Pair::Plain);
        put({row, nameWidth + listValueWidth, listStateWidth}, view.state, A_NORMAL, pairOf(view.severity));
    }
}

void WatchScreen::drawGraph(WatchModel const& model, PaneView const& pane, int line, int column) const {
    if (pane.history == nullptr) {
        return;
    }
    int const width = std::min(COLS - column - 1, static_cast<int>(History::length));
    put({line, column, COLS - column}, pane.graphName + ", delivered " + pane.delivered, A_BOLD, Pair::Plain);
    if (width <= 0) {
        return;
    }
    auto const columns = static_cast<std::size_t>(width);
    auto const graph =
        graphOf(*pane.history, pane.newestBucket, columns, graphHeight, isUtf8_ ? blockBars : asciiBars);
    for (auto const& text : graph.lines) {
        put({++line, column, width}, text, A_NORMAL, Pair::Graph);
    }
    auto const number = [&](float of) {
        return tav::ValueFormatter::str(pane.key, static_cast<double>(of), " ");
    };
    put({++line, column, COLS - column},
        graph.range.isEmpty() ? std::string("no number yet")
                              : "min " + number(graph.range.min) + "  max " + number(graph.range.max) +
                                    "  of " + std::to_string(model.graphSpan(columns) / msPerSecond) + " s",
        A_DIM, Pair::Plain);
}

void WatchScreen::drawPane(WatchModel const& model, int line) const {
    auto const pane = model.pane();
    std::string title = ' ' + pane.path + "  " + pane.svid + "  " + pane.type;
    put({line, 0, COLS}, pane.path.empty() ? std::string() : title, A_REVERSE, Pair::Plain);
    put({line, COLS - stateWidth, stateWidth}, pane.state, A_REVERSE, pairOf(pane.severity));
    if (pane.path.empty()) {
        return;
    }
    int const column = COLS >= leastColumnsWithValues ? listWidth : 1;
    if (COLS >= leastColumnsWithValues) {
        drawValues(pane, line + 1, listWidth - 1);
    }
    drawGraph(model, pane, line + 1, column);
}

void WatchScreen::drawFooter(WatchModel const& model) const {
    if (model.isTyping()) {
        put({LINES - 1, 0, COLS}, '/' + model.filterText() + "_   Enter keeps, Esc takes away", A_BOLD,
            Pair::Plain);
        return;
    }
    std::string keys;
    for (auto const& help : keyHelp) {
        if (*help.hint != '\0') {
            keys += std::string(" ") + help.hint + "  ";
        }
    }
    put({LINES - 1, 0, COLS}, keys, A_DIM, Pair::Plain);
    auto const place = ' ' + std::to_string(model.rowCount() == 0 ? 0 : model.selected() + 1) + '/' +
                       std::to_string(model.rowCount());
    int const width = static_cast<int>(place.size());
    put({LINES - 1, std::max(COLS - width, 0), width}, place, A_BOLD, Pair::Plain);
}

void WatchScreen::drawHelp() const {
    constexpr int keysWidth = 20;
    put({0, 0, COLS}, " qelshm watch: keys", A_BOLD | A_REVERSE, Pair::Plain);
    int line = 1;
    for (auto const& help : keyHelp) {
        ++line;
        put({line, 1, keysWidth}, help.keys, A_BOLD, Pair::Plain);
        put({line, 1 + keysWidth, COLS}, help.text, A_NORMAL, Pair::Plain);
    }
    line += 2;
    for (char const* const text :
         {"A number that has changed stands out for a moment. Age: since a delivery was last seen;",
          "with '>' when none was seen since the start. The graph shows the value of the selected row."}) {
        put({line++, 1, COLS}, text, A_NORMAL, Pair::Plain);
    }
}

void WatchScreen::draw(WatchModel& model) {
    erase();
    if (model.isHelp()) {
        drawHelp();
    } else {
        int const pane = isPaneShown() ? paneLines : 0;
        int const table = std::max(LINES - headerLines - footerLines - pane, 1);
        model.setPage(static_cast<std::size_t>(table));
        drawHeader(model);
        drawTitles(model);
        drawTable(model, table);
        if (isPaneShown()) {
            drawPane(model, headerLines + table);
        }
        drawFooter(model);
    }
    refresh();
}

} // namespace qel::watch
