// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/Privileges.h"

#include <linux/capability.h>
#include <sys/fsuid.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace qel::test {

namespace {

constexpr uid_t nobody = 65534;
constexpr std::uint32_t overrides = (1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH);

using Capabilities = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

bool transfer(long call, Capabilities& capabilities) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return ::syscall(call, &header, capabilities.data()) == 0;
}

/// Swaps the powers to override that are in effect for the given ones; false when the kernel refuses.
bool swapOverrides(std::uint32_t& given) {
    Capabilities capabilities{};
    if (!transfer(SYS_capget, capabilities)) {
        return false;
    }
    auto const former = capabilities[0].effective & overrides;
    capabilities[0].effective = (capabilities[0].effective & ~overrides) | given;
    given = former;
    return transfer(SYS_capset, capabilities);
}

} // namespace

NoOverride::NoOverride() {
    if (!swapOverrides(former_)) {
        throw std::system_error(errno, std::generic_category(), "capabilities");
    }
}

NoOverride::~NoOverride() {
    swapOverrides(former_);
}

AsNobody::AsNobody() : former_(static_cast<unsigned int>(::setfsuid(nobody))) {
    succeeded_ = static_cast<uid_t>(::setfsuid(nobody)) == nobody; // the call tells only what was before it
}

AsNobody::~AsNobody() {
    ::setfsuid(former_);
}

} // namespace qel::test
