// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Log lines of the region's access, of the reader and of its wait thread, as tests of several faults expect them.
/// All functions are reentrant.
#pragma once

#include "tests/support/LogCapture.h"

#include <cstring>
#include <string>

namespace qel::test {

inline LogEntry accessError(std::string const& text) {
    return {"qel.shm.access", log4cpp::Priority::ERROR, text};
}
/// @param what stands under the name, and why it is not the writer's
inline LogEntry notOurs(std::string const& what) {
    return {"qel.shm.access", log4cpp::Priority::WARN,
            "openShm: removing what stands under the name of the shared memory and is not ours: " + what};
}
inline LogEntry notOpened(int error) {
    return accessError(std::string("errorShm: failed to open the shared memory file, ") +
                       std::strerror(error));
}
inline LogEntry notMapped(int error) {
    return accessError(std::string("errorShm: failed to resize/map the shared memory, ") +
                       std::strerror(error));
}
inline LogEntry notUnmapped(int error) {
    return accessError(std::string("closeShm: failed to unmap the shared memory") + std::strerror(error));
}
inline LogEntry notUnlinked(int error) {
    return accessError(std::string("unlinkShm: failed to unlink the shared memory, ") + std::strerror(error));
}

inline LogEntry readerInfo(std::string const& text) {
    return {"qel.shm.access.reader", log4cpp::Priority::INFO, text};
}
inline LogEntry readerDebug(std::string const& text) {
    return {"qel.shm.access.reader", log4cpp::Priority::DEBUG, text};
}
inline LogEntry notQueried(std::string const& detail) {
    return readerDebug("initialized: failed to query initialization state" + detail);
}

/// What a poll tells while nobody owns the hardware manager's name.
inline LogEntry noManager() {
    return notQueried(", code = 2, msg = GDBus.Error:org.freedesktop.DBus.Error.ServiceUnknown: The name "
                      "org.qel.HardwareManager was not provided by any .service files");
}

/// What a poll tells while there is no bus.
inline LogEntry noProxy() {
    return notQueried(", code = 24, msg = The proxy creation failed");
}

/// The region was mapped, by the first reader of the process and without a signal before.
inline LogEntry opened() {
    return readerDebug("onInitialized: modifications = 0x1");
}

} // namespace qel::test
