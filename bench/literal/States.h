// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rules that fold states, over lists and sets.
#pragma once

#include "domain/eStatus_Bits.h"

#include <list>

namespace bench::literal {

eStatus_Bits mpInitial(eStatus_Bits state);
eStatus_Bits mvState(std::list<eStatus_Bits> const& values);
eStatus_Bits mpState(std::list<eStatus_Bits> const& children);
eStatus_Bits mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                     std::list<eStatus_Bits> const& children);

} // namespace bench::literal
