#include "tools/qelshm/ScreenView.h"

#include "tools/qelshm/Text.h"

#include "format/Names.h"
#include "inspect/StateText.h"
#include "inspect/Svid.h"

#include <curses.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace qel::tools {

namespace {

constexpr short alarmColour = 1;
constexpr short warningColour = 2;
constexpr std::size_t nameWidth = 18;
constexpr std::size_t numberWidth = 18;

// The states that fold into an alarm or a warning of the unit, of values and of points.
short colourOf(eStatus_Bits state) {
    switch (state) {
    case eStatus_HighAlarm:
    case eStatus_LowAlarm:
    case eStatus_Lost:
    case eStatus_OnAlarmIdentify:
    case eStatus_OffAlarmIdentify:
    case eStatus_OnAlarm:
    case eStatus_OffAlarm:
    case eStatus_OnChildAlarm:
    case eStatus_OffChildAlarm:
    case eStatus_ChildAlarm:
    case eStatus_LostChild:
    case eStatus_Alarm:
        return alarmColour;
    case eStatus_HighWarning:
    case eStatus_LowWarning:
    case eStatus_OnWarningIdentify:
    case eStatus_OffWarningIdentify:
    case eStatus_OnWarning:
    case eStatus_OffWarning:
    case eStatus_OnChildWarning:
    case eStatus_OffChildWarning:
    case eStatus_ChildWarning:
    case eStatus_Warning:
        return warningColour;
    default:
        return 0;
    }
}

// The head and the foot of the screen stay; the table scrolls between them.
std::size_t tableHeight() {
    return static_cast<std::size_t>(std::max(LINES - 2, 1));
}

} // namespace

ScreenView::ScreenView() {
    static_cast<void>(std::setlocale(LC_ALL, "")); // a locale that is not installed leaves plain ASCII
    // Unlike initscr(), newterm() comes back when the terminal is not known.
    if (newterm(nullptr, stdout, stdin) == nullptr) {
        char const* const terminal = std::getenv("TERM");
        throw std::runtime_error(std::string("the terminal \"") + (terminal != nullptr ? terminal : "") +
                                 "\" cannot show a table; pipe the output through cat for lines");
    }
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    curs_set(0);
    if (has_colors()) {
        start_color();
        use_default_colors();
        init_pair(alarmColour, COLOR_RED, -1);
        init_pair(warningColour, COLOR_YELLOW, -1);
    }
}

ScreenView::~ScreenView() {
    endwin();
}

std::string ScreenView::headLine(WatchFrame const& frame) {
    auto const& snapshot = frame.snapshot;
    return "qelshm  " + inspect::stateText(snapshot.globalState) +
           "  |  points: " + std::to_string(snapshot.points.size()) +
           ", values: " + std::to_string(snapshot.valueCount()) +
           ", structure changes: " + std::to_string(frame.structureChanges);
}

std::vector<ScreenView::Line> ScreenView::bodyLines(Snapshot const& snapshot) {
    std::vector<Line> lines;
    std::map<long long, std::string> now;
    for (auto const& point : snapshot.points) {
        lines.push_back({pointLine(point), point.state, false});
        for (auto const& value : point.values) {
            auto const svid = point.svid | value.key;
            std::string const text = std::string(point.depth * std::size_t{2} + 20, ' ') +
                                     padded(shm::keyName(value.key), nameWidth) +
                                     padded(numberText(value), numberWidth) + inspect::stateText(value.state);
            auto const before = shown_.find(svid);
            lines.push_back({text, value.state, before != shown_.end() && before->second != text});
            now.emplace(svid, text);
        }
    }
    shown_ = std::move(now);
    return lines;
}

void ScreenView::show(WatchFrame const& frame) {
    auto head = headLine(frame);
    auto lines = bodyLines(frame.snapshot);
    if (head != head_ || !(lines == lines_)) {
        head_ = std::move(head);
        lines_ = std::move(lines);
        draw();
    }
    // A changed size of the terminal comes as a key, without any input.
    handleInput();
}

void ScreenView::handleInput() {
    for (int key = getch(); key != ERR; key = getch()) {
        handleKey(key);
        draw();
    }
}

void ScreenView::handleKey(int key) {
    auto const page = tableHeight();
    auto const last = lines_.size() > page ? lines_.size() - page : 0;
    switch (key) {
    case 'q':
    case 'Q':
        isDone_ = true;
        break;
    case KEY_UP:
        top_ -= top_ > 0 ? 1 : 0;
        break;
    case KEY_DOWN:
        ++top_;
        break;
    case KEY_PPAGE:
        top_ -= std::min(top_, page);
        break;
    case KEY_NPAGE:
        top_ += page;
        break;
    case KEY_HOME:
        top_ = 0;
        break;
    case KEY_END:
        top_ = last;
        break;
    default:
        break;
    }
    top_ = std::min(top_, last);
}

void ScreenView::drawLine(int row, Line const& line) const {
    auto const colour = colourOf(line.state);
    attr_t const attributes = (line.isFresh ? A_BOLD : A_NORMAL);
    attr_set(attributes, has_colors() ? colour : short{0}, nullptr);
    mvaddnstr(row, 0, line.text.c_str(), -1);
}

void ScreenView::draw() {
    erase();
    attr_set(A_REVERSE, 0, nullptr);
    mvaddstr(0, 0, padded(head_, static_cast<std::size_t>(COLS)).c_str());
    auto const end = std::min(lines_.size(), top_ + tableHeight());
    for (auto line = top_; line < end; ++line) {
        drawLine(static_cast<int>(line - top_) + 1, lines_[line]);
    }
    attr_set(A_DIM, 0, nullptr);
    mvaddstr(LINES - 1, 0,
             ("lines " + std::to_string(std::min(top_ + 1, end)) + " to " + std::to_string(end) + " of " +
              std::to_string(lines_.size()) + "   arrows, page up/down, home, end: scroll   q: quit")
                 .c_str());
    refresh();
}

} // namespace qel::tools
