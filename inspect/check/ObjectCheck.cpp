// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/ObjectCheck.h"

#include "inspect/check/FindingList.h"

namespace qel::inspect {

namespace {

constexpr uid_t root = 0;

void add(FindingList& findings, FindingCode code, RegionField const& field, FieldValue found,
         FieldValue expected) {
    findings.add(code, field, 0, shm::NO_POSITION, found, expected);
}

} // namespace

Findings checkObject(RegionObject const& object, std::optional<uid_t> managerUser) {
    FindingList findings;
    if (object.uid != root && object.uid != managerUser) {
        add(findings, FindingCode::OwnerNotExpected, field::owner, FieldValue::user(object.uid),
            managerUser && *managerUser != root ? FieldValue::words("root or the hardware manager's user")
                                                : FieldValue::user(root));
    }
    if (object.isRegular && (object.mode & (S_IWGRP | S_IWOTH)) != 0) {
        add(findings, FindingCode::ModeTooLoose, field::mode, FieldValue::mode(object.mode),
            FieldValue::words("write rights for the owner alone"));
    }
    if (object.isRegular && object.names > 1) {
        add(findings, FindingCode::NameNotUnique, field::names, FieldValue::count(object.names),
            FieldValue::count(1));
    }
    return findings.take();
}

} // namespace qel::inspect
