// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A plug-in that brings the library into a process and takes it away again.

#include "reader/QelSharedMemoryReader.h"

#include <exception>

/// Makes a reader, which connects to the bus by the generated types, and lets it go. Gives what went wrong, or null.
extern "C" __attribute__((visibility("default"))) char const* useReader() {
    try {
        shm::QelSharedMemoryReader reader(0, false);
        return reader.initialized() ? "a hardware manager answers where there is none" : nullptr;
    } catch (std::exception const&) {
        return "no reader can be made";
    }
}
