/// @file
/// The literal build as a contender.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/contenders/TreeReader.h"
#include "bench/contenders/TreeWriter.h"
#include "bench/literal/Reader.h"
#include "bench/literal/Writer.h"

namespace bench {

/// The data structures and steps that the contract names, written down plainly.
struct Literal : InProcess {
    static constexpr char name[] = "literal";

    using Input = TreeInput<literal::Definitions>;
    using Writer = TreeWriter<literal::Writer, literal::Definitions>;
    using Reader = TreeReader<literal::Reader>;
};

} // namespace bench
