/* SPDX-License-Identifier: Apache-2.0
 *
 * The GL entry points of libZALMetal: the platform's own GL headers with prototypes switched on, for C and C++.
 *
 * What this is not: a promise that every name in those headers exists. A call that the library does not offer fails
 * when the host is linked; the porting guide lists what is there, and what is there only to link.
 *
 * Include this instead of the platform's headers, or before them, in every source that calls GL. All calls work on the
 * current context and come from one thread at a time (see ZALMetal.h); without a current context they return early, and
 * queries write nothing. Errors are read with glGetError, which reports the last one raised.
 */
#pragma once

#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif

#if defined(__APPLE__)
#ifndef GL_SILENCE_DEPRECATION
#define GL_SILENCE_DEPRECATION 1 /* what is deprecated is the system's own GL */
#endif
#include <OpenGL/gl.h>

#include <OpenGL/glext.h>
#else
#include <GL/gl.h>

#include <GL/glext.h>
#endif

/* Format for glProgramStringARB: the text is Metal shading language that the host has written itself, with the textures
 * and attributes it uses declared in comments. The porting guide has the declarations and the interface to keep. */
#define GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL 0xF030

/* Capability for glEnable and glDisable: begins and ends the recording of a trace document. Without
 * ZALMETAL_GPU_CAPTURE in the environment it does nothing; after the first glDisable it cannot be begun again. */
#define GL_DEBUG_CAPTURE_SCOPE_ZAL 0xFEAD
