// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What can be replayed, step by step.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <optional>

namespace qel::tools {

/// Knows replay time only; its caller decides when a step is taken.
///
/// Threads: bound to one thread.
class ISession {
public:
    ISession() = default;
    ISession(ISession const&) = delete;
    ISession& operator=(ISession const&) = delete;
    virtual ~ISession() = default;

    /// Publishes the region. Throws std::exception when there is none to be had.
    virtual void begin() = 0;

    /// When the next step is due, in ms after the start; nothing after the last one.
    virtual std::optional<std::uint64_t> due() const = 0;

    /// Takes the next step; there must be one.
    virtual void step() = 0;

    /// Whether the region is active now, so that readers may begin.
    virtual bool isActive() const = 0;

    virtual eStatus_Bits globalState() const = 0;
};

} // namespace qel::tools
