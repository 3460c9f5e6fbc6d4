// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/HzCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/NameSelection.h"

#include "domain/SensorIdentifier.h"
#include "format/HexText.h"
#include "format/Names.h"
#include "inspect/compare/UpdateRates.h"
#include "inspect/naming/PointPath.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

namespace qel::tools {

namespace {

using inspect::UpdateRate;

std::string fixed(double number) {
    std::array<char, 32> text{};
    auto const length = std::snprintf(text.data(), text.size(), "%.3f", number);
    return {text.data(), static_cast<std::size_t>(length)};
}

double secondsIn(std::chrono::nanoseconds duration) {
    return std::chrono::duration<double>(duration).count();
}

std::string gapText(std::optional<std::chrono::nanoseconds> const& gap) {
    return gap ? fixed(secondsIn(*gap)) + " s" : "-";
}

Json gapJson(std::optional<std::chrono::nanoseconds> const& gap) {
    return gap ? Json(secondsIn(*gap)) : Json();
}

std::string rateText(UpdateRate const& rate) {
    return rate.perSecond ? (inspect::mayBeHigher(rate) ? ">" : "") + fixed(*rate.perSecond) : "-";
}

void printText(std::vector<UpdateRate> const& rates, CommandContext const& context) {
    TextTable table;
    table.add(0, {"value", "", "updates", "per second", "shortest gap", "longest gap"});
    for (auto const& rate : rates) {
        table.add(0, {inspect::pointPath(rate.svid), shm::keyName(SensorIdentifier::getKey(rate.svid)),
                      std::to_string(rate.count), rateText(rate), gapText(rate.shortest),
                      gapText(rate.longest)});
    }
    if (std::any_of(rates.begin(), rates.end(), inspect::mayBeHigher)) {
        table.add(1, {{"> most looks saw a change: the true rate may be higher; look more often with "
                       "--interval",
                       Style::Warning}});
    }
    table.print(context.out, context.isColoured);
}

Json jsonRate(UpdateRate const& rate) {
    return {{"svid", shm::svidText(rate.svid)},
            {"path", inspect::pointPath(rate.svid)},
            {"name", shm::keyName(SensorIdentifier::getKey(rate.svid))},
            {"updates", rate.count},
            {"perSecond", rate.perSecond ? Json(*rate.perSecond) : Json()},
            {"shortestGapSeconds", gapJson(rate.shortest)},
            {"longestGapSeconds", gapJson(rate.longest)},
            {"present", rate.isPresent},
            {"looks", rate.looks},
            {"mayBeHigher", inspect::mayBeHigher(rate)}};
}

} // namespace

CLI::App& HzCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("hz", "Measure how often values are updated");
    verb.footer("Examples:\n"
                "  qelshm hz --duration 60\n"
                "  qelshm hz 'unit1/**:voltage' --interval 0.001");
    verb.add_option("NAME", names_, "Points and values to measure; everything by default")->type_name("");
    verb.add_option("--interval", interval_,
                    "Sampling interval, 0.001 to 60; must be shorter than the update interval")
        ->check(finiteBetween(0.001, 60.0))
        ->type_name("SECONDS")
        ->capture_default_str();
    verb.add_option("--duration", duration_, "Observation time, up to 86400")
        ->check(finiteBetween(0.0, 86400.0))
        ->type_name("SECONDS")
        ->capture_default_str();
    verb.excludes(optional.image);
    return verb;
}

int HzCommand::run(CommandContext const& context) {
    using Clock = std::chrono::steady_clock;
    inspect::UpdateRates rates;
    auto input = openInput(context.options, context.tell);
    StopSignals const stop;
    auto moment = Clock::now();
    auto const end = moment + secondsAs(duration_);
    requireOpened(input);
    NameSelection const selection(names_, input.image, inspect::PointTree(input.image));
    do {
        requireOpened(input);
        rates.add(input.image, Clock::now());
        moment += secondsAs(interval_);
        if (moment > end || stop.waitUntil(moment)) {
            break;
        }
        input = liveInput();
    } while (true);
    std::vector<UpdateRate> selected;
    for (auto const& rate : rates.rates()) {
        if (selection.hasValue(rate.svid, SensorIdentifier::getKey(rate.svid))) {
            selected.push_back(rate);
        }
    }
    if (context.options.isJson) {
        auto document = jsonDocument("hz", input, {});
        auto& list = document["rates"] = Json::array();
        for (auto const& rate : selected) {
            list.push_back(jsonRate(rate));
        }
        printJson(context.out, document);
    } else {
        printText(selected, context);
    }
    return exitSuccess;
}

} // namespace qel::tools
