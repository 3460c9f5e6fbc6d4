/// @file
/// A live table on the terminal.
#pragma once

#include "tools/qelshm/IWatchView.h"

#include "domain/eStatus_Bits.h"
#include "region/QelShmRecords.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace qel::tools {

/// Draws all points and values, alarms in red, warnings in yellow, values that have just changed in bold.
/// Scrolls with the arrow, page, home and end keys; q ends it. The terminal is as before once the view is
/// destroyed.
///
/// Threads: one view per process, bound to one thread.
class ScreenView : public IWatchView {
public:
    /// Takes the terminal over.
    /// @throws std::runtime_error when the terminal cannot be used
    ScreenView();
    ~ScreenView() override;

    void show(WatchFrame const& frame) override;
    void handleInput() override;
    bool isDone() const override { return isDone_; }

private:
    struct Line {
        std::string text;
        eStatus_Bits state;
        bool isFresh; ///< changed since the time before

        bool operator==(Line const& other) const {
            return text == other.text && state == other.state && isFresh == other.isFresh;
        }
    };

    static std::string headLine(WatchFrame const& frame);
    std::vector<Line> bodyLines(Snapshot const& snapshot);
    void handleKey(int key);
    void draw();
    void drawLine(int row, Line const& line) const;

    std::string head_;
    std::vector<Line> lines_;
    std::map<long long, std::string> shown_; // by svid: what the table says of a value
    std::size_t top_ = 0;                    // first line of the table that is on the screen
    bool isDone_ = false;
};

} // namespace qel::tools
