#include "reader/IQelSharedMemoryVisitor.h"

namespace shm {

IQelSharedMemoryVisitor::~IQelSharedMemoryVisitor() = default;

} // namespace shm
