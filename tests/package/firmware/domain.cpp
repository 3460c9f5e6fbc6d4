// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/eStatus_Bits.h"

static_assert(isDomainOfTheFirmware);
