// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/LedChannels.h"

#include "region/LogLine.h"
#include "region/TableLookup.h"

#include <fstream>
#include <string>

namespace shm {

namespace {

void writeLevel(char const* path, unsigned short level) {
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    if (!file) {
        LogLine(statesLog(), log4cpp::Priority::WARN, "update")
            << "failed to write " << level << " into " << path;
        return;
    }
    file << std::to_string(level); // independent of the process's locale
}

} // namespace

void writeLevels(LedTables const& tables, LedLevels& stored, LedLevels const& wanted, bool force) {
    for (unsigned int channel = 0; channel < wanted.size(); ++channel) {
        auto const level = wanted.at(channel);
        if (stored.at(channel) == level && !force) {
            continue;
        }
        LogLine(statesLog(), log4cpp::Priority::DEBUG, "update")
            << "color = " << channel << ", old = " << stored.at(channel) << ", new = " << level;
        stored.at(channel) = level;
        auto const* const found = findRow(tables.channels, channel);
        if (found == nullptr) {
            LogLine(statesLog(), log4cpp::Priority::ERROR, "update")
                << "Invalid color " << channel << " provided";
            continue;
        }
        writeLevel(found->path, level);
    }
}

} // namespace shm
