// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a call says about wrong input.
#pragma once

#include "tools/common/InputError.h"

#include <string>

namespace qel::test {

/// The message of the InputError that the call throws; a text of its own when it throws none.
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
