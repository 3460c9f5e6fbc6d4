#include "tools/qelshm/PlainView.h"

#include "tools/qelshm/Text.h"

#include <ostream>
#include <utility>

namespace qel::tools {

void PlainView::show(WatchFrame const& frame) {
    std::map<long long, Shown> now;
    for (auto const& point : frame.snapshot.points) {
        for (auto const& value : point.values) {
            auto const svid = point.svid | value.key;
            now[svid] = {value.value, value.state};
            auto const before = shown_.find(svid);
            bool const isChanged = before != shown_.end() && (before->second.number != value.value ||
                                                              before->second.state != value.state);
            if (isChanged && !isDone()) {
                out_ << changeLine(point, value) << '\n';
                if (linesLeft_) {
                    --*linesLeft_;
                }
            }
        }
    }
    out_ << std::flush;
    shown_ = std::move(now);
}

bool PlainView::isDone() const {
    return linesLeft_ == 0U || !out_;
}

} // namespace qel::tools
