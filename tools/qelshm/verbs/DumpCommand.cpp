// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DumpCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/common/SafeText.h"
#include "tools/qelshm/verbs/Json.h"

#include "inspect/image/ImageFile.h"

#include <CLI/App.hpp>
#include <CLI/Error.hpp>

#include <unistd.h>

#include <stdexcept>

namespace qel::tools {

namespace {

constexpr char const* standardOutput = "-";

} // namespace

CLI::App& DumpCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("dump", "Save an exact image of the region for --image");
    verb.footer("Examples:\n"
                "  qelshm dump unit.img\n"
                "  qelshm dump - | gzip >unit.img.gz");
    verb.add_option("FILE", file_, "Output file, an existing file is replaced; - is standard output")
        ->required()
        ->type_name("");
    verb.callback([this, json = optional.json] {
        if (file_ == standardOutput && json->count() != 0) {
            throw CLI::ValidationError("FILE", "standard output cannot take the image and the JSON document; "
                                               "name a file");
        }
    });
    return verb;
}

int DumpCommand::run(CommandContext const& context) {
    auto const input = openInput(context.options, context.tell);
    requireOpened(input);
    if (file_ == standardOutput) {
        if (::isatty(STDOUT_FILENO) == 1) {
            throw std::runtime_error("an image would upset the terminal; redirect standard output");
        }
        writeOutput(context.out, input.image.bytes());
        return exitSuccess;
    }
    if (input.capture) {
        requireOtherThanCapture(input.file, file_);
    }
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
