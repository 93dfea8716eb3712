// SPDX-License-Identifier: Apache-2.0
// glProgramStringARB on any bytes, in both formats and for both targets. The first byte chooses them. The shading
// language's compiler is not reached: making the library fails at once.
#include "fuzz/Input.h"

#include <SoftMetal/SoftMetal.hpp>

#include <ZALMetal/ZALMetalGL.h>

#include <ZALMetal/ZALMetal.h>

#include <cstring>

namespace
{

/// A context with a program bound to each target; it lives as long as the process.
ZALMetalContext* makeContext()
{
    SoftMetal::setLogSink([](const std::string&) {}); // a line for every input would be all that this does
    ZALMetalContext* context = nullptr;
    fuzz::require(ZALMetalContextInitFromMTLCommandQueue(context, nullptr, nullptr) == 0);
    GLuint names[2] = {};
    glGenProgramsARB(2, names);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, names[0]);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, names[1]);
    SoftMetal::injectFault("newLibrary", 1, true);
    return context;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static ZALMetalContext* const context = makeContext();
    fuzz::require(context == ZALMetalContextGetCurrent());

    fuzz::Input input(data, size);
    const uint8_t choice = input.byte();
    const GLenum target = (choice & 1) != 0 ? GL_VERTEX_PROGRAM_ARB : GL_FRAGMENT_PROGRAM_ARB;
    const GLenum format = (choice & 2) != 0 ? GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL : GL_PROGRAM_FORMAT_ASCII_ARB;
    glProgramStringARB(target, format, static_cast<GLsizei>(input.rest().size()), input.rest().data());

    const GLenum error = glGetError();
    fuzz::require(error == GL_INVALID_OPERATION || error == GL_INVALID_VALUE); // there is never a library
    const auto* words = reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
    fuzz::require(words && std::strlen(words) < 2048);
    return 0;
}
