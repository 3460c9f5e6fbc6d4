// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchScreen.h"

#include "tools/qelshm/terminal/Utf8Text.h"
#include "tools/qelshm/watch/Graph.h"
#include "tools/qelshm/watch/WatchKeys.h"

#include "format/ValueFormatter.h"

#include <curses.h>
#include <langinfo.h>

#include <algorithm>
#include <array>
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

namespace {

constexpr int headerLines = 3; // two of facts, one of titles
constexpr int footerLines = 1;
constexpr int graphHeight = 4;
constexpr int detailLines = graphHeight + 3; // title, the graph's title, the graph, its scale
constexpr int leastLinesWithDetail = 18;
constexpr int leastColumnsWithValues = 80; // beside the graph
constexpr int listWidth = 46;
constexpr int listValueWidth = 12;
constexpr int listStateWidth = 15;
constexpr int valueWidth = 14;
constexpr int stateWidth = 18;
constexpr int ageWidth = 6;
constexpr int escapeDelayMs = 25; // an Esc may be the beginning of another key for this time
constexpr std::uint64_t msPerSecond = 1000;

// Colour pairs are numbered like the styles; the graph has one more.
constexpr short noColour = -1;
constexpr std::array<short, 7> pairColours{noColour,  COLOR_GREEN,   noColour,  COLOR_YELLOW,
                                           COLOR_RED, COLOR_MAGENTA, COLOR_BLUE};
constexpr short graphPair = pairColours.size() - 1;
static_assert(pairColours[static_cast<std::size_t>(tools::Style::Alarm)] == COLOR_RED);
static_assert(static_cast<short>(tools::Style::Busy) + 1 == graphPair);

bool isDetailShown() {
    return LINES >= leastLinesWithDetail;
}

} // namespace

void WatchScreen::Delete::operator()(::screen* terminal) const {
    endwin();
    delscreen(terminal);
}

WatchScreen::WatchScreen(bool isColoured) {
    // Only the encoding of characters; numbers do not follow the locale. A locale that is not installed means ASCII.
    static_cast<void>(std::setlocale(LC_CTYPE, ""));
    isUtf8_ = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    // Unlike initscr(), newterm() returns if the terminal is unknown.
    terminal_.reset(newterm(nullptr, stdout, stdin));
    if (!terminal_) {
        char const* const name = std::getenv("TERM");
        throw std::runtime_error(std::string("the terminal \"") + (name != nullptr ? name : "") +
                                 "\" cannot display the table; pipe the output through cat to get lines");
    }
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(escapeDelayMs);
    curs_set(0);
    isColoured_ = isColoured && has_colors();
    if (isColoured_) {
        start_color();
        use_default_colors();
        for (short pair = 1; pair <= graphPair; ++pair) {
            init_pair(pair, pairColours.at(static_cast<std::size_t>(pair)), noColour);
        }
    }
}

WatchScreen::~WatchScreen() = default;

std::optional<int> WatchScreen::key() {
    int const key = getch();
    return key == ERR ? std::nullopt : std::optional(key);
}

void WatchScreen::put(Area const& area, std::string const& text, unsigned attributes, short pair) const {
    auto const width = std::min(area.width, COLS - area.column);
    if (area.line < 0 || area.line >= LINES || width <= 0) {
        return;
    }
    auto const shown = tools::fitted(text, static_cast<std::size_t>(width));
    attr_set(attributes, isColoured_ ? pair : short{0}, nullptr);
    mvaddstr(area.line, area.column, isUtf8_ ? shown.c_str() : tools::asciiOnly(shown).c_str());
}

void WatchScreen::putState(Area const& area, std::string const& text, unsigned attributes,
                           tools::Style style) const {
    put(area, text, style == tools::Style::Faint ? attributes | A_DIM : attributes,
        static_cast<short>(style));
}

