// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How clients of the library's reader, and of the literal one, get at values.
#pragma once

#include "bench/support/Plan.h"
#include "reader/BaseQelShmVisitor.h"
#include "reader/IQelVisitorResult.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"

#include <memory>

namespace bench {

/// Adds up the numbers of the values that it is shown.
class SummingVisitor : public shm::BaseQelShmVisitor {
public:
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        sum_ += value->value;
    }

    double take() {
        auto const sum = sum_;
        sum_ = 0;
        return sum;
    }

private:
    double sum_ = 0;
};

/// A reader's client. Reader is ready to read when it is constructed.
template <typename Reader>
class TreeReader {
public:
    explicit TreeReader(Plan const& /*plan*/) {
        auto visitor = std::make_unique<SummingVisitor>();
        visitor_ = visitor.get();
        reader_.visitor(std::move(visitor));
        reader_.syncPositions(true);
    }

    std::unique_ptr<shm::QelShmMPnt> find(Access const& access) {
        return reader_.mpnt(pointOf(access.svid), false);
    }

    double fetch(Access const& access) {
        auto const key = keyOf(access.svid);
        if (auto const point = find(access)) {
            for (auto const& value : reader_.mvs((*point)->mvs)) {
                if (value->key == key) {
                    return value->value;
                }
            }
        }
        return 0;
    }

    double sumOfPoint(Access const& access) {
        if (auto const point = find(access)) {
            reader_.values(*point, 1, result_);
        }
        return visitor_->take();
    }

    double sumOfAll() {
        reader_.visit(result_);
        return visitor_->take();
    }

    void rebuildIndex() { reader_.syncPositions(true); }

protected:
    Reader& reader() { return reader_; }

private:
    Reader reader_;
    SummingVisitor* visitor_;
    std::shared_ptr<shm::IQelVisitorResult> result_ = std::make_shared<shm::IQelVisitorResult>();
};

} // namespace bench
