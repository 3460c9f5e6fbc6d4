// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Scale.h"

#include "format/KeyTable.h"
#include "format/Names.h"
#include "region/LogLine.h"

#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>

#include <array>

namespace tav {

namespace {

constexpr std::array<double, 6> powers{1, 10, 100, 1000, 10000, 100000};
constexpr std::array<double, 6> inversePowers{1, 0.1, 0.01, 0.001, 0.0001, 0.00001};

} // namespace

unsigned int scalepos(unsigned short key) {
    auto const position = shm::keyRow(key).scalepos;
    // Asked before, so that the name is not looked up in vain.
    if (!position && shm::formatLog.isPriorityEnabled(log4cpp::Priority::WARN)) {
        shm::LogLine(shm::formatLog, log4cpp::Priority::WARN, "scalepos")
            << "scaling for " << shm::keyName(key) << " has not been defined";
    }
    return position.value_or(0);
}

double scaleFactor(unsigned int position) {
    return powers.at(position);
}

double inverseScaleFactor(unsigned int position) {
    return inversePowers.at(position);
}

} // namespace tav
