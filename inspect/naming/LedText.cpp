// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/LedText.h"

#include "region/TableLookup.h"
#include "states/LedTables.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace qel::inspect {

namespace {

using shm::StateColor;

constexpr std::array<shm::TextRow<StateColor>, 8> colourNames{{{StateColor::Off, "off"},
                                                               {StateColor::Red, "red"},
                                                               {StateColor::Green, "green"},
                                                               {StateColor::Blue, "blue"},
                                                               {StateColor::Orange, "orange"},
                                                               {StateColor::Cyan, "cyan"},
                                                               {StateColor::Magenta, "magenta"},
                                                               {StateColor::White, "white"}}};
static_assert(shm::isSortedByCode(colourNames) && colourNames.size() == shm::ledTables.colors.size());

/// The colours of a sequence without "off", each once.
std::vector<StateColor> lightsOf(shm::ColorSequence const& sequence) {
    std::vector<StateColor> lights;
    for (std::size_t step = 0; step < sequence.length(); ++step) {
        auto const colour = sequence.at(step);
        if (colour != StateColor::Off && std::find(lights.begin(), lights.end(), colour) == lights.end()) {
            lights.push_back(colour);
        }
    }
    return lights;
}

} // namespace

std::string ledText(eStatus_Bits state) {
    auto const* const found = shm::findRow(shm::ledTables.states, state);
    if (found == nullptr) {
        return "as before";
    }
    std::string text;
    for (auto const colour : lightsOf(found->sequence)) {
        text.append(text.empty() ? "" : " and ").append(shm::textOf(colourNames, colour, ""));
    }
    if (text.empty()) {
        return std::string(shm::textOf(colourNames, StateColor::Off, ""));
    }
    return found->sequence.length() > 1 ? text + ", blinking" : text;
}

} // namespace qel::inspect
