/* SPDX-License-Identifier: Apache-2.0
 * Names that stand in the manual's fragments without a declaration: what a host would have at that place. */
#pragma once

#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

extern ZALMetalContext *context, *first, *second;
extern void *queue, *view, *colorTexture, *depthTexture, *nextColorTexture, *nextDepthTexture;
extern GLuint texture, program;
extern const char* text;
extern size_t length;
extern int width, height;

#if defined(__cplusplus)
#include <AppKit/AppKit.hpp>
#include <Foundation/Foundation.hpp>
#include <Metal/Metal.hpp>
#include <QuartzCore/QuartzCore.hpp>
#endif

extern void draw(void), drawFrame(void);
