// SPDX-License-Identifier: Apache-2.0
#include "ShaderBindings.h"

#include <array>
#include <cstddef>

namespace ZALMetal
{
namespace
{

constexpr std::array<const char*, 16> kAttributeNames = {
    "vertexpos", "user0",     "normal",    "color",     "user1",     "user2",     "user3",     "user4",
    "texcoord0", "texcoord1", "texcoord2", "texcoord3", "texcoord4", "texcoord5", "texcoord6", "texcoord7",
};

} // namespace

const char* ShaderBindings::GetAttributeName(int index)
{
    if (index < 0 || index >= static_cast<int>(kAttributeNames.size())) return nullptr;

    return kAttributeNames[static_cast<size_t>(index)];
}

} // namespace ZALMetal
