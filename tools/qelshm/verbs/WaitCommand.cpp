// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WaitCommand.h"

#include "tools/common/Durations.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/StateName.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <thread>

namespace qel::tools {

namespace {

constexpr char const* waitFooter = R"(Conditions, of which any ends the wait:
  NAME:state=STATE     a point's state, != for any other; STATE is a name such as on, high-alarm, lost, its number, or
                       alarm or warning, which stand for all states of that class
  NAME:KEY>NUMBER      a value's number in the unit that is displayed; = != < <= > >=
  NAME:KEY=STATE       a value's state
  active               there is an active region
  structure            points or values have come or gone since the first look at an active region
With wildcards, any of what NAME selects may meet the condition. NAME:state is always the point's state.

Exit status:
  0  a condition is met; what meets it is printed
  1  the time is over
  2  wrong arguments

Examples:
  qelshm wait 'unit1:state=alarm' --timeout 60
  qelshm wait 'unit1/**:state!=on' 'unit1/inlet1:active-power>3000' --timeout 8h)";

std::string checkCondition(std::string const& text) {
    try {
        WaitCondition const condition(text);
        return {};
    } catch (std::invalid_argument const& error) {
        return error.what();
    }
}

std::string sizeText(inspect::PointTree const& tree) {
    return std::to_string(tree.nodes().size()) + " points, " + std::to_string(tree.values().size()) +
           " values";
}

} // namespace

CLI::App& WaitCommand::define(CLI::App& app, OptionalOptions const& optional) {
    constexpr std::chrono::hours longest(24 * 366);
    auto& verb = *app.add_subcommand("wait", "Wait until a condition is met");
    verb.footer(waitFooter);
    verb.add_option("CONDITION", conditions_, "What to wait for")
        ->required()
        ->check(checkCondition)
        ->type_name("");
    verb.add_option("--timeout", timeout_, "Longest wait: 60, 60s, 5m, 8h; 0: look once")
        ->check(durationUpTo(longest))
        ->type_name("DURATION")
        ->capture_default_str();
    verb.add_option("--interval", interval_, "Sampling interval, 0.01 to 3600")
        ->check(finiteBetween(0.01, 3600.0))
        ->type_name("SECONDS")
        ->capture_default_str();
    verb.excludes(optional.image);
    verb.excludes(optional.wait);
    return verb;
}

int WaitCommand::run(CommandContext const& context) {
    using Clock = std::chrono::steady_clock;
    std::vector<WaitCondition> const conditions(conditions_.begin(), conditions_.end());
    auto const start = Clock::now();
    auto const end = start + parseDuration(timeout_).value_or(std::chrono::milliseconds(0));
    for (;;) {
        auto input = liveInput();
        input.now = context.options.now.value_or(input.now);
        auto const event = look(conditions, input, context);
        auto const now = Clock::now();
        if (event || now >= end) {
            print(event, input, std::chrono::duration_cast<std::chrono::milliseconds>(now - start), context);
            return event ? exitSuccess : exitFailure;
        }
        std::this_thread::sleep_until(std::min(now + secondsAs(interval_), end));
    }
}

std::optional<WaitCommand::Event> WaitCommand::look(std::vector<WaitCondition> const& conditions,
                                                    RegionInput const& input, CommandContext const& context) {
    auto const status = inspect::regionStatus(input.source, input.image, input.now, std::nullopt);
    if (status.condition != inspect::Condition::Active) {
        return std::nullopt;
    }
    inspect::PointTree const tree(input.image);
    inspect::StructureFingerprint const fingerprint(input.image, tree);
    bool const isFirst = !before_;
    bool const isChanged = before_ && *before_ != fingerprint;
    before_ = before_.value_or(fingerprint);
    for (auto const& condition : conditions) {
        if (condition.kind() == WaitCondition::Kind::Active) {
            return Event{condition.text(), std::nullopt, "active: " + sizeText(tree)};
        }
        if (condition.kind() == WaitCondition::Kind::Structure && isChanged) {
            return Event{condition.text(), std::nullopt, "structure changed: " + sizeText(tree)};
        }
        if (auto met = condition.metBy(input.image, tree)) {
            return Event{condition.text(), std::move(met), {}};
        }
    }
    for (auto const& condition : conditions) {
        if (isFirst && condition.isOfNothing(input.image, tree)) {
            context.tell("nothing has the name in \"" + condition.text() + "\" yet; waiting for it");
        }
    }
    return std::nullopt;
}

void WaitCommand::print(std::optional<Event> const& event, RegionInput const& input,
                        std::chrono::milliseconds elapsed, CommandContext const& context) {
    auto const* const met = event && event->met ? &*event->met : nullptr;
    if (!event) {
        auto const problem = conditionProblem(input);
        context.tell("no condition was met in time" + (problem.empty() ? "" : ": " + problem));
    }
    if (context.options.isJson) {
        auto document = jsonDocument("wait");
        document["met"] = event.has_value();
        document["condition"] = event ? Json(event->condition) : Json();
        document["elapsedMs"] = elapsed.count();
        document["now"] = input.now;
        document["point"] = met != nullptr ? jsonPoint(met->point, input.now) : Json();
        document["value"] = met != nullptr && met->value ? jsonValue(*met->value, input.now) : Json();
        printJson(context.out, document);
        return;
    }
    if (!event) {
        return;
    }
    TextTable table;
    if (met == nullptr) {
        table.add(0, {event->line});
    } else if (!met->value) {
        auto const state = met->point.state;
        table.add(0, {met->point.path, {shm::stateName(state), stateStyle(state)}});
    } else {
        auto const& value = *met->value;
        auto const style = stateStyle(value.state);
        table.add(0, {momentText(value.at),
                      met->point.path,
                      value.name,
                      {value.text, style},
                      {shm::stateName(value.state), style}});
    }
    table.print(context.out, context.isColoured);
}

} // namespace qel::tools
