// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/ObjectCheck.h"

namespace qel::inspect {

Findings checkObject(RegionObject const& object, std::optional<uid_t> managerUser) {
    constexpr uid_t root = 0;
    FindingList findings;
    if (object.uid != root && object.uid != managerUser) {
        findings.add(FindingCode::OwnerNotExpected, field::owner, FieldValue::user(object.uid),
                     managerUser && *managerUser != root
                         ? FieldValue::words("root or the hardware manager's user")
                         : FieldValue::user(root));
    }
    if (object.isRegular && (object.mode & (S_IWGRP | S_IWOTH)) != 0) {
        findings.add(FindingCode::ModeTooLoose, field::mode, FieldValue::mode(object.mode),
                     FieldValue::words("write permission for the owner only"));
    }
    if (object.isRegular && object.names > 1) {
        findings.add(FindingCode::NameNotUnique, field::names, FieldValue::count(object.names),
                     FieldValue::count(1));
    }
    return findings.take();
}

} // namespace qel::inspect
