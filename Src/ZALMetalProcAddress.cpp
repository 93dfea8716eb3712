// SPDX-License-Identifier: Apache-2.0
// Entry points looked up by name.
#include "EntryPointTable.h"

#include <algorithm>
#include <cstring>
#include <iterator>

ZALMetalProc ZALMetalGetProcAddress(const char* name)
{
    if (!name) return nullptr;
    auto before = [](const ZALMetal::EntryPointRow& row, const char* wanted) { return std::strcmp(row.name, wanted) < 0; };
    const auto* row = std::lower_bound(std::begin(ZALMetal::EntryPointTable), std::end(ZALMetal::EntryPointTable), name, before);
    return row != std::end(ZALMetal::EntryPointTable) && std::strcmp(row->name, name) == 0 ? row->address : nullptr;
}
