// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The literal build as a contender.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/contenders/TreeReader.h"
#include "bench/contenders/TreeWriter.h"
#include "bench/literal/Reader.h"
#include "bench/literal/Writer.h"

namespace bench {

/// The straightforward way to do the library's work: ordered maps, lists and locks, without shortcuts.
struct Literal : InProcess {
    static constexpr char name[] = "literal";

    using Input = TreeInput<literal::Definitions>;
    using Writer = TreeWriter<literal::Writer, literal::Definitions>;
    using Reader = TreeReader<literal::Reader>;
};

} // namespace bench
