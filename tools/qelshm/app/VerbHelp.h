// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The help of a verb.
#pragma once

#include <CLI/App.hpp>
#include <CLI/FormatterFwd.hpp>

#include <string>

namespace qel::tools {

/// Lists the options of a verb first, then the options of the program that the verb takes.
///
/// Threads: reentrant.
class VerbHelp : public CLI::Formatter {
public:
    std::string make_help(CLI::App const* app, std::string name, CLI::AppFormatMode mode) const override;
};

} // namespace qel::tools
