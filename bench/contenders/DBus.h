// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Properties over D-Bus.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"
#include "bench/support/Process.h"

#include <cstddef>
#include <memory>
#include <optional>

// The name that GLib declares.
using GDBusConnection = struct _GDBusConnection; // NOLINT(bugprone-reserved-identifier)

namespace bench {

/// A process that serves an object per point with a property per key, set and got by GDBus through the bus daemon.
struct DBus : ThroughServer {
    static constexpr char name[] = "D-Bus properties";

    using Input = Plan;

    struct Release {
        void operator()(GDBusConnection* connection) const;
    };
    using Connection = std::unique_ptr<GDBusConnection, Release>;

    class Writer {
    public:
        Writer();

        void open() {}
        void build(Plan const& plan);
        bool update(Access const& access, Sample const& sample);

    private:
        Connection connection_;
        std::optional<Process> server_;
    };

    class Reader {
    public:
        explicit Reader(Plan const& plan);

        double fetch(Access const& access);

    private:
        Connection connection_;
    };

    /// How the program is told to be the process that serves: this option and the name of a shape.
    static constexpr char serveOption[] = "--serve-properties";

    /// Serves until the process is ended.
    static void serve(Plan const& plan);
};

} // namespace bench
