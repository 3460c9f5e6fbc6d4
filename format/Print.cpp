// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Print.h"

#include "format/HexText.h"
#include "format/Names.h"
#include "format/NumberText.h"
#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"
#include "region/QelShmRoot.h"

#include <cstddef>
#include <ios>
#include <ostream>

namespace shm {

namespace {

constexpr std::size_t keyDigits = 4;

} // namespace

std::ostream& operator<<(std::ostream& out, QelShmMVal const& mv) {
    if (!mv) {
        return out << "QSMV {}";
    }
    // Deliberate: the stream stays decimal. (Numbers and words are no part of the stream's locale.)
    return out << "QSMV {key = " << HexText(mv->key, keyDigits).view() << " [" << keyName(mv->key)
               << "], value = " << tav::ValueFormatter::str(mv) << ", state = " << stateName(mv->state)
               << ", at = " << std::dec << integerText(mv->at, std::ios_base::dec) << '}';
}

std::ostream& operator<<(std::ostream& out, QelShmMPnt const& mp) {
    if (!mp) {
        return out << "QSMP {}";
    }
    // Deliberate: the position is in the base the caller chose; booleans stay words.
    return out << "QSMP {guid = " << svidText(mp->guid) << ", pos = " << integerText(mp->pos, out.flags())
               << ", " << keyName(key::state) << " = " << stateName(mp->state) << ", " << keyName(key::type)
               << " = " << mp.tstr() << std::boolalpha << ", mvs = " << wordOf(mp->mvs < MV_COUNT)
               << ", children = " << wordOf(mp->children < MP_COUNT) << '}';
}

std::ostream& operator<<(std::ostream& out, QelShmRoot const& root) {
    out << std::boolalpha << "QSR {valid = " << wordOf(static_cast<bool>(root));
    if (root) {
        // Deliberate: the counts are hexadecimal too, and the stream stays so.
        out << std::hex << std::showbase;
        auto const flags = out.flags();
        out << ", version = " << integerText(root->version, flags) << ", " << keyName(key::state) << " = "
            << stateName(root->state) << ", devices = " << integerText(root.dvcCnt(), flags)
            << ", groups = " << integerText(root.grpCnt(), flags);
    }
    return out << '}';
}

} // namespace shm
