// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Names.h"

#include "format/HexText.h"
#include "format/KeyTable.h"
#include "region/QelShmRecords.h"

namespace shm {

std::string keyName(unsigned short key) {
    auto const name = keyRow(key).name;
    if (!name.empty()) {
        return std::string(name);
    }
    return key == NO_KEY ? "UNKNOWN KEY" : "KEY_IDX_" + hexText(key, 1);
}

} // namespace shm
