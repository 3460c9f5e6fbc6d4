// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "find".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <string>

namespace qel::tools {

/// Points and values that a text occurs in, upper and lower case being the same: in a point's path, id, type or state;
/// in a value's id, key name or state.
class FindCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// Status 1 when the text occurs nowhere.
    int show(RegionView const& view, CommandContext const& context) override;

private:
    std::string text_;
};

} // namespace qel::tools
