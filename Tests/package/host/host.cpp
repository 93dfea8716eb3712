// SPDX-License-Identifier: Apache-2.0
// A host in C++ that also uses Metal's own interface: a program that has to be compiled, on a queue of its own.
#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <Metal/Metal.hpp>
#include <SoftMetal/SoftMetal.hpp>

#include <cstdio>
#include <cstring>

int main()
{
    SoftMetal::setValidation(SoftMetal::Validation::Abort);
    auto pool = NS::TransferPtr(NS::AutoreleasePool::alloc()->init());
    MTL::Device* device = MTL::CreateSystemDefaultDevice();
    MTL::CommandQueue* queue = device->newCommandQueue();
    ZALMetalContext* context = nullptr;
    if (ZALMetalContextInitFromMTLCommandQueue(context, nullptr, queue) != ZALMetalResultSuccess) return 1;
    const char program[] = "!!ARBfp1.0\nMOV result.color, 1.0;\nEND\n";
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, name);
    glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(program)), program);
    bool loaded = glGetError() == GL_NO_ERROR;
    ZALMetalContextDestroy(context);
    queue->release();
    device->release();
    std::puts(loaded ? "loaded" : "refused");
    return 0;
}
