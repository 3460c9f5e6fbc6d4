// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/QelSharedMemoryWriter.h"

static_assert(isDomainOfTheFirmware);
