// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The hidden verb "complete".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <string>

namespace qel::tools {

/// Prints candidates for the completion scripts, a line each: names that begin like a word, or keys of a point. For
/// programs only, so it stands in no help.
///
/// Threads: thread-bound to the main thread.
class CompleteCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    int show(RegionView const& view, CommandContext const& context) override;

private:
    std::string kind_; ///< "name" or "key"
    std::string word_; ///< the beginning of a name; the name of the point whose keys are wanted
};

} // namespace qel::tools
