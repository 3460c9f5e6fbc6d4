// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/SignalSource.h"

#include <glib-unix.h>

#include <set>
#include <utility>

namespace qel::tools {

namespace {

/// Keeps the system's handler of the signal for the rest of the process: GLib restores the default effect with the last
/// source, so this one is never given back. It is attached to no context and calls nobody.
void keepHandler(int number) {
    static std::set<int> kept;
    if (kept.insert(number).second) {
        static_cast<void>(g_unix_signal_source_new(number));
    }
}

} // namespace

SignalSource::SignalSource(int number, std::function<void()> onArrival)
    : onArrival_(std::move(onArrival)),
      source_(g_unix_signal_add(
          number,
          [](gpointer self) -> gboolean {
              static_cast<SignalSource*>(self)->onArrival_();
              return G_SOURCE_CONTINUE;
          },
          this)) {
    keepHandler(number);
}

SignalSource::~SignalSource() {
    g_source_remove(source_);
}

} // namespace qel::tools
