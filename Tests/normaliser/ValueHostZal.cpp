// SPDX-License-Identifier: Apache-2.0
#include "ValueHost.h"

#include "SceneGL.h"

#include <ZALMetal/ZALMetal.h>

#include <cstdio>

namespace normaliser
{

std::string prepared(std::string_view program)
{
    std::string out(1 << 16, '\0');
    std::string message(1 << 12, '\0');
    size_t needed = 0;
    if (ZALMetalNormaliseProgram(program.data(), program.size(), out.data(), out.size(), &needed, message.data(),
                                 message.size()) == 0)
        return out.substr(0, needed - 1);

    std::fprintf(stderr, "%s", message.c_str());
    return {};
}

void setGlobal(unsigned target, unsigned index, const float* values)
{
    glProgramLocalParameter4fvARB(target, 128 + index, values);
}

void setAttribute(unsigned index, const float* values)
{
    glVertexAttrib4fvARB(index, values);
}

} // namespace normaliser
