// SPDX-License-Identifier: Apache-2.0
// Entry points that are there to link, and those that answer without looking.
#include "fuzz/api/Arguments.h"

#include <iterator>

namespace fuzz::api
{

namespace
{

void infoLog(Arguments& a)
{
    GLsizei most = a.integer(), length = 0;
    size_t size = most > 0 && most <= 4096 ? static_cast<size_t>(most) : 64;
    char* log = reinterpret_cast<char*>(a.world.memory(size, a.input));
    bool fits = most <= 64 || size == static_cast<size_t>(most);
    glGetInfoLogARB({}, fits ? most : 64, a.input.byte() & 1 ? &length : nullptr, a.input.byte() & 3 ? log : nullptr);
}

void shaderSource(Arguments& a)
{
    const GLcharARB* texts[1] = {"void main() {}"};
    glShaderSourceARB({}, 1, texts, a.input.byte() & 1 ? a.array<const GLint>(1) : nullptr);
}

constexpr Call Calls[] = {
    {"glAlphaFunc", plain<glAlphaFunc>},
    {"glAttachObjectARB", plain<glAttachObjectARB>},
    {"glBitmap", plain<glBitmap>},
    {"glCallLists", plain<glCallLists>},
    {"glClientActiveTextureARB", plain<glClientActiveTextureARB>},
    {"glColorPointer", plain<glColorPointer>},
    {"glCompileShaderARB", plain<glCompileShaderARB>},
    {"glCompressedTexImage1DARB", plain<glCompressedTexImage1DARB>},
    {"glCompressedTexImage2DARB", plain<glCompressedTexImage2DARB>},
    {"glCompressedTexSubImage1DARB", plain<glCompressedTexSubImage1DARB>},
    {"glCompressedTexSubImage2DARB", plain<glCompressedTexSubImage2DARB>},
    {"glCompressedTexSubImage3DARB", plain<glCompressedTexSubImage3DARB>},
    {"glCopyTexImage2D", plain<glCopyTexImage2D>},
    {"glCopyTexSubImage1D", plain<glCopyTexSubImage1D>},
    {"glCopyTexSubImage3D", plain<glCopyTexSubImage3D>},
    {"glCreateProgramObjectARB", plain<glCreateProgramObjectARB>},
    {"glCreateShaderObjectARB", plain<glCreateShaderObjectARB>},
    {"glDeleteLists", plain<glDeleteLists>},
    {"glDeleteObjectARB", plain<glDeleteObjectARB>},
    {"glDetachObjectARB", plain<glDetachObjectARB>},
    {"glGetCompressedTexImageARB", plain<glGetCompressedTexImageARB>},
    {"glGetInfoLogARB", infoLog},
    {"glGetObjectParameterivARB", plain<glGetObjectParameterivARB, 1>},
    {"glGetUniformLocationARB", plain<glGetUniformLocationARB>},
    {"glLineStipple", plain<glLineStipple>},
    {"glLineWidth", plain<glLineWidth>},
    {"glLinkProgramARB", plain<glLinkProgramARB>},
    {"glListBase", plain<glListBase>},
    {"glMultiTexCoord4fvARB", plain<glMultiTexCoord4fvARB>},
    {"glNormalPointer", plain<glNormalPointer>},
    {"glPointSize", plain<glPointSize>},
    {"glPolygonStipple", plain<glPolygonStipple, 128>},
    {"glPopAttrib", plain<glPopAttrib>},
    {"glPopClientAttrib", plain<glPopClientAttrib>},
    {"glProgramParameteriEXT", plain<glProgramParameteriEXT>},
    {"glPushAttrib", plain<glPushAttrib>},
    {"glPushClientAttrib", plain<glPushClientAttrib>},
    {"glRasterPos4fv", plain<glRasterPos4fv>},
    {"glScissor", plain<glScissor>},
    {"glSecondaryColorPointer", plain<glSecondaryColorPointer>},
    {"glShaderSourceARB", shaderSource},
    {"glTexCoord4fv", plain<glTexCoord4fv>},
    {"glTexCoordPointer", plain<glTexCoordPointer>},
    {"glUniform1fvARB", plain<glUniform1fvARB>},
    {"glUniform1iARB", plain<glUniform1iARB>},
    {"glUniform3fvARB", plain<glUniform3fvARB>},
    {"glUniform4fvARB", plain<glUniform4fvARB>},
    {"glUniformMatrix4fvARB", plain<glUniformMatrix4fvARB>},
    {"glUseProgramObjectARB", plain<glUseProgramObjectARB>},
    {"glValidateProgramARB", plain<glValidateProgramARB>},
};

} // namespace

const Chapter InertChapter{Calls, std::size(Calls)};

} // namespace fuzz::api
