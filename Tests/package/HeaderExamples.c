/* SPDX-License-Identifier: Apache-2.0 */
#include "package/HeaderExamples.h"

#include <ZALMetal/ZALMetalGL.h>

#include <stddef.h>

int exampleContext(void* queue, ZALMetalContext** made, uint32_t* madeTexture)
{
    GLuint texture = 0;
    ZALMetalContext* context = NULL;
    if (ZALMetalContextInitFromMTLCommandQueue(&context, NULL, queue) != ZALMetalResultSuccess) return 1;
    glGenTextures(1, &texture);
    *made = context;
    *madeTexture = texture;
    return 0;
}

int exampleLayer(ZALMetalContext* context, void* view)
{
    if (ZALMetalContextCreateCAMetalLayer(context, view, 80, 252) != ZALMetalResultSuccess) return 1;
    glViewport(0, 0, 640, 480);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    ZALMetalContextSwapBuffers(context);
    return 0;
}

int exampleHostTextures(ZALMetalContext* context, void* colorTexture)
{
    if (ZALMetalContextSetMetalDrawable(context, colorTexture, NULL) != ZALMetalResultSuccess) return 1;
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
    return 0;
}

int exampleCopy(ZALMetalContext* context, void* colorTexture, void* otherTexture)
{
    if (ZALMetalContextCopyAndFlipMetalTexture(context, colorTexture, otherTexture) != ZALMetalResultSuccess) return 1;
    return 0;
}

int exampleLookUp(ZALMetalContext* context, uint32_t texture, void** found)
{
    void* metalTexture = NULL;
    if (ZALMetalContextGetMtlTextureFromGLTextureId(context, &metalTexture, texture) != ZALMetalResultSuccess) return 1;
    *found = metalTexture;
    return 0;
}

int exampleProcAddress(void)
{
    void (*clear)(GLbitfield) = (void (*)(GLbitfield))ZALMetalGetProcAddress("glClear");
    if (!clear) return 1;
    clear(GL_COLOR_BUFFER_BIT);
    return 0;
}

int exampleLog(ZALMetalLogCallback onLine, void* logFile)
{
    ZALMetalSetLogCallback(onLine, logFile);
    ZALMetalSetLogLevel(ZALMetalLogLevelDebug);
    return 0;
}

int exampleCounters(uint64_t* draws)
{
    ZALMetalCounters counters;
    ZALMetalGetCounters(&counters, sizeof counters);
    *draws = counters.draws;
    return 0;
}

int exampleNormalise(const char* text, size_t length, char* program, size_t size, char* message, size_t messageSize)
{
    size_t needed = 0;
    if (ZALMetalNormaliseProgram(text, length, program, size, &needed, message, messageSize) != 0) return 1;
    glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, (GLsizei)(needed - 1), program);
    return 0;
}
