// SPDX-License-Identifier: Apache-2.0
#include "ZALGLState.h"

#include "ZALGLBeginEnd.h"
#include "ZALMetalData.h"

#include <new>

ZALMetalContext* g_currentContext = nullptr;

ZALGLState::ZALGLState(ZALGLContextObjects* objects) : contextObjects(objects), beginEnd(new (std::nothrow) ZALGLBeginEnd)
{
    for (MatrixStack& stack : matrixStacks) {
        for (int i = 0; i < 4; ++i)
            stack.entries[0][5 * i] = 1;
    }
}

ZALGLState::~ZALGLState()
{
    delete beginEnd;
}

// ---- Current context ------------------------------------------------------------------------------------------------

ZALMetalContext* GetCurrentMetalContext()
{
    return g_currentContext;
}

ZALGLState* GetCurrentGLState()
{
    return g_currentContext ? g_currentContext->glState : nullptr;
}

ZALMetalData* GetCurrentMetalData()
{
    return g_currentContext ? g_currentContext->metalData : nullptr;
}

ZALMetalState* GetCurrentMetalState()
{
    return g_currentContext ? g_currentContext->metalData->metalState : nullptr;
}

ZALMetalDrawable* GetMetalDrawable(ZALMetalContext* context)
{
    return context->drawable;
}

// ---- Errors ---------------------------------------------------------------------------------------------------------

void SetCurrentError(ZALGLState* state, GLenum error)
{
    // Kept on purpose: [last-error-wins] GL keeps the first error until it is asked for; here a later one replaces it.
    state->currentError = error;
}
