// SPDX-License-Identifier: Apache-2.0
// The GL state of one context, and how every entry point finds it.
#pragma once

#include "ZALGL.h"
#include "ZALGLDescriptions.h"

class ZALGLBeginEnd;
class ZALGLContextObjects;
class ZALMetalState;
struct ZALMetalData;
struct ZALMetalDrawable;

/// All GL state of one context but the objects, which contexts may share. Made and destroyed with its context; written
/// by the entry points, read by the Metal side when it encodes. Flags are bytes, 0 or 1; names are 0 for none.
struct ZALGLState
{
    struct MatrixStack
    {
        int32_t depth = 0;          // index of the top entry
        float entries[17][16] = {}; // column-major
    };

    explicit ZALGLState(ZALGLContextObjects* objects);
    ~ZALGLState();
    ZALGLState(const ZALGLState&) = delete;
    ZALGLState& operator=(const ZALGLState&) = delete;

    // blend colour and clear values
    float blendColor[4] = {0, 0, 0, 0}; // red, green, blue, alpha, unclamped
    float clearColor[4] = {0, 0, 0, 0}; // likewise
    float clearDepth = 1;               // 0 to 1
    uint32_t clearStencil = 0;

    // capabilities; that of blending stands in the pipeline description
    uint8_t cullFaceEnabled = 0, depthTestEnabled = 0, polygonOffsetFillEnabled = 0, stencilTestEnabled = 0;

    // rasterisation, depth and error
    GLenum cullFaceMode = GL_BACK;
    GLenum depthFunc = GL_LESS;
    uint8_t depthWriteMask = 1;
    GLenum currentError = GL_NO_ERROR;
    GLenum polygonMode = GL_FILL; // both faces
    float polygonOffsetFactor = 0, polygonOffsetUnits = 0;

    // stencil
    GLenum stencilFunc = GL_ALWAYS;
    int32_t stencilRef = 0;
    uint32_t stencilValueMask = 0xFFFFFFFF, stencilWriteMask = 0xFFFFFFFF;
    GLenum stencilFailOp = GL_KEEP, stencilDepthFailOp = GL_KEEP, stencilDepthPassOp = GL_KEEP;

    // buffer bindings and viewport
    uint32_t arrayBufferBinding = 0, elementArrayBufferBinding = 0; // names
    int32_t viewport[4] = {0, 0, 0, 0};                             // x, y, width, height; nothing else sets it

    // vertex arrays: together the context's GLVertexDescription
    uint32_t enabledAttribArrays = 0; // bit i: array i is enabled; the vertex array is array 0
    GLVertexAttribDescription vertexAttribs[16];

    // what selects a pipeline state, ready to be part of its cache's key
    GLRenderPipelineDescription pipelineDescription;

    // matrices
    uint32_t matrixMode = 0; // 0 modelview, 1 projection, 2 to 5 texture units 0 to 3
    MatrixStack matrixStacks[6];

    // textures
    uint32_t activeTextureUnit = 0;       // 0 to 31
    uint32_t textureBindings[32][5] = {}; // names by unit and target: 1D, 2D, 3D, rectangle, cube

    // objects, immediate mode, program errors
    ZALGLContextObjects* contextObjects; // shared, not owned
    ZALGLBeginEnd* beginEnd;             // owned; null without memory, and then no context is made of this
    int32_t programErrorPosition = -1;   // -1: the last program loaded without an error
    char programErrorString[2048] = {};  // empty: likewise

    // configuration, read when a context is made and by few paths; no entry point changes it
    int32_t deviceIndex = -1;          // -1: the system's default device; otherwise one of all devices
    uint8_t enableDebugGPUCapture = 0; // record a trace document
    uint8_t debugCaptureAtStart = 0;   // as soon as there is a layer
    uint8_t useMetalDeviceWrapper = 0; // ask for Metal's validating device
    uint8_t strictValidation = 0;      // setters check arguments that they take unseen otherwise
    uint8_t isIntelDevice = 1;         // take the ways of viewport, upload and mipmaps that Intel GPUs need

    // size of the default framebuffer in pixels, as of its first textures
    uint32_t defaultFramebufferWidth = 0, defaultFramebufferHeight = 0;
};

/// The handle that a host holds.
struct ZALMetalContext
{
    ZALMetalData* metalData;
    ZALGLState* glState;
    ZALMetalDrawable* drawable;
};

/// The one current context of the process, null for none. Only the context API writes it.
extern ZALMetalContext* g_currentContext;

ZALMetalContext* GetCurrentMetalContext();
ZALGLState* GetCurrentGLState();       // null without a current context
ZALMetalData* GetCurrentMetalData();   // likewise
ZALMetalState* GetCurrentMetalState(); // likewise
ZALMetalDrawable* GetMetalDrawable(ZALMetalContext* context);

/// The last error raised wins.
void SetCurrentError(ZALGLState* state, GLenum error);

/// Reads the debugging switches from the environment: ZALMETAL_DEVICE_INDEX, ZALMETAL_GPU_CAPTURE,
/// ZALMETAL_GPU_CAPTURE_AT_START, ZALMETAL_DEVICE_WRAPPER.
void ApplyEnvironmentSwitches(ZALGLState& state);
