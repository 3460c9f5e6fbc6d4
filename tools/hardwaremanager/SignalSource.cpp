// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/SignalSource.h"

#include <glib-unix.h>

#include <utility>

namespace qel::tools {

SignalSource::SignalSource(int number, std::function<void()> onArrival)
    : onArrival_(std::move(onArrival)),
      source_(g_unix_signal_add(
          number,
          [](gpointer self) -> gboolean {
              static_cast<SignalSource*>(self)->onArrival_();
              return G_SOURCE_CONTINUE;
          },
          this)) {}

SignalSource::~SignalSource() {
    g_source_remove(source_);
}

} // namespace qel::tools
