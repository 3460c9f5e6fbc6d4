/// @file
/// Changes of values as lines of text.
#pragma once

#include "tools/qelshm/IWatchView.h"

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>

namespace qel::tools {

/// Writes a line for each value whose number or state has changed. Values that are there at the first time,
/// or that come later, are taken as they are and written from their first change on.
class PlainView : public IWatchView {
public:
    /// @param out must outlive the view
    /// @param lines the view is done after so many; none for no end
    PlainView(std::ostream& out, std::optional<std::uint64_t> lines) : out_(out), linesLeft_(lines) {}

    void show(WatchFrame const& frame) override;
    void handleInput() override {}

    /// Also when nobody reads the lines any more.
    bool isDone() const override;

private:
    struct Shown {
        double number;
        eStatus_Bits state;
    };

    std::ostream& out_;
    std::optional<std::uint64_t> linesLeft_;
    std::map<long long, Shown> shown_; // by svid, what is in the region
};

} // namespace qel::tools
