// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>

namespace SensorType {

enum SensorType : signed char { Any = -2, Electrical = 0, I2C, SocketGroup, Fan, RCM };

std::ostream& operator<<(std::ostream& out, SensorType type);

} // namespace SensorType
