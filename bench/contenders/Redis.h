// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Redis over a unix socket.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"
#include "bench/support/Process.h"

#include <cstddef>
#include <memory>
#include <optional>

// The name that hiredis.h declares.
struct redisContext;

namespace bench {

/// A server without persistence; a hash per point with a field per key.
struct Redis : ThroughServer {
    static constexpr char name[] = "Redis, unix socket";

    using Input = Plan;

    struct Close {
        void operator()(redisContext* connection) const;
    };
    using Connection = std::unique_ptr<redisContext, Close>;

    class Writer {
    public:
        void open();
        void build(Plan const& plan);
        bool update(Access const& access, Sample const& sample);
        std::size_t bytes() const;

    private:
        std::optional<Process> server_;
        Connection connection_;
        std::size_t emptyBytes_ = 0;
    };

    class Reader {
    public:
        explicit Reader(Plan plan);

        bool find(Access const& access);
        double fetch(Access const& access);
        double sumOfPoint(Access const& access);
        double sumOfAll();

    private:
        Connection connection_;
        Plan plan_;
    };
};

} // namespace bench
