// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/QelSharedMemoryWriter.h"

#include "domain/ElectricalSensorIdentifier.h"
#include "domain/SensorIdentifier.h"
#include "region/Exceptions.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "writer/WriterRecords.h"

#include <log4cpp/Priority.hh>

namespace shm {

namespace {

/// The order of siblings: tells whether a new point comes before one that is linked already.
bool standsBefore(long long svid, long long other) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    auto const otherParts = SensorIdentifier::getSensorIdParts(other);
    auto const otherKind = otherParts[SensorIdentifier::Kind];
    switch (parts[SensorIdentifier::Kind]) {
    case SensorType::Electrical:
        if (otherKind == SensorType::Electrical) {
            return svid < other;
        }
        // Deliberate: a fixed log text.
        LogLine(writerLog, log4cpp::Priority::INFO, "operator()") << "1t";
        return true;
    case SensorType::I2C:
        if (otherKind == SensorType::Electrical || otherKind == SensorType::RCM) {
            return false;
        }
        if (otherKind == SensorType::SocketGroup) {
            return true;
        }
        // Deliberate: only these two levels are compared. All other parts of the ids may differ.
        if (parts[SensorIdentifier::Phase] != otherParts[SensorIdentifier::Phase]) {
            return parts[SensorIdentifier::Phase] < otherParts[SensorIdentifier::Phase];
        }
        return parts[SensorIdentifier::Circuit] < otherParts[SensorIdentifier::Circuit];
    case SensorType::SocketGroup:
        return otherKind == SensorType::SocketGroup && svid < other;
    case SensorType::RCM:
        if (otherKind == SensorType::Electrical) {
            return false;
        }
        return otherKind == SensorType::I2C || otherKind == SensorType::SocketGroup || svid < other;
    default:
        return svid < other;
    }
}

} // namespace

void QelSharedMemoryWriter::connectMP(QelShmMP& mp) {
    records_->changes.note();
    auto* const parent = pointAt(mp.parent);
    auto const* const head = parent != nullptr ? &parent->children : listHead(mp.guid);
    auto curpos = head != nullptr ? *head : NO_POSITION;
    if (writerLog.isPriorityEnabled(log4cpp::Priority::DEBUG)) { // once for both lines
        LogLine(writerLog, log4cpp::Priority::DEBUG, "connectMP")
            << "pos = " << mp.pos << ", stype = " << SensorIdentifier::extractSensorType(mp.guid)
            << ", ppos = " << mp.parent;
        LogLine(writerLog, log4cpp::Priority::DEBUG, "connectMP") << "curpos = " << curpos;
    }

    auto lastpos = NO_POSITION;
    while (auto* const current = pointAt(curpos)) {
        if (standsBefore(mp.guid, current->guid)) {
            insertBefore(mp, curpos);
            return;
        }
        lastpos = curpos;
        curpos = current->next;
    }
    if (auto* const last = pointAt(lastpos)) {
        storeLink(mp.prev, lastpos);
        storeLink(last->next, mp.pos);
    } else if (parent != nullptr) {
        storeLink(parent->children, mp.pos);
    } else {
        setListHead(mp.guid, mp.pos);
    }
}

void QelSharedMemoryWriter::insertBefore(QelShmMP& mp, unsigned int curpos) {
    auto& current = *pointAt(curpos);
    LogLine(writerLog, log4cpp::Priority::INFO, "connectMP") << mp.guid << " < " << current.guid;
    storeLink(mp.next, curpos);
    storeLink(mp.prev, current.prev);
    if (auto* const previous = pointAt(current.prev)) {
        storeLink(previous->next, mp.pos);
    } else if (auto* const parent = pointAt(current.parent)) {
        storeLink(parent->children, mp.pos);
    } else {
        setListHead(mp.guid, mp.pos);
    }
    storeLink(current.prev, mp.pos);
}

std::uint32_t* QelSharedMemoryWriter::listHead(long long svid) const {
    switch (SensorIdentifier::extractSensorType(svid)) {
    case SensorType::Electrical:
        return &region()->root.devices;
    case SensorType::SocketGroup:
        return &region()->root.groups;
    default:
        return nullptr;
    }
}

void QelSharedMemoryWriter::setListHead(long long svid, unsigned int pos) {
    if (auto* const head = listHead(svid)) {
        storeLink(*head, pos);
    } else {
        // Deliberate: a fixed log text names this operation.
        LogLine(writerLog, log4cpp::Priority::WARN, "operator()")
            << "cannot handle measurement points of type " << SensorIdentifier::extractSensorType(svid);
    }
}

QelSharedMemoryWriter::Parent QelSharedMemoryWriter::parentOf(long long svid) const {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    Parent parent;
    if (parts[SensorIdentifier::Device] == -1 || parts[SensorIdentifier::Inlet] == -1) {
        return parent;
    }

    ElectricalSensorIdentifier identifier(-1, -1, -1, -1);
    identifier.setDevice(parts[SensorIdentifier::Device]);
    auto const findParent = [&] {
        parent.svid = identifier.getSensorVariableID(0);
        auto const known = points_.find(parent.svid);
        if (known == points_.end()) {
            return false;
        }
        parent.pos = known->second.pos;
        return true;
    };

    // Every level except the deepest. An I2C sensor is a child of its device.
    bool const copiesLevels = parts[SensorIdentifier::Kind] != SensorType::I2C;
    for (unsigned int level = SensorIdentifier::Inlet; copiesLevels && level < SensorIdentifier::Socket;
         ++level) {
        bool const hasDeeper =
            parts[level + 1] != -1 || (level < SensorIdentifier::Circuit && parts[level + 2] != -1);
        if (!hasDeeper) {
            break;
        }
        identifier.set(level, parts[level]);
    }
    if (findParent()) {
        return parent;
    }

    // A socket without a fuse of its own (circuit 0) is a child of its phase.
    if (parts[SensorIdentifier::Socket] != -1 && parts[SensorIdentifier::Circuit] == 0) {
        identifier.set(SensorIdentifier::Circuit, -1);
        identifier.set(SensorIdentifier::Socket, -1);
        if (findParent()) {
            return parent;
        }
    }
    bailout(svid, parent.svid);
}

void QelSharedMemoryWriter::bailout(long long svid) const {
    LogLine(writerLog, log4cpp::Priority::ERROR, "bailout") << "failed to handle MP " << svid;
    throw ex::InvalidSensorIdException(svid);
}

void QelSharedMemoryWriter::bailout(long long svid, long long parentSvid) const {
    LogLine(writerLog, log4cpp::Priority::ERROR, "bailout")
        << "failed to find parent MP " << parentSvid << " of MP " << svid;
    throw ex::InvalidSensorIdException(svid);
}

} // namespace shm
