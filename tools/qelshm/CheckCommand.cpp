#include "tools/qelshm/CheckCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/ImageCommand.h"
#include "tools/qelshm/Json.h"
#include "tools/qelshm/TextTable.h"

#include "inspect/RegionCheck.h"

#include <CLI/App.hpp>

#include <algorithm>
#include <string_view>
#include <variant>

namespace qel::tools {

namespace {

using inspect::Finding;
using inspect::FindingCode;
using inspect::Findings;

bool isDamage(Finding const& finding) {
    return kindOf(finding.code).severity == inspect::Severity::Finding;
}

std::string nameOf(FindingCode code) {
    return std::string(kindOf(code).name);
}

/// A line for each finding, then what each kind of them means.
void printText(Findings const& findings, CommandContext const& context) {
    TextTable table;
    std::vector<FindingCode> codes;
    for (auto const& finding : findings) {
        table.add(0,
                  {{isDamage(finding) ? "damage" : "note", isDamage(finding) ? Style::Alarm : Style::Warning},
                   nameOf(finding.code),
                   placeText(finding),
                   std::string(finding.field.name),
                   "found " + finding.found.text(),
                   "expected " + finding.expected.text(),
                   "byte " + std::to_string(finding.offset)});
        if (std::find(codes.begin(), codes.end(), finding.code) == codes.end()) {
            codes.push_back(finding.code);
        }
    }
    for (auto const code : codes) {
        table.add(1, {nameOf(code) + ": " + std::string(kindOf(code).explanation)});
    }
    if (findings.empty()) {
        table.add(0, {"Nothing: the region is sound"});
    }
    table.print(context.out, context.hasColor);
}

Json jsonField(inspect::FieldValue const& value) {
    auto const number = std::visit(
        [](auto const& content) {
            if constexpr (std::is_same_v<std::decay_t<decltype(content)>, std::monostate>) {
                return Json();
            } else {
                return Json(content);
            }
        },
        value.number());
    return {{"number", number}, {"text", value.text()}};
}

Json jsonFinding(Finding const& finding) {
    return {{"code", nameOf(finding.code)},
            {"severity", isDamage(finding) ? "damage" : "note"},
            {"explanation", std::string(kindOf(finding.code).explanation)},
            {"place", placeText(finding)},
            {"field", std::string(finding.field.name)},
            {"slot", finding.pos},
            {"found", jsonField(finding.found)},
            {"expected", jsonField(finding.expected)},
            {"offset", finding.offset}};
}

} // namespace

CLI::App& CheckCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    return *app.add_subcommand("check", "Tell what in the region is not as a writer leaves it");
}

int CheckCommand::run(CommandContext const& context) {
    auto const input = openInput(context);
    requireOpened(input);
    auto const findings = input.file.empty()
                              ? inspect::confirmedFindings(input.image, [] { return liveInput().image; })
                              : inspect::checkRegion(input.image);
    if (context.options.isJson) {
        auto document = jsonDocument("check", input, {});
        auto& list = document["findings"] = Json::array();
        for (auto const& finding : findings) {
            list.push_back(jsonFinding(finding));
        }
        printJson(context.out, document);
    } else {
        printText(findings, context);
    }
    return inspect::hasDamage(findings) ? exitFailure : exitSuccess;
}

} // namespace qel::tools
