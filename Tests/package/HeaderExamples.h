/* SPDX-License-Identifier: Apache-2.0
 * The examples of the public headers, word for word, each in a function that returns 0 when it went through. */
#pragma once

#include <ZALMetal/ZALMetal.h>

#if defined(__cplusplus)
extern "C" {
#endif
int exampleContext(void* queue, ZALMetalContext** made, uint32_t* madeTexture);
int exampleLayer(ZALMetalContext* context, void* view);
int exampleHostTextures(ZALMetalContext* context, void* colorTexture);
int exampleCopy(ZALMetalContext* context, void* colorTexture, void* otherTexture);
int exampleProcAddress(void);
int exampleLog(ZALMetalLogCallback onLine, void* logFile);
int exampleCounters(uint64_t* draws);
int exampleLookUp(ZALMetalContext* context, uint32_t texture, void** found);
int exampleNormalise(const char* text, size_t length, char* program, size_t size, char* message, size_t messageSize);
#if defined(__cplusplus)
}
#endif
