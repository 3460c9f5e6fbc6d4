// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Joins a thread and reports a failure.
#pragma once

#include <boost/thread/exceptions.hpp>

#include <iostream>

namespace shm {

/// Calls join, and calls it once more if it was interrupted (boost::thread_interrupted). Throws nothing: each
/// failure is written to standard error.
///
/// Threads: reentrant.
/// @param join joins the thread
template <typename Join>
void joinOrReport(Join const& join) {
    try {
        join();
    } catch (boost::thread_interrupted const&) {
        std::cerr << "irq exception ?\n";
        try {
            join();
        } catch (boost::thread_interrupted const&) {
            std::cerr << "inner irq exception ?\n";
        } catch (...) {
            std::cerr << "inner other exception ?\n";
        }
    } catch (...) {
        std::cerr << "other exception ?\n";
    }
}

} // namespace shm
