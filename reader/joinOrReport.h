// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How a failing join is reported.
#pragma once

#include <boost/thread/exceptions.hpp>

#include <iostream>

namespace shm {

/// Calls join, once more when it is interrupted (boost::thread_interrupted). Throws nothing: each failure
/// goes to standard error.
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
