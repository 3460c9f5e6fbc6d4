// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/LedSequence.h"

#include "format/StateName.h"
#include "region/Exceptions.h"
#include "region/LogLine.h"
#include "region/TableLookup.h"

#include <utility>

namespace shm {

LedSequence::LedSequence(LedTables const& tables, eStatus_Bits shown) : tables_(tables) {
    auto const* const start = findRow(tables_.states, shown);
    if (start == nullptr) {
        LogLine(statesLog, log4cpp::Priority::ERROR, "run") << "Invalid default state " << stateName(shown);
        throw ex::TAVSimpleException("The default state has no color assigned to it");
    }
    begin(start->sequence);
}

void LedSequence::begin(ColorSequence const& sequence) {
    sequence_ = &sequence;
    current_ = sequence.length();
    next_ = 0;
}

LedLevels const* LedSequence::tick(eStatus_Bits requested, eStatus_Bits& shown) {
    if (requested != shown) {
        LogLine(statesLog, log4cpp::Priority::INFO, "run")
            << "state change " << stateName(shown) << " => " << stateName(requested);
        if (auto const* const found = findRow(tables_.states, requested)) {
            shown = requested;
            begin(found->sequence);
        } else {
            LogLine(statesLog, log4cpp::Priority::WARN, "run")
                << "State " << stateName(requested) << " has no color assigned to it";
        }
    }

    auto const previous = std::exchange(current_, next_);
    next_ = (current_ + 1) % sequence_->length();
    if (current_ == previous && surelyShown_) {
        return nullptr;
    }
    auto const* const color = findRow(tables_.colors, sequence_->at(current_));
    return color == nullptr ? nullptr : &color->levels;
}

} // namespace shm
