/* SPDX-License-Identifier: Apache-2.0
 *
 * libZALMetal: the part of desktop OpenGL that an older renderer needs, carried out on Metal. This header is the host's
 * side: contexts, layers, presentation. The GL entry points are in ZALMetalGL.h. Both serve C and C++.
 *
 * What the library does not do: GLSL, renderbuffers, display lists, attribute stacks, vertex arrays in client memory,
 * the fixed-function pipeline (draws need both a vertex and a fragment program), scissor and alpha tests, stipples,
 * line widths, compressed textures, glGetString(GL_VERSION), more than one current context in a process. Calls that
 * belong to these either do not exist or do nothing, as the porting guide lists.
 *
 * Threads: there is one current context for the whole process, not one for each thread, and there are no locks. Make
 * all calls, those of GL included, from one thread at a time. A change of an NSView's frame counts as a call: AppKit
 * posts it on the main thread, so either draw there or hold the drawing thread meanwhile.
 *
 * Objects of Metal and AppKit go in and out as untyped pointers: an id<MTLCommandQueue>, an NSView*, an id<MTLTexture>;
 * in metal-cpp's spelling a MTL::CommandQueue*, a MTL::Texture*. None is retained unless a call says so.
 *
 * Environment, read whenever a context is made; a value that cannot be read is ignored with a line in the log:
 *
 * - ZALMETAL_DEVICE_INDEX: which of the machine's devices to take when the host gives no queue, counted from 0; -1, the
 *   default, is the system's choice
 * - ZALMETAL_GPU_CAPTURE: 1 records a trace document, "ZALMetal.m.gputrace", in the working directory, between glEnable
 *   and glDisable of GL_DEBUG_CAPTURE_SCOPE_ZAL; default 0
 * - ZALMETAL_GPU_CAPTURE_AT_START: 1 begins to record as soon as the layer is made; default 0
 * - ZALMETAL_DEVICE_WRAPPER: 1 asks Metal for its validating device wrapper; default 0
 *
 * Read once: ZALMETAL_LOG_LEVEL, see ZALMetalSetLogLevel. Read with each program: ZALMETAL_SHADER_DUMP_DIR and
 * ZALMETAL_SHADER_REPLACE_DIR, the folders that translated programs are written to and that hand-made sources are taken
 * from.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

/* Version of this header. Before 1.0 a new minor version may change the interface. */
#define ZALMETAL_VERSION_MAJOR 0
#define ZALMETAL_VERSION_MINOR 1
#define ZALMETAL_VERSION_PATCH 0

#if defined(__GNUC__)
#define ZALMETAL_API __attribute__((visibility("default")))
#else
#define ZALMETAL_API
#endif

/* A result that C++ receives through a reference and C through a pointer, which are the same to the machine. C++ passes
 * the variable, C its address. */
