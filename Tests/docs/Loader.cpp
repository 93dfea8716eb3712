// SPDX-License-Identifier: Apache-2.0
// Loads one program as a host does and prints what is wrong with it:  docs_loader assembly|metal vertex|fragment FILE
// Exit status: 0 it compiles, 1 it does not, 2 bad usage or no device.
#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    GLenum format = std::string(argv[1]) == "metal" ? GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL : GL_PROGRAM_FORMAT_ASCII_ARB;
    GLenum target = std::string(argv[2]) == "vertex" ? GL_VERTEX_PROGRAM_ARB : GL_FRAGMENT_PROGRAM_ARB;
    std::ifstream file(argv[3]);
    ZALMetalContext* context = nullptr;
    if (!file || ZALMetalContextInitFromMTLCommandQueue(context, nullptr, nullptr) != ZALMetalResultSuccess) return 2;

    std::string text(std::istreambuf_iterator<char>(file), {});
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, format, static_cast<GLsizei>(text.size()), text.data());
    bool loaded = glGetError() == GL_NO_ERROR;
    if (!loaded) std::fprintf(stderr, "%s\n", reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB)));
    ZALMetalContextDestroy(context);
    return loaded ? 0 : 1;
}
