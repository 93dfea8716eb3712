// SPDX-License-Identifier: Apache-2.0
#include "ZALGLProgramObject.h"

#include "ZALGLContextObjects.h"
#include "ZALMetalLog.h"

#include <cstring>

namespace ZALMetal {

bool operator<(const FragmentProgramSpecializationKey& a, const FragmentProgramSpecializationKey& b)
{
    if (int o = std::memcmp(a.samplerSlots, b.samplerSlots, sizeof a.samplerSlots)) return o < 0;
    return std::memcmp(a.swizzleModes, b.swizzleModes, sizeof a.swizzleModes) < 0;
}

bool operator<(const VertexProgramSpecializationKey& a, const VertexProgramSpecializationKey& b)
{
    if (a.attributeMask != b.attributeMask) return a.attributeMask < b.attributeMask;
    if (int o = std::memcmp(a.samplerSlots, b.samplerSlots, sizeof a.samplerSlots)) return o < 0;
    return std::memcmp(a.swizzleModes, b.swizzleModes, sizeof a.swizzleModes) < 0;
}

} // namespace ZALMetal

namespace {

constexpr NS::UInteger SamplerConstants = 1000, SwizzleConstants = 1100, Units = 32, Attributes = 16;

template <class Cache>
void releaseAll(Cache& cache)
{
    for (auto* cell = cache.begin(); cell; cell = cache.cursor) {
        if (cell->value) cell->value->release();
        cache.erase_current();
    }
}

MTL::Function* makeFunction(MTL::Library* library, MTL::FunctionConstantValues* values, const int32_t* slots, const uint32_t* swizzles)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    values->setConstantValues(slots, MTL::DataTypeInt, NS::Range(SamplerConstants, Units));
    values->setConstantValues(swizzles, MTL::DataTypeUInt, NS::Range(SwizzleConstants, Units));
    NS::Error* error = nullptr;
    MTL::Function* function = library ? library->newFunction(NS::String::string("ShaderFunc", NS::UTF8StringEncoding), values, &error) : nullptr;
    if (error) ZALMetal::Log(ZALMetalLogLevelError, "ZAL Metal, Failed to specialise a program, error %s", error->localizedDescription()->utf8String());
    values->release();
    pool->release();
    return function;
}

} // namespace

void ZALGLProgramObject::Reset()
{
    releaseAll(_vertexFunctions);
    releaseAll(_fragmentFunctions);
    if (library) library->release();
    library = nullptr;
}

void ZALGLProgramObject::SetMTLLibrary(MTL::Library* newLibrary)
{
    Reset();
    library = newLibrary;
}

MTL::Function* ZALGLProgramObject::GetVertexMTLFunction(const ZALMetal::VertexProgramSpecializationKey& key)
{
    if (auto* cell = _vertexFunctions.find(key)) return cell->value;
    MTL::FunctionConstantValues* values = MTL::FunctionConstantValues::alloc()->init();
    bool enabled[Attributes];
    for (uint32_t i = 0; i < Attributes; ++i) enabled[i] = (key.attributeMask >> i & 1) != 0;
    values->setConstantValues(enabled, MTL::DataTypeBool, NS::Range(0, Attributes));
    MTL::Function* function = makeFunction(library, values, key.samplerSlots, key.swizzleModes);
    bool inserted = false;
    _vertexFunctions.insert(inserted, key, function);
    return function;
}

MTL::Function* ZALGLProgramObject::GetFragmentMTLFunction(const ZALMetal::FragmentProgramSpecializationKey& key)
{
    if (auto* cell = _fragmentFunctions.find(key)) return cell->value;
    MTL::Function* function = makeFunction(library, MTL::FunctionConstantValues::alloc()->init(), key.samplerSlots, key.swizzleModes);
    bool inserted = false;
    _fragmentFunctions.insert(inserted, key, function);
    return function;
}

ZALGLProgramObject* getBoundProgram(ZALGLState* state, GLenum target)
{
    uint32_t name = 0;
    if (target == GL_VERTEX_PROGRAM_ARB) name = state->pipelineDescription.boundProgramVertex;
    else if (target == GL_FRAGMENT_PROGRAM_ARB) name = state->pipelineDescription.boundProgramFragment;
    else SetCurrentError(state, GL_INVALID_VALUE);
    return name == 0 ? nullptr : state->contextObjects->programs.Find(name);
}
