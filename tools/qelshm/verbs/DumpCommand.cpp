// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DumpCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/SafeText.h"
#include "tools/qelshm/verbs/Json.h"

#include "inspect/image/ImageFile.h"

#include <CLI/App.hpp>

namespace qel::tools {

CLI::App& DumpCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    auto& verb = *app.add_subcommand("dump", "Save an exact image of the region for --image");
    verb.add_option("FILE", file_, "Output file; an existing file is replaced")->required()->type_name("");
    return verb;
}

int DumpCommand::run(CommandContext const& context) {
    auto const input = openInput(context.options, context.tell);
    requireOpened(input);
    inspect::writeImage(input.image, file_);
    if (context.options.isJson) {
        auto document = jsonDocument("dump", input, {});
        document["file"] = safeText(file_);
        document["bytes"] = input.image.bytes().size();
        printJson(context.out, document);
    }
    return exitSuccess;
}

} // namespace qel::tools
