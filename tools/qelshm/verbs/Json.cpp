// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/Json.h"

#include "tools/common/SafeText.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"

#include "format/HexText.h"
#include "format/StateName.h"
#include "inspect/image/RegionStatus.h"

#include <sstream>
#include <type_traits>
#include <variant>

namespace qel::tools {

namespace {

constexpr int schemaVersion = 1; ///< of all documents; members are added without a new one

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

Json jsonFinding(inspect::Finding const& finding) {
    return {{"code", std::string(kindOf(finding.code).name)},
            {"severity", inspect::isDamage(finding) ? "damage" : "note"},
            {"explanation", std::string(kindOf(finding.code).explanation)},
            {"place", placeText(finding)},
            {"field", std::string(finding.field.name)},
            {"slot", finding.pos},
            {"found", jsonField(finding.found)},
            {"expected", jsonField(finding.expected)},
            {"offset", finding.offset}};
}

std::string textOf(Json const& document) {
    constexpr int indent = 2;
    return document.dump(indent, ' ', true, Json::error_handler_t::replace);
}

} // namespace

Json jsonDocument(std::string const& verb) {
    return {{"schema", schemaVersion}, {"verb", verb}};
}

Json jsonDocument(std::string const& verb, RegionInput const& input,
                  std::vector<std::string> const& warnings) {
    auto document = jsonDocument(verb);
    document["source"] = jsonSource(input);
    document["now"] = input.now;
    document["warnings"] = warnings;
    return document;
}

Json jsonSource(RegionInput const& input) {
    auto const status = inspect::regionStatus(input.source, input.image, input.now, std::nullopt);
    Json source{{"kind", input.file.empty() ? "live" : "image"},
                {"name", input.file.empty() ? shm::REGION_NAME : safeText(input.file)},
                {"condition", inspect::conditionName(status.condition)}};
    if (auto const& capture = input.capture) {
        source["capture"] = {{"time", jsonTime(capture->time)},
                             {"first", jsonTime(capture->first)},
                             {"last", jsonTime(capture->last)},
                             {"samples", capture->samples},
                             {"problem", textOrNull(safeText(capture->damage))}};
    }
    return source;
}

Json jsonTime(std::uint64_t time) {
    return {{"ms", time}, {"text", momentText(time)}};
}

Json jsonState(eStatus_Bits state) {
    return {{"number", static_cast<std::int32_t>(state)}, {"name", shm::stateName(state)}};
}

Json textOrNull(std::string_view text) {
    return text.empty() ? Json() : Json(text);
}

Json jsonMoment(std::uint64_t at, std::uint64_t now) {
    if (at == 0) {
        return nullptr;
    }
    auto const age = ageOf(at, now);
    return {{"ms", at}, {"text", momentText(at)}, {"ageMs", age ? Json(*age) : Json()}};
}

Json jsonPoint(PointFacts const& point, std::uint64_t now) {
    return {{"svid", shm::svidText(point.svid)},
            {"path", point.path},
            {"parent", textOrNull(point.parentPath)},
            {"depth", point.depth},
            {"kind", point.kind},
            {"slot", point.pos},
            {"type", {{"code", point.typeCode}, {"name", point.type}}},
            {"state", jsonState(point.state)},
            {"at", jsonMoment(point.at, now)}};
}

Json jsonValue(ValueFacts const& value, std::uint64_t now) {
    return {{"svid", shm::svidText(value.svid)},
            {"key", value.key},
            {"name", value.name},
            {"number", value.number ? Json(*value.number) : Json()},
            {"unit", textOrNull(value.unit)},
            {"text", safeText(value.text)},
            {"state", jsonState(value.state)},
            {"at", jsonMoment(value.at, now)}};
}

Json jsonValues(std::vector<ValueFacts> const& values, std::uint64_t now) {
    auto list = Json::array();
    for (auto const& value : values) {
        list.push_back(jsonValue(value, now));
    }
    return list;
}

Json jsonFindings(inspect::Findings const& findings) {
    auto list = Json::array();
    for (auto const& finding : findings) {
        list.push_back(jsonFinding(finding));
    }
    return list;
}

void printJson(std::ostream& out, Json const& document) {
    writeOutput(out, textOf(document) + '\n');
}

JsonListWriter::JsonListWriter(std::ostream& out, Json document, std::string const& list) : out_(out) {
    document[list] = Json::array();
    auto const text = textOf(document);
    auto const end = text.rfind(']');
    writeOutput(out_, text.substr(0, end));
    rest_ = text.substr(end) + '\n';
}

void JsonListWriter::add(Json const& item) {
    std::string text(isEmpty_ ? "\n" : ",\n");
    isEmpty_ = false;
    std::istringstream lines(textOf(item));
    for (std::string line; std::getline(lines, line);) {
        text.append("    ").append(line) += '\n';
    }
    text.pop_back();
    writeOutput(out_, text);
}

void JsonListWriter::end() {
    writeOutput(out_, (isEmpty_ ? "" : "\n  ") + rest_);
}

} // namespace qel::tools
