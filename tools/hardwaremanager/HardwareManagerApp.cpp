// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/HardwareManagerApp.h"

#include <cmath>
#include <csignal>
#include <cstddef>
#include <exception>
#include <ostream>
#include <stdexcept>

namespace qel::tools {

namespace {

std::string counted(std::size_t count, std::string const& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

} // namespace

HardwareManagerApp::HardwareManagerApp(HardwareManagerOptions const& options, std::ostream* out)
    : options_(options),
      out_(out),
      service_([this] { return region_.isActive() ? 1 : 0; },
               [this] { fail("the connection to the system bus is lost"); }) {
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        signals_.emplace_back(number, [this] { isOver_ = true; });
    }
    signals_.emplace_back(SIGUSR1, [this] {
        announce();
        tell("change of structure announced on request");
    });
}

HardwareManagerApp::~HardwareManagerApp() {
    if (timer_ != 0) {
        g_source_remove(timer_);
    }
}

void HardwareManagerApp::run() {
    service_.ownName();
    tell("serves org.qel.HardwareManager");
    if (options_.interval > 0.0) {
        constexpr double msPerSecond = 1000.0;
        look();
        timer_ = g_timeout_add(
            static_cast<guint>(std::lround(options_.interval * msPerSecond)),
            [](gpointer self) -> gboolean {
                static_cast<HardwareManagerApp*>(self)->look();
                return G_SOURCE_CONTINUE;
            },
            this);
    }
    while (!isOver_) {
        g_main_context_iteration(nullptr, TRUE);
    }
    if (failure_) {
        throw std::runtime_error(*failure_);
    }
    tell("ended by a signal");
}

// Also called from C: no exception may leave.
void HardwareManagerApp::look() {
    try {
        observe();
    } catch (std::exception const& error) {
        fail(std::string("cannot read the shared memory: ") + error.what());
    }
}

void HardwareManagerApp::observe() {
    auto const change = region_.observe();
    auto const size = counted(region_.pointCount(), "point") + ", " + counted(region_.valueCount(), "value");
    switch (change) {
    case RegionObserver::Change::None:
        break;
    case RegionObserver::Change::Activated:
        // To readers that mapped the region before its writing process was restarted.
        announce();
        tell("region active: " + size);
        break;
    case RegionObserver::Change::StructureChanged:
        announce();
        tell("structure changed and announced: " + size);
        break;
    case RegionObserver::Change::Deactivated:
        tell("region not active any more");
        break;
    }
}

void HardwareManagerApp::announce() {
    service_.announceStructureChange();
}

void HardwareManagerApp::tell(std::string const& line) const {
    if (out_ != nullptr) {
        *out_ << "qel-hardware-manager: " << line << std::endl;
    }
}

void HardwareManagerApp::fail(std::string const& reason) {
    failure_ = reason;
    isOver_ = true;
}

} // namespace qel::tools
