// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/qelshm/app/QelshmApp.h"
#include "tools/qelshm/verbs/Commands.h"

#include <iostream>

int main(int argc, char** argv) {
    try {
        qel::tools::openStandardDescriptors();
        return qel::tools::runQelshm(argc, argv, std::cout, qel::tools::allCommands());
    } catch (...) {
        return qel::tools::exitFailure; // not even the error could be reported
    }
}
