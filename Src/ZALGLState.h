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
    float blendColor[4] = {0, 0, 0, 0};
    float clearColor[4] = {0, 0, 0, 0};
    float clearDepth = 1;
    uint32_t clearStencil = 0;

    // capabilities
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
    int32_t viewport[4] = {0, 0, 0, 0};                             // x, y, width, height

    // vertex arrays: together the context's GLVertexDescription
    uint32_t enabledAttribArrays = 0;
    GLVertexAttribDescription vertexAttribs[16];

    GLRenderPipelineDescription pipelineDescription;

    // matrices
    uint32_t matrixMode = 0; // 0 modelview, 1 projection, 2 to 5 texture units 0 to 3
    MatrixStack matrixStacks[6];

    // textures
    uint32_t activeTextureUnit = 0;
    uint32_t textureBindings[32][5] = {}; // names by unit and target: 1D, 2D, 3D, rectangle, cube

    // objects, immediate mode, program errors
    ZALGLContextObjects* contextObjects; // shared, not owned
    ZALGLBeginEnd* beginEnd;             // owned
    int32_t programErrorPosition = -1;
    char programErrorString[2048] = {};

    // configuration, read when a context is made and by few paths; no entry point changes it
    int32_t deviceIndex = -1; // -1: the system's default device
    uint8_t enableDebugGPUCapture = 0, debugCaptureAtStart = 0, useMetalDeviceWrapper = 0;
    uint8_t strictValidation = 0; // setters check their arguments
    uint8_t isIntelDevice = 1;

    // size of the default framebuffer
    uint32_t defaultFramebufferWidth = 0, defaultFramebufferHeight = 0;
};

/// The handle that a host holds.
struct ZALMetalContext
{
    ZALMetalData* metalData;
    ZALGLState* glState;
    ZALMetalDrawable* drawable;
};

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
