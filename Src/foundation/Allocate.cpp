// SPDX-License-Identifier: Apache-2.0
#include "foundation/Allocate.h"

#include <cstdlib>

namespace ZALM
{

Allocator g_allocator = {std::malloc, std::realloc, std::free};

} // namespace ZALM
