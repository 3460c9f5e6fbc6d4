// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/app/QelshmApp.h"

#include <iostream>

int main(int argc, char** argv) {
    try {
        return qel::tools::runQelshm(argc, argv, std::cout);
    } catch (...) {
        return qel::tools::exitFailure; // not even the line that tells of the failure could be written
    }
}
