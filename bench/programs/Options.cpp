// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/programs/Options.h"

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

} // namespace bench