void WatchScreen::drawHeader(WatchModel const& model) const {
    auto const view = model.header();
    int const timeWidth = static_cast<int>(view.time.size()) + 1;
    put({0, 0, COLS}, " qelshm watch   " + view.condition, A_BOLD | A_REVERSE);
    constexpr int stateColumn = 30;
    if (view.isLive) {
        putState({0, stateColumn, COLS - stateColumn}, ' ' + view.state + "   LED " + view.led,
                 A_BOLD | A_REVERSE, view.style);
    }
    put({0, std::max(COLS - timeWidth, 0), timeWidth}, view.time, A_BOLD | A_REVERSE);
    std::string const facts = " points " + std::to_string(view.points) + '/' + std::to_string(shm::MP_COUNT) +
                              "   values " + std::to_string(view.values) + '/' +
                              std::to_string(shm::MV_COUNT) + "   structure changes " +
                              std::to_string(view.structureChanges) + "   " +
                              (view.note.empty() ? "last delivery " + view.lastDelivery : view.note);
    put({1, 0, COLS}, facts, view.note.empty() ? A_NORMAL : A_BOLD);
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
    put({2, 0, nameWidth}, title, A_UNDERLINE);
    put({2, nameWidth, valueWidth}, "Value", A_UNDERLINE);
    put({2, nameWidth + valueWidth, stateWidth}, "State", A_UNDERLINE);
    put({2, nameWidth + valueWidth + stateWidth, ageWidth}, "Age", A_UNDERLINE);
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
    put({line, 0, COLS}, "", selected);
    if (row.isPoint) {
        int const typeColumn = static_cast<int>(tools::widthOf(name)) + 2;
        put({line, 0, nameWidth + valueWidth}, name, selected | A_BOLD);
        put({line, typeColumn, nameWidth + valueWidth - typeColumn}, row.type, selected | A_DIM);
    } else {
        // A changed number is highlighted, also in the selected row.
        put({line, 0, nameWidth - 1}, name, selected);
        auto const width = std::min(static_cast<int>(tools::widthOf(row.value)), valueWidth - 1);
        put({line, nameWidth, width}, row.value, row.isFresh ? selected ^ A_REVERSE : selected);
    }
    putState({line, nameWidth + valueWidth, stateWidth}, row.state, selected, row.style);
    put({line, nameWidth + valueWidth + stateWidth, ageWidth}, row.age, selected | A_DIM);
}

void WatchScreen::drawTable(WatchModel const& model, int lines) const {
    int line = headerLines;
    for (auto const& text : model.message()) {
        put({++line, 2, COLS - 2}, text, A_BOLD, static_cast<short>(tools::Style::Warning));
    }
    if (model.message().empty() && model.rowCount() == 0) {
        put({line + 1, 2, COLS - 2}, "Nothing to show: nothing is watched, or nothing matches the filter.",
            A_BOLD);
    }
    line = headerLines;
    for (auto const& row : model.visibleRows()) {
        if (line >= headerLines + lines) {
            break;
        }
        drawRow(line++, row);
    }
}

void WatchScreen::drawValues(DetailView const& detail, int line, int width) const {
    constexpr std::size_t lines = detailLines - 1;
    auto const shown = std::find_if(detail.values.begin(), detail.values.end(),
                                    [](RowView const& value) { return value.isSelected; });
    auto const index = static_cast<std::size_t>(shown - detail.values.begin());
    auto const first = index < lines ? 0 : index + 1 - lines;
    int const nameWidth = width - listValueWidth - listStateWidth;
    for (auto value = first; value < std::min(first + lines, detail.values.size()); ++value) {
        auto const& view = detail.values[value];
        int const row = line + static_cast<int>(value - first);
        put({row, 0, nameWidth}, (view.isSelected ? " >" : "  ") + view.name,
            view.isSelected ? A_BOLD : A_NORMAL);
        put({row, nameWidth, listValueWidth}, ' ' + view.value, A_NORMAL);
        putState({row, nameWidth + listValueWidth, listStateWidth}, view.state, A_NORMAL, view.style);
    }
}

