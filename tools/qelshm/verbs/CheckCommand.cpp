// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CheckCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "inspect/check/RegionCheck.h"

#include <CLI/App.hpp>

#include <algorithm>

namespace qel::tools {

namespace {

using inspect::FindingCode;
using inspect::Findings;

std::string nameOf(FindingCode code) {
    return std::string(kindOf(code).name);
}

/// A line for each finding, then an explanation of each kind.
void printText(Findings const& findings, CommandContext const& context) {
    TextTable table;
    std::vector<FindingCode> codes;
    for (auto const& finding : findings) {
        table.add(0,
                  {{inspect::isDamage(finding) ? "damage" : "note",
                    inspect::isDamage(finding) ? Style::Alarm : Style::Warning},
                   nameOf(finding.code),
                   placeText(finding),
                   std::string(finding.field.name),
                   "found " + finding.found.text(),
                   "expected " + finding.expected.text(),
                   finding.field.place == inspect::Place::Object ? std::string()
                                                                 : "byte " + std::to_string(finding.offset)});
        if (std::find(codes.begin(), codes.end(), finding.code) == codes.end()) {
            codes.push_back(finding.code);
        }
    }
    for (auto const code : codes) {
        table.add(1, {nameOf(code) + ": " + std::string(kindOf(code).explanation)});
    }
    if (findings.empty()) {
        table.add(0, {"No damage or inconsistencies"});
    }
    table.print(context.out, context.isColoured);
}

} // namespace

CLI::App& CheckCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    auto& verb = *app.add_subcommand("check", "Report damage and inconsistencies");
    verb.footer("Examples:\n"
                "  qelshm check\n"
                "  qelshm check --image saved.img");
    return verb;
}

int CheckCommand::run(CommandContext const& context) {
    auto const input = openInput(context.options, context.tell);
    requireOpened(input);
    auto findings = objectFindings(input);
    auto const ofRegion = input.file.empty() ? inspect::confirmedFindings(
                                                   input.image, [] { return liveInput().image; }, input.now)
                                             : inspect::checkRegion(input.image, input.now);
    findings.insert(findings.end(), ofRegion.begin(), ofRegion.end());
    if (context.options.isJson) {
        auto document = jsonDocument("check", input, {});
        document["findings"] = jsonFindings(findings);
        printJson(context.out, document);
    } else {
        printText(findings, context);
    }
    return inspect::hasDamage(findings) ? exitFailure : exitSuccess;
}

} // namespace qel::tools
