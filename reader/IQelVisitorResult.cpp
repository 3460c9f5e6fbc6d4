#include "reader/IQelVisitorResult.h"

namespace shm {

IQelVisitorResult::~IQelVisitorResult() = default;

} // namespace shm