void WatchScreen::drawGraph(WatchModel const& model, DetailView const& detail, int line, int column) const {
    if (detail.history == nullptr) {
        return;
    }
    int const width = std::min(COLS - column - 1, static_cast<int>(History::length));
    put({line, column, COLS - column}, detail.graphName + ", delivered " + detail.delivered, A_BOLD);
    if (width <= 0) {
        return;
    }
    auto const columns = static_cast<std::size_t>(width);
    auto const graph =
        graphOf(*detail.history, detail.newestBucket, columns, graphHeight, isUtf8_ ? blockBars : asciiBars);
    for (auto const& text : graph.lines) {
        put({++line, column, width}, text, A_NORMAL, graphPair);
    }
    auto const number = [&](float of) {
        return tav::ValueFormatter::str(detail.key, static_cast<double>(of), " ");
    };
    put({++line, column, COLS - column},
        graph.range.isEmpty() ? std::string("no data yet")
                              : "min " + number(graph.range.min) + "  max " + number(graph.range.max) +
                                    "  of " + std::to_string(model.graphSpan(columns) / msPerSecond) + " s",
        A_DIM);
}

void WatchScreen::drawDetail(WatchModel const& model, int line) const {
    auto const detail = model.detail();
    std::string title = ' ' + detail.path + "  " + detail.svid + "  " + detail.type;
    put({line, 0, COLS}, detail.path.empty() ? std::string() : title, A_REVERSE);
    putState({line, COLS - stateWidth, stateWidth}, detail.state, A_REVERSE, detail.style);
    if (detail.path.empty()) {
        return;
    }
    int const column = COLS >= leastColumnsWithValues ? listWidth : 1;
    if (COLS >= leastColumnsWithValues) {
        drawValues(detail, line + 1, listWidth - 1);
    }
    drawGraph(model, detail, line + 1, column);
}

void WatchScreen::drawFooter(WatchModel const& model) const {
    if (model.isTyping()) {
        put({LINES - 1, 0, COLS}, '/' + model.filterText() + "_   Enter keeps it, Esc removes it", A_BOLD);
        return;
    }
    std::string keys;
    for (auto const& help : keyHelp) {
        if (*help.hint != '\0') {
            keys += std::string(" ") + help.hint + "  ";
        }
    }
    put({LINES - 1, 0, COLS}, keys, A_DIM);
    auto const place = ' ' + std::to_string(model.rowCount() == 0 ? 0 : model.selected() + 1) + '/' +
                       std::to_string(model.rowCount());
    int const width = static_cast<int>(place.size());
    put({LINES - 1, std::max(COLS - width, 0), width}, place, A_BOLD);
}

void WatchScreen::drawHelp() const {
    constexpr int keysWidth = 20;
    put({0, 0, COLS}, " qelshm watch: keys", A_BOLD | A_REVERSE);
    int line = 1;
    for (auto const& help : keyHelp) {
        ++line;
        put({line, 1, keysWidth}, help.keys, A_BOLD);
        put({line, 1 + keysWidth, COLS}, help.text, A_NORMAL);
    }
    line += 2;
    for (char const* const text :
         {"Changed numbers are highlighted for a moment. Age: time since the last delivery;",
          "'>' means none since the start. The graph shows the value of the selected row."}) {
        put({line++, 1, COLS}, text, A_NORMAL);
    }
}

void WatchScreen::draw(WatchModel& model) {
    erase();
    if (model.isHelp()) {
        drawHelp();
    } else {
        int const detail = isDetailShown() ? detailLines : 0;
        int const table = std::max(LINES - headerLines - footerLines - detail, 1);
        model.setPage(static_cast<std::size_t>(table));
        drawHeader(model);
        drawTitles(model);
        drawTable(model, table);
        if (isDetailShown()) {
            drawDetail(model, headerLines + table);
        }
        drawFooter(model);
    }
    refresh();
}

} // namespace qel::watch
