// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/TerminalAbilities.h"

#include <curses.h>
#include <term.h> // after curses.h

#include <cstdint>

namespace qel::tools {

namespace {

/// The description of a terminal, for a moment.
class Description {
public:
    explicit Description(int descriptor) : before_(cur_term) {
        int error = 0;
        isThere_ = setupterm(nullptr, descriptor, &error) == OK;
    }
    ~Description() {
        if (isThere_) {
            del_curterm(set_curterm(before_));
        }
    }
    Description(Description const&) = delete;
    Description& operator=(Description const&) = delete;

    bool isThere() const { return isThere_; }

private:
    TERMINAL* before_;
    bool isThere_ = false;
};

} // namespace

bool knowsColours(int descriptor) {
    constexpr int leastColours = 8;
    Description const description(descriptor);
    return description.isThere() && tigetnum("colors") >= leastColours;
}

bool canAddressCursor(int descriptor) {
    Description const description(descriptor);
    if (!description.isThere()) {
        return false;
    }
    char const* const address = tigetstr("cup");
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the library's sign for a name that it does not take for a text
    auto const* const noText = reinterpret_cast<char const*>(std::intptr_t{-1});
    return address != nullptr && address != noText;
}

} // namespace qel::tools
