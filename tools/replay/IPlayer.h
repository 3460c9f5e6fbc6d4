// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What can be replayed, step by step.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qel::tools {

class IValueSetter;

/// A replay on its own clock. The caller decides when a step is taken.
///
/// Threads: thread-bound to the thread that made it.
class IPlayer {
public:
    IPlayer() = default;
    IPlayer(IPlayer const&) = delete;
    IPlayer& operator=(IPlayer const&) = delete;
    virtual ~IPlayer() = default;

    /// Publishes the region.
    /// @throws std::exception if that fails
    virtual void begin() = 0;

    /// When the next step is due, in ms after the start; nothing after the last one.
    virtual std::optional<std::uint64_t> due() const = 0;

    /// Takes the next step; there must be one.
    virtual void step() = 0;

    /// Why there is no next step, once there is none.
    virtual std::string endReason() const = 0;

    /// Whether the region is active, so that readers may use it.
    virtual bool isActive() const = 0;

    virtual eStatus_Bits globalState() const = 0;

    /// Sets values by hand; null if what is replayed does not allow it. Lives as long as the player.
    virtual IValueSetter* setter() { return nullptr; }
};

} // namespace qel::tools
