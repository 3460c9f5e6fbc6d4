// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/programs/Options.h"

#include "bench/contenders/DBus.h"
#include "bench/works/Helper.h"

#include <benchmark/benchmark.h>
#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string_view>

namespace bench {

Options parseOptions(int argc, char const* const* argv) {
    Options options{shapes.front(), {}, "time"};
    for (int index = 1; index < argc; ++index) {
        std::string_view const argument = argv[index];
        auto const equals = argument.find('=');
        auto const name = argument.substr(0, equals);
        std::string const value(equals == std::string_view::npos ? "" : argument.substr(equals + 1));
        if (name == "--shape") {
            options.shape = shapeNamed(value);
        } else if (name == "--out") {
            options.out = value;
        } else if (name == "--measure") {
            options.measure = value;
        } else if (name == "--passes") {
            options.passes = static_cast<unsigned int>(std::stoul(value));
        } else if (name == "--seconds") {
            options.seconds = std::stod(value);
        } else {
            throw std::invalid_argument("there is no option " + std::string(argument));
        }
    }
    return options;
}

int runProgram(int argc, char** argv, void (*body)(Options const&)) {
    log4cpp::Category::setRootPriority(log4cpp::Priority::EMERG);
    try {
        constexpr int helperArguments = 3;
        if (argc == helperArguments && argv[1] == std::string_view(DBus::serveOption)) {
            DBus::serve(Plan(shapeNamed(argv[2])));
            return 0;
        }
        if (argc > 1 && argv[1] == std::string_view(helperOption)) {
            runHelper(argc, argv);
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
