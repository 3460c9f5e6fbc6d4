/// @file
/// The commands that print once.
#pragma once

#include "reader/QelSharedMemoryReader.h"

#include <iosfwd>

namespace qel::tools {

/// Every point, each followed by its values, a line each.
void printList(shm::QelSharedMemoryReader& reader, std::ostream& out);

/// The library's own dump of the tree.
void printTree(shm::QelSharedMemoryReader const& reader, std::ostream& out);

/// A point with its values, or one value.
/// @return false when there is no such point or value; nothing is printed then
bool printOne(shm::QelSharedMemoryReader& reader, long long svid, std::ostream& out);

} // namespace qel::tools
