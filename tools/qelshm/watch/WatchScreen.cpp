// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchScreen.h"

#include "tools/qelshm/terminal/Utf8Text.h"
#include "tools/qelshm/watch/WatchKeys.h"

#include "region/QelShmRecords.h"

#include <algorithm>

namespace qel::watch {

namespace {

constexpr int pieceGap = 3;
constexpr int fullHeader = 4; // title, facts, counts, titles of the columns
constexpr int leastLinesWithFullHeader = 10;
constexpr int leastLinesWithPane = 18;
constexpr int leastLinesWithWantedPane = 10; // the user asked for it
constexpr int leastLinesWithFooter = 3;

Emphasis withReverse(Emphasis emphasis, bool isReverse) {
    emphasis.isReverse = isReverse;
    return emphasis;
}

/// In the flat orders, the point gives way before the value does.
std::string nameWithin(RowView const& row, std::size_t room) {
    constexpr std::size_t leastPlace = 12;
    auto const width = tools::widthOf(row.name);
    if (width > room && !row.place.empty() && room + row.place.size() >= width + leastPlace) {
        return tools::shortened(row.place, room + row.place.size() - width) +
               row.name.substr(row.place.size());
    }
    return tools::shortened(width > room ? row.shortName : row.name, room);
}

std::string countText(std::size_t count, char const* name) {
    return std::to_string(count) + ' ' + name;
}

} // namespace

WatchScreen::Lines WatchScreen::linesFor(WatchModel const& model) const {
    int const all = canvas_.height();
    Lines lines{};
    lines.header = all >= leastLinesWithFullHeader ? fullHeader : std::min(all - 1, 2);
    lines.footer = all >= leastLinesWithFooter ? 1 : 0;
    if (model.pane() == Pane::Graph) {
        lines.pane = all >= leastLinesWithPane ? DetailPane::graphHeight(all) + DetailPane::otherLines : 0;
    } else if (all >= leastLinesWithWantedPane) {
        lines.pane = std::min(std::max(all / 3, DetailPane::graphHeight(all) + DetailPane::otherLines),
                              all - lines.header - lines.footer - 1);
    }
    lines.table = std::max(all - lines.header - lines.footer - lines.pane, 1);
    return lines;
}

/// @return the column behind the last piece
int WatchScreen::putPieces(int line, int column, std::vector<Piece> const& pieces) {
    for (auto const& piece : pieces) {
        auto const width = static_cast<int>(tools::widthOf(piece.text));
        canvas_.put({line, column, width}, piece.text, piece.ink);
        column += width + pieceGap;
    }
    return column - pieceGap;
}

void WatchScreen::drawHeader(WatchModel const& model, int lines) {
    if (lines < 1) {
        return;
    }
    auto const view = model.header();
    enum Rank : int { Clock, Name, Led, Condition, State };
    int const clockWidth = static_cast<int>(view.time.size());
    std::vector<Piece> pieces{
        {"qelshm watch", Name, boldReverse},
        {view.condition, Condition, view.isLive ? Ink(boldReverse) : Ink(boldReverse, tools::Style::Warning)},
        {view.state, State, Ink(boldReverse, view.style)},
        {view.isLive ? "LED " + view.led : "", Led, Ink(boldReverse, view.style)},
        {std::string(static_cast<std::size_t>(clockWidth), ' '), Clock, boldReverse}};
    pieces = fitting(std::move(pieces), canvas_.width() - 2, pieceGap);
    bool const hasClock = pieces.back().rank == Clock;
    if (hasClock) {
        pieces.pop_back();
    }
    canvas_.put({0, 0, canvas_.width()}, "", boldReverse);
    putPieces(0, canvas_.width() > 2 ? 1 : 0, pieces);
    if (hasClock) {
        canvas_.put({0, canvas_.width() - clockWidth - 1, clockWidth}, view.time, boldReverse);
    }
    if (lines == fullHeader) {
        drawFacts(view, 1);
        drawCounts(view, 2);
    }
}

void WatchScreen::drawFacts(HeaderView const& view, int line) {
    enum Rank : int { Changes, Points, Values, Delivery, Note };
    auto const silence = view.isSilent ? tools::Style::Alarm : tools::Style::Plain;
    putPieces(
        line, 1,
        fitting({{"points " + std::to_string(view.points) + '/' + std::to_string(shm::MP_COUNT), Points, {}},
                 {"values " + std::to_string(view.values) + '/' + std::to_string(shm::MV_COUNT), Values, {}},
                 {"structure changes " + std::to_string(view.structureChanges), Changes, {}},
                 {view.isLive ? view.delivery : "", Delivery, Ink(view.isSilent ? bold : plain, silence)},
                 {view.note, Note, bold}},
                canvas_.width() - 2, pieceGap));
}

void WatchScreen::drawCounts(HeaderView const& view, int line) {
    enum Rank : int { Stale, Never, Warning, Lost, Alarm };
    if (!view.isLive) {
        return;
    }
    auto const& counts = view.counts;
    auto const inkOf = [](std::size_t count, tools::Style style) {
        return count == 0 ? Ink(dim) : Ink(bold, style);
    };
    putPieces(
        line, 1,
        fitting(
            {{countText(counts.alarm, "alarm"), Alarm, inkOf(counts.alarm, tools::Style::Alarm)},
             {countText(counts.warning, "warning"), Warning, inkOf(counts.warning, tools::Style::Warning)},
             {countText(counts.lost, "lost"), Lost, inkOf(counts.lost, tools::Style::Alarm)},
             {countText(counts.never, "never delivered"), Never, inkOf(counts.never, tools::Style::Plain)},
             {countText(counts.stale, "stale"), Stale, inkOf(counts.stale, tools::Style::Warning)}},
            canvas_.width() - 2, pieceGap));
}

void WatchScreen::drawTitles(WatchModel const& model, TableLayout const& layout, int line) {
    std::string title = std::string(" Point, value (by ") + sortName(model.order()) + ')';
    if (model.isFollowing()) {
        title += " (follow)";
    }
    if (!model.filterText().empty()) {
        title += " /" + model.filterText();
    }
    int column = 0;
    auto const put = [&](int width, std::string const& text) {
        canvas_.put({line, column, width}, text, underlined);
        column += width;
    };
    put(layout.name, title);
    put(layout.value, "Value");
    put(layout.state, "State");
    put(layout.minimum, "Minimum");
    put(layout.maximum, "Maximum");
    put(layout.mean, "Mean");
    put(layout.rate, "Rate");
    put(layout.age, "Age");
}

/// @return the column behind the name
int WatchScreen::drawName(int line, RowView const& row, TableLayout const& layout, Emphasis const& emphasis) {
    std::string mark = row.isMarked ? "* " : "  ";
    if (row.isFoldable) {
        char const* const folded = canvas_.isUtf8() ? "▸ " : "+ ";
        char const* const open = canvas_.isUtf8() ? "▾ " : "- ";
        mark = row.isFolded ? folded : open;
    }
    bool const isNarrow = layout.indent == 1;
    auto const before = std::string(static_cast<std::size_t>(layout.indent) * row.depth, ' ') + mark;
    int const begin = isNarrow ? 0 : 1;
    int const width = layout.name + (row.isPoint ? layout.value : 0) - begin - 1;
    auto const room = std::max(width - static_cast<int>(tools::widthOf(before)), 0);
    auto const text = before + nameWithin(row, static_cast<std::size_t>(room));
    canvas_.put({line, begin, width}, text, emphasis);
    return begin + static_cast<int>(tools::widthOf(text));
}

void WatchScreen::drawRow(int line, RowView const& row, TableLayout const& layout) {
    canvas_.put({line, 0, canvas_.width()}, "", withReverse(plain, row.isSelected));
    auto const emphasis = withReverse(row.isPoint ? bold : plain, row.isSelected);
    auto const faint = withReverse(dim, row.isSelected);
    int const behind = drawName(line, row, layout, emphasis);
    int column = layout.name;
    if (row.isPoint) {
        constexpr int typeGap = 2;
        int const room = layout.name + layout.value - behind - typeGap - 1;
        if (layout.isTypeShown && static_cast<int>(tools::widthOf(row.type)) <= room) {
            canvas_.put({line, behind + typeGap, room}, row.type, faint);
        }
    } else {
        // A changed number is highlighted, also in the selected row. Where there is no age, a stale value is marked.
        auto const text = row.value + (row.isStale && layout.age == 0 ? "!" : "");
        auto const width = std::min(static_cast<int>(tools::widthOf(text)), layout.value - 1);
        canvas_.put({line, column, width}, text,
                    Ink(withReverse(plain, row.isFresh != row.isSelected),
                        row.isStale ? tools::Style::Warning : tools::Style::Plain));
    }
    column += layout.value;
    canvas_.put({line, column, layout.state},
                tools::shortened(row.state, static_cast<std::size_t>(std::max(layout.state - 1, 0))),
                Ink(withReverse(plain, row.isSelected), row.style));
    column += layout.state;
    auto const put = [&](int width, std::string const& text, Ink const& ink) {
        canvas_.put({line, column, width}, text, ink);
        column += width;
    };
    put(layout.minimum, row.statistics.minimum, withReverse(plain, row.isSelected));
    put(layout.maximum, row.statistics.maximum, withReverse(plain, row.isSelected));
    put(layout.mean, row.statistics.mean, withReverse(plain, row.isSelected));
    put(layout.rate, row.statistics.rate, withReverse(plain, row.isSelected));
    put(layout.age, row.age,
        row.isStale ? Ink(withReverse(bold, row.isSelected), tools::Style::Warning) : Ink(faint));
}

void WatchScreen::drawTable(WatchModel const& model, TableLayout const& layout, Lines const& lines) {
    auto const message = model.message();
    int line = lines.header;
    for (auto const& text : message) {
        canvas_.put({++line, 2, canvas_.width() - 2}, text, Ink(bold, tools::Style::Warning));
    }
    if (message.empty() && model.rowCount() == 0) {
        canvas_.put({line + 1, 2, canvas_.width() - 2},
                    "Nothing to show: nothing is watched, or nothing matches the filter.", bold);
    }
    line = lines.header;
    for (auto const& row : model.visibleRows()) {
        drawRow(line++, row, layout);
    }
}

void WatchScreen::drawFooter(WatchModel const& model) {
    int const line = canvas_.height() - 1;
    int const columns = canvas_.width();
    if (model.isTyping()) {
        auto const typed = '/' + model.filterText() + '_';
        auto const& candidates = model.candidates();
        std::string rest = "   Enter keeps it, Tab completes, Esc removes it";
        if (candidates.size() > 1) {
            rest = "  ";
            for (auto const& name : candidates) {
                rest += ' ' + name;
            }
        }
        canvas_.put({line, 0, columns}, typed + rest, bold);
        return;
    }
    auto const place = std::to_string(model.rowCount() == 0 ? 0 : model.selected() + 1) + '/' +
                       std::to_string(model.rowCount());
    int const width = static_cast<int>(place.size());
    std::vector<Piece> pieces;
    pieces.reserve(keyHelp.size());
    for (auto const& help : keyHelp) {
        pieces.push_back({help.hint, help.rank, dim});
    }
    putPieces(line, 1, fitting(std::move(pieces), columns - width - pieceGap, pieceGap));
    canvas_.put({line, columns - width - 1, width + 1}, ' ' + place, bold);
}

void WatchScreen::drawHelp() {
    constexpr int keysWidth = 20;
    int const columns = canvas_.width();
    canvas_.put({0, 0, columns}, " qelshm watch: keys", boldReverse);
    int line = 0;
    for (auto const& help : keyHelp) {
        ++line;
        canvas_.put({line, 1, keysWidth}, help.keys, bold);
        canvas_.put({line, 1 + keysWidth, columns}, help.text);
    }
    line += 1;
    for (char const* const text :
         {"Changed numbers are highlighted. Age: since the last delivery; > none was seen,",
          "! stale, - never delivered. The graph shows the value of the selected row.",
          "A click of the mouse selects, a second one folds or unfolds; the wheel scrolls."}) {
        canvas_.put({++line, 1, columns}, text);
    }
}

void WatchScreen::draw(WatchModel& model) {
    canvas_.clear();
    if (model.isHelp()) {
        drawHelp();
    } else {
        auto const lines = linesFor(model);
        auto const layout = layoutOf(canvas_.width(), model.settings().hasStatistics);
        model.setPage(static_cast<std::size_t>(lines.table));
        model.setPaneLines(static_cast<std::size_t>(std::max(lines.pane - 1, 0)));
        tableLine_ = lines.header;
        drawTable(model, layout, lines);
        drawHeader(model, lines.header);
        if (lines.header > 1) {
            drawTitles(model, layout, lines.header - 1);
        }
        if (lines.pane > 0) {
            pane_.draw(model, lines.header + lines.table, lines.pane);
        }
        if (lines.footer > 0) {
            drawFooter(model);
        }
    }
    canvas_.show();
}

void WatchScreen::handleInput(WatchModel& model) {
    while (auto const input = canvas_.input()) {
        switch (input->mouse) {
        case MouseUse::None:
            handleKey(model, input->key);
            break;
        case MouseUse::WheelUp:
        case MouseUse::WheelDown:
            model.handle(input->mouse == MouseUse::WheelUp ? Action::ScrollUp : Action::ScrollDown);
            break;
        case MouseUse::Click:
            if (model.isHelp()) {
                model.handle(Action::Help);
            } else if (input->line >= tableLine_) {
                model.click(static_cast<std::size_t>(input->line - tableLine_));
            }
            break;
        }
    }
}

} // namespace qel::watch
