// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ShaderBindings.h"
#include "VertexDescriptorCache.h"
#include "ZALGLState.h"

/// A loaded program: its Metal library, what it uses, and its functions by specialisation.
class ZALGLProgramObject
{
public:
    static constexpr int Locals = 256;

    ZALGLProgramObject() = default;
    ZALGLProgramObject(const ZALGLProgramObject&) = delete;
    ZALGLProgramObject& operator=(const ZALGLProgramObject&) = delete;
    ~ZALGLProgramObject() { Reset(); }

    /// Releases the library and every function.
    void Reset();
    void SetType(GLenum newType) { type = newType; }
    /// Takes over the caller's reference; null leaves the program without one.
    void SetMTLLibrary(MTL::Library* newLibrary);
    bool IsValid() const { return library != nullptr; }
    /// Owned by the program; null when the function cannot be made, which is remembered.
    MTL::Function* GetVertexMTLFunction(const ZALMetal::VertexProgramSpecializationKey& key);
    MTL::Function* GetFragmentMTLFunction(const ZALMetal::FragmentProgramSpecializationKey& key);

    GLenum type = 0;
    MTL::Library* library = nullptr;
    ZALMetal::ShaderBindings bindings;
    bool expandsPoints = false; // points are drawn as hexagons
    float locals[Locals][4] = {};
    ZALMetal::VertexDescriptorCache vertexDescriptors;

private:
    ZALM::Map<ZALMetal::VertexProgramSpecializationKey, MTL::Function*> _vertexFunctions;
    ZALM::Map<ZALMetal::FragmentProgramSpecializationKey, MTL::Function*> _fragmentFunctions;
};

/// The program bound to a target, null when there is none; an unknown target is GL_INVALID_VALUE.
ZALGLProgramObject* getBoundProgram(ZALGLState* state, GLenum target);
