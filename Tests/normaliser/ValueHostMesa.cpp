// SPDX-License-Identifier: Apache-2.0
#include "ValueHost.h"

#include "SceneGL.h"

namespace normaliser
{

std::string prepared(std::string_view program)
{
    return std::string(program);
}

void setGlobal(unsigned target, unsigned index, const float* values)
{
    glProgramEnvParameter4fvARB(target, index, values);
}

void setAttribute(unsigned index, const float* values)
{
    if (index == 2) return glNormal3fv(values);
    if (index == 3) return glColor4fv(values);
    if (index >= 8) return glMultiTexCoord4fvARB(GL_TEXTURE0 + index - 8, values);
    glVertex4fv(values);
}

} // namespace normaliser
