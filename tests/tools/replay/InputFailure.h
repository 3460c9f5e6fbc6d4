// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The error that a call reports about its input.
#pragma once

#include "tools/replay/csv/InputError.h"

#include <string>

namespace qel::test {

/// @return the message of the InputError that the call throws, "no InputError" for none
template <typename Call>
std::string inputFailure(Call const& call) {
    try {
        call();
    } catch (qel::tools::InputError const& error) {
        return error.what();
    }
    return "no InputError";
}

} // namespace qel::test