#if defined(__cplusplus)
#define ZALMETAL_OUT(type) type&
namespace MTL
{
class RenderPassDescriptor;
}
extern "C" {
#else
#define ZALMETAL_OUT(type) type*
#endif

/* What the calls below return, as an int. */
enum ZALMetalResult
{
    ZALMetalResultSuccess = 0,
    ZALMetalResultFormatMismatch = 1,      /* textures of other pixel formats than the first ones */
    ZALMetalResultInvalidArgument = 6,     /* a required pointer is null, or sizes differ */
    ZALMetalResultDeviceUnavailable = 256, /* no device, or not the share context's; an unknown texture name */
    ZALMetalResultOutOfMemory = 257,       /* a texture of the default framebuffer, or memory, could not be had */
    ZALMetalResultNotExpressible = 258,    /* a program holds what the dialect cannot express */
    ZALMetalResultBufferTooSmall = 259     /* the caller's buffer cannot hold the result */
};

/* A context: GL state, the objects it can name, and a place to present. Handles are made by the first two calls and end
 * with ZALMetalContextRelease or ZALMetalContextDestroy. */
typedef struct ZALMetalContext ZALMetalContext;

/* ---- Contexts ---------------------------------------------------------------------------------------------------- */

/* Makes a context on the device of a command queue and makes it current.
 *
 * - commandQueue: an id<MTLCommandQueue>, used but not retained; it must outlive the context. Null: the library takes
 *   the system's default device (or the one of ZALMETAL_DEVICE_INDEX) and makes a queue of its own.
 * - shareContext: a context whose buffers, textures, framebuffers and programs the new one sees under the same names,
 * or null. State such as bindings and enables is never shared. Both must be on the same device.
 * - outContext: the new context; left alone on failure.
 *
 * Returns 0; 256 when there is no such device, or it is not the share context's (three lines in the log name the two);
 * 257 without memory.
 * Work recorded for the context that was current is committed first. Call it with all other calls at rest.
 *
 * In C (C++ passes the variable itself for its address):
 *
 * @code
 * ZALMetalContext* context = NULL;
 * if (ZALMetalContextInitFromMTLCommandQueue(&context, NULL, queue) != ZALMetalResultSuccess) return 1;
 * glGenTextures(1, &texture);
 * @endcode
 */
ZALMETAL_API int ZALMetalContextInitFromMTLCommandQueue(ZALMETAL_OUT(ZALMetalContext*) outContext,
                                                        ZALMetalContext* shareContext, void* commandQueue);

/* Makes a context that shares another's GL objects and also its device, queue and command buffer, and makes it current.
 *
 * - shareContext: the other context.
 * - outContext: the new context; left alone on failure.
 *
 * Returns 0; 6 when shareContext is null; 257 without memory. Work recorded for the context that was current is committed first. The new
 * context takes the rendering paths for Intel GPUs whatever the device is. Call it with all other calls at rest.
 */
ZALMETAL_API int ZALMetalContextInitFromShareContext(ZALMETAL_OUT(ZALMetalContext*) outContext,
                                                     ZALMetalContext* shareContext);

/* Makes a context current for the whole process.
 *
 * - context: a context, or null for none: GL calls then return early and report nothing.
 *
 * Returns 0. When another context was current, the work recorded for it is committed first; for the context that is
 * current already nothing happens. Call it with all other calls at rest.
 */
ZALMETAL_API int ZALMetalContextMakeCurrent(ZALMetalContext* context);

/* Waits until the context's work is done and takes the handle back; a current context is then no longer current.
 *
 * - context: a context, not null; the pointer is invalid afterwards.
 *
 * Returns 0. GL state, Metal objects, layer and textures stay allocated until the process ends, because hosts that were
 * written against this call may still use them; see ZALMetalContextDestroy. The view keeps its layer. Call it on the
 * thread on which the view's frame changes.
 */
ZALMETAL_API int ZALMetalContextRelease(ZALMetalContext* context);

/* As ZALMetalContextRelease, and frees what only this context still used: GL state, layer and textures of the default
 * framebuffer, and, when no other context shares them, the GL objects and the Metal data. Use it when the process goes
 * on without the context.
 *
 * - context: a context, not null; the pointer is invalid afterwards, and so are Metal textures looked up through it.
 *
 * Returns 0. Call it on the thread on which the view's frame changes.
 */
ZALMETAL_API int ZALMetalContextDestroy(ZALMetalContext* context);

/* The current context, null when there is none. May be called at any time between other calls. */
ZALMETAL_API ZALMetalContext* ZALMetalContextGetCurrent(void);

/* ---- Drawable and presentation ----------------------------------------------------------------------------------- */

/* Attaches a new CAMetalLayer to a view and makes the default framebuffer in the size of the layer's drawable.
 *
 * - view: an NSView without a layer of this library; must outlive the context.
 * - pixelFormat: MTLPixelFormat of layer and colour buffer, such as 80 (BGRA8Unorm).
 * - depthPixelFormat: MTLPixelFormat of the depth buffer, such as 252 (Depth32Float); 0: none. 255
 *   (Depth24Unorm_Stencil8) becomes 260 (Depth32Float_Stencil8) where the device lacks it.
 *
 * Returns 0; 6 when the layer gives no drawable (the view is as before); 257 when a texture could not be made. A
 * context takes one view in its life; a second call stops the process.
 *
 * The framebuffer follows the view's frame from then on, in points: on a display with a backing scale factor above 1
 * call ZALMetalContextUpdateSize after a change, then set the layer's drawableSize yourself. glViewport is the host's
 * to set. Call it on the thread on which the view's frame changes.
 *
 * @code
 * if (ZALMetalContextCreateCAMetalLayer(context, view, 80, 252) != ZALMetalResultSuccess) return 1;
 * glViewport(0, 0, 640, 480);
 * glClearColor(0, 0, 0, 1);
 * glClear(GL_COLOR_BUFFER_BIT);
 * ZALMetalContextSwapBuffers(context);
 * @endcode
 */
ZALMETAL_API int ZALMetalContextCreateCAMetalLayer(ZALMetalContext* context, void* view, int pixelFormat,
                                                   int depthPixelFormat);

/* Uses the host's own textures as the default framebuffer, for a context without a layer. May be called again with
 * other textures of the same formats, for instance once a frame.
 *
 * - colorTexture: an id<MTLTexture> that can be rendered to; not retained, keep it until it is replaced and drawn.
 * - depthTexture: likewise, or null for no depth buffer.
 *
 * Returns 0; 6 when colorTexture is null or the context has a layer; 1 when the formats differ from those of the first
 * call, which stay in use.
 *
 * @code
 * if (ZALMetalContextSetMetalDrawable(context, colorTexture, NULL) != ZALMetalResultSuccess) return 1;
 * glClear(GL_COLOR_BUFFER_BIT);
 * glFinish();
 * @endcode
 */
ZALMETAL_API int ZALMetalContextSetMetalDrawable(ZALMetalContext* context, void* colorTexture, void* depthTexture);

/* Brings layer and default framebuffer to the size of the view's bounds, in points, when they differ; what was drawn is
 * then lost. A change of the view's frame does the same by itself.
 *
 * - context: a context with a layer.
 *
 * Returns 0; 257 when a texture could not be made. Call it on the thread on which the view's frame changes.
 */
ZALMETAL_API int ZALMetalContextUpdateSize(ZALMetalContext* context);

/* The drawable of the frame in progress, an id<CAMetalDrawable>, taken from the layer when there is none yet. The
 * library draws into it only in ZALMetalContextSwapBuffers. Borrowed; valid until the next swap, resize or release.
 *
 * - context: a context with a layer; without one the process stops.
 */
ZALMETAL_API void* ZALMetalContextEnsureDrawable(ZALMetalContext* context);

/* Forgets the drawable of the frame in progress, so that the next frame takes a new one. */
ZALMETAL_API void ZALMetalContextDrawableRelease(ZALMetalContext* context);

/* Copies the default framebuffer's colours, upright, into the layer's drawable, presents it and commits the recorded
 * work. Without a layer the work is committed and nothing presented. The framebuffer keeps its contents. Returns 0.
 */
ZALMETAL_API int ZALMetalContextSwapBuffers(ZALMetalContext* context);

/* A context's GL state; opaque. */
typedef struct ZALGLState ZALGLState;

/* A new MTLRenderPassDescriptor for the framebuffer that is bound now, with the draw buffers in use and, while their
 * tests are enabled, depth and stencil; all are loaded and stored. For a host that encodes passes of its own between GL
 * calls: it calls glFlush before and after.
 *
 * - state: the GL state of that context; null: the context's own.
 * - context: a context, not null.
 *
 * Returns the descriptor, which the caller releases.
 */
#if defined(__cplusplus)
ZALMETAL_API MTL::RenderPassDescriptor* ZALMetalContextNewRenderDescriptor(ZALGLState* state, ZALMetalContext* context);
#else
ZALMETAL_API void* ZALMetalContextNewRenderDescriptor(ZALGLState* state, ZALMetalContext* context);
#endif

/* ---- Lookup ------------------------------------------------------------------------------------------------------ */

/* A function whose real type is the entry point's. */
typedef void (*ZALMetalProc)(void);

/* The entry point of a name, of GL's ("glClear") or of this header's.
 *
 * - name: as the headers spell it; names of later GL versions or other suffixes are other names.
 *
 * Returns null when the library does not offer it. Needs no context and may be called at any time. For hosts that load
 * GL at run time: loaders that ask glGetString(GL_VERSION) stop at its null, so fill the table from here instead.
 *
 * @code
 * void (*clear)(GLbitfield) = (void (*)(GLbitfield))ZALMetalGetProcAddress("glClear");
 * if (!clear) return 1;
 * @endcode
 */
ZALMETAL_API ZALMetalProc ZALMetalGetProcAddress(const char* name);

/* ---- Diagnostics --------------------------------------------------------------------------------------------------- */

/* How grave a line of the log is. */
enum ZALMetalLogLevel
{
    ZALMetalLogLevelNone = 0,  /* as a setting: say nothing */
    ZALMetalLogLevelError = 1, /* something was not done: a pipeline that cannot be built, a command buffer that failed */
    ZALMetalLogLevelWarn = 2,  /* something was passed over: an unreadable variable, capture that the device lacks */
    ZALMetalLogLevelInfo = 3,  /* which device was chosen, what is being captured */
    ZALMetalLogLevelDebug = 4  /* pipelines as they are built, with the time taken */
};

/* Receives a line of the log. The text is valid during the call. GL errors are never said here; see glGetError. */
typedef void (*ZALMetalLogCallback)(int level, const char* message, void* user);

/* Which lines are said: those up to the level, from now on, in the whole process. Clamped to the levels there are. The
 * start value comes from ZALMETAL_LOG_LEVEL (none, error, warn, info, debug), read with the first line; without it,
 * info. The same line is said at most ten times and counted after that; this call begins the counts anew.
 */
ZALMETAL_API void ZALMetalSetLogLevel(int level);

/* Sends the lines to a function of the host instead of the system's log.
 *
 * - callback: called from within the library's calls, on their thread; it must make none of them. Null: the system's
 *   log again.
 * - user: handed to it as it is.
 *
 * Begins the counts of repeated lines anew.
 *
 * @code
 * ZALMetalSetLogCallback(onLine, logFile);
 * ZALMetalSetLogLevel(ZALMetalLogLevelDebug);
 * @endcode
 */
ZALMETAL_API void ZALMetalSetLogCallback(ZALMetalLogCallback callback, void* user);

/* What the library has done since the process began, all contexts together. Later versions add fields at the end. */
typedef struct ZALMetalCounters
{
    uint64_t draws;              /* draw commands sent to Metal, those of glBegin and glEnd included */
    uint64_t passes;             /* render passes begun, those of copies and presentation included */
    uint64_t commandBuffers;     /* command buffers committed */
    uint64_t pipelines;          /* pipeline states built */
    double pipelineMilliseconds; /* time spent building them, failed ones and the specialisation of programs included */
    uint64_t bytesUploaded;      /* to buffers and textures, as Metal receives them */
    uint64_t objects;            /* buffers, framebuffers, programs and textures alive now, by GL name */
    uint64_t messagesDropped;    /* lines of the log not said because they had been said ten times */
} ZALMetalCounters;

/* Copies the counters. A host that wants them for each frame subtracts those of the frame before.
 *
 * - counters: receives them; null: nothing happens.
 * - size: sizeof(ZALMetalCounters) as the host was compiled; only so many bytes are written.
 *
 * Needs no context.
 *
 * @code
 * ZALMetalCounters counters;
 * ZALMetalGetCounters(&counters, sizeof counters);
 * @endcode
 */
ZALMETAL_API void ZALMetalGetCounters(ZALMetalCounters* counters, size_t size);

/* ---- Textures ---------------------------------------------------------------------------------------------------- */

/* Copies one Metal texture to another of the same size, upside down, converting the pixel format, and commits the work.
 *
 * - src: an id<MTLTexture> that shaders can read.
 * - dst: an id<MTLTexture> that can be rendered to.
 *
 * Returns 0; 6 when one is null or their widths or heights differ. Rows run from the top in Metal and from the bottom
 * in GL; this call goes from one to the other.
 *
 * @code
 * if (ZALMetalContextCopyAndFlipMetalTexture(context, colorTexture, otherTexture) != ZALMetalResultSuccess) return 1;
 * @endcode
 */
ZALMETAL_API int ZALMetalContextCopyAndFlipMetalTexture(ZALMetalContext* context, void* src, void* dst);

/* The Metal texture behind a GL texture.
 *
 * - textureName: a name from glGenTextures.
 * - outTexture: an id<MTLTexture>, borrowed: valid until the texture gets another image or is deleted. Null on failure,
 *   for name 0, and for a texture without an image.
 *
 * Returns 0; 6 when the context is null; 256 when the name is unknown.
 *
 * @code
 * void* metalTexture = NULL;
 * if (ZALMetalContextGetMtlTextureFromGLTextureId(context, &metalTexture, texture) != ZALMetalResultSuccess) return 1;
 * @endcode
 */
ZALMETAL_API int ZALMetalContextGetMtlTextureFromGLTextureId(ZALMetalContext* context, ZALMETAL_OUT(void*) outTexture,
                                                             uint32_t textureName);

/* ---- Programs ---------------------------------------------------------------------------------------------------- */

/* Rewrites a standard assembly program into the dialect that glProgramStringARB reads here. glProgramStringARB itself
 * never rewrites: a host asks for it, once when it loads a program or beforehand with a tool.
 *
 * - text, length: the program, !!ARBvp1.0, !!ARBfp1.0, !!NVvp4.0 or !!NVfp4.0; no zero is needed behind it.
 * - out, outSize: receives the rewritten program with a zero behind it; null and 0 to ask for the size only.
 * - needed: receives the bytes that out must have, the zero included; 0 when there is no rewritten program; may be null.
 * - message, messageSize: receive what cannot be expressed, one line a fault, "LINE:COLUMN: error: what it is", cut to
 *   the size, always with a zero behind it; empty on success; null and 0 when it is not wanted.
 *
 * Returns 0; 258 when the program holds something that the dialect cannot express, or is no program; 259 when out is
 * too small (needed says what it must have, out is left alone); 6 when text, or a buffer with a size, is null; 257.
 *
 * The rewritten program needs from the host what the original needs, with these differences:
 *
 * - program.env[n] is program.local[128 + n] of every program: set it with glProgramLocalParameter4fvARB. Locals from
 *   128 on are then not the program's own.
 * - Conventional attributes are read from the generic ones that they alias: vertex.position from 0, vertex.normal from
 *   2, vertex.color from 3, vertex.texcoord[n] from 8 + n.
 * - Colours leave a vertex program as they are computed, not clamped to 0 and 1.
 * - result.fogcoord and the secondary colour of a vertex program are dropped: nothing here could read them.
 *
 * Not expressible are address registers, fog, light and material state, matrices other than modelview, projection, mvp
 * and texture 0 to 3, attributes other than the above, 1D and shadow texture targets, and biased sampling.
 *
 * Rewriting a rewritten program changes nothing. The call needs no context and may be made from any thread.
 *
 * @code
 * if (ZALMetalNormaliseProgram(text, length, program, size, &needed, message, messageSize) != 0) return 1;
 * glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, (GLsizei)(needed - 1), program);
 * @endcode
 */
ZALMETAL_API int ZALMetalNormaliseProgram(const char* text, size_t length, char* out, size_t outSize, size_t* needed,
                                          char* message, size_t messageSize);

#if defined(__cplusplus)
}
#endif
