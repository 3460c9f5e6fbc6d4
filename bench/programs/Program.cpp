// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/programs/Program.h"

#include "bench/contenders/DBus.h"
#include "bench/works/Helper.h"

#include <benchmark/benchmark.h>
#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>

#include <exception>
#include <iostream>
#include <string_view>

namespace bench {

int runProgram(int argc, char** argv, void (*body)(Options const&)) {
    log4cpp::Category::setRootPriority(log4cpp::Priority::EMERG);
    try {
        constexpr int helperArguments = 3;
        if (argc == helperArguments && argv[1] == std::string_view(DBus::serveOption)) {
            DBus::serve(Plan(shapeNamed(argv[2])));
            return 0;
        }
        if (argc > 1 && argv[1] == std::string_view(helperOption)) {
            runHelper(helperRoles(), argc, argv);
            return 0;
        }
        benchmark::Initialize(&argc, argv); // takes its own options away
        body(parseOptions(argc, argv));
        return 0;
    } catch (std::exception const& error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 1;
    }
}

} // namespace bench
