#include "tools/qelshm/WatchFilter.h"

#include <algorithm>

namespace qel::tools {

bool WatchFilter::has(long long svid) const {
    return std::find(svids_.begin(), svids_.end(), svid) != svids_.end();
}

Snapshot WatchFilter::apply(Snapshot snapshot) const {
    if (svids_.empty()) {
        return snapshot;
    }
    Snapshot watched{snapshot.globalState, {}};
    for (auto& point : snapshot.points) {
        bool const isWhole = has(point.svid);
        auto& values = point.values;
        if (!isWhole) {
            values.erase(std::remove_if(values.begin(), values.end(),
                                        [&](shm::record::QelShmMVal const& value) {
                                            return !has(point.svid | value.key);
                                        }),
                         values.end());
        }
        if (isWhole || !values.empty()) {
            watched.points.push_back(std::move(point));
        }
    }
    return watched;
}

} // namespace qel::tools
