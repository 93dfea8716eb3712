// SPDX-License-Identifier: Apache-2.0
// What a device makes.
#include "execution/Atomics.h"
#include "execution/QueueThread.h"
#include "foundation/Strings.h"
#include "inspect/Counters.h"
#include "inspect/Inspect.h"
#include "inspect/ShaderFaults.h"
#include "shader/Loader.h"
#include "shader/cache/StoredCompiler.h"
#include "texturing/Sampling.h"

#include <algorithm>
#include <new>

using namespace softmetal;

namespace
{

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

constexpr NS::UInteger DefaultQueueLimit = 64; // command buffers that are not completed

DeviceObject* self(const MTL::Device* device)
{
    return cast<DeviceObject>(device);
}
const void* pointer(const void* object)
{
    return object;
}

uint32_t laneCount()
{
    static const uint32_t count = [] {
        uint32_t chosen = shader::chooseLanes();
        raster::setLanes(chosen);
        return chosen;
    }();
    return count;
}

shader::Compiler& compiler()
{
    static const abi::RuntimeTable runtime = [] {
        abi::RuntimeTable table = texturing::runtimeTable();
        table.loopLimitReached = inspect::noteShaderLimit;
        table.outside = inspect::noteOutsideBuffers;
        table.atomic = runAtomics;
        texturing::setOutsideTexelHandler(inspect::noteOutsideTexture);
        return table;
    }();
    return shader::theCompiler(runtime, laneCount());
}

std::string textOfObject(const NS::Object* object)
{
    return object ? castObject(object)->description() : std::string();
}

/// The number by which a program knows its language, such as 240 for 2.4.
std::string versionNumber(NS::UInteger version)
{
    constexpr NS::UInteger Newest = MTL::LanguageVersion3_1;
    if (version == 0) version = Newest;
    return std::to_string((version >> 16) * 100 + (version & 0xFFFF) * 10);
}

shader::CompileOptions optionsOf(const MTL::CompileOptions* options)
{
    shader::CompileOptions result;
    result.macros = {
        {"__METAL__", "1"},
        {"__METAL_MACOS__", "1"},
        {"__METAL_VERSION__", versionNumber(options ? options->languageVersion() : MTL::LanguageVersion{})}};
    if (!options) return result;
    result.fastMath = options->fastMathEnabled();
    NS::Dictionary* macros = options->preprocessorMacros();
    auto* keys = macros ? macros->keyEnumerator<NS::Object>() : nullptr;
    while (NS::Object* key = keys ? keys->nextObject() : nullptr)
        result.macros.emplace_back(textOfObject(key), textOfObject(macros->object<NS::Object>(key)));
    return result;
}

bool sensible(NS::UInteger length)
{
    return require(length > 0 && length <= LargestBuffer, Rule::BufferLength, length, LargestBuffer);
}

void noteBuffer(const MTL::Device* device, NS::UInteger length, MTL::ResourceOptions options, const MTL::Buffer* result)
{
    note(device, "newBuffer", arg("length", length), arg("options", options), arg("result", pointer(result)));
}

MTL::Buffer* makeBuffer(const MTL::Device* device, NS::UInteger length, MTL::ResourceOptions options)
{
    MTL::Buffer* result = nullptr;
    try {
        if (!inspect::fails("newBuffer") && sensible(length))
            result = api(new BufferObject(self(device), length, options));
    } catch (const std::bad_alloc&) {
        result = nullptr;
    }
    noteBuffer(device, length, options, result);
    return result;
}

} // namespace

MTL::CommandQueue* MTL::Device::newCommandQueue()
{
    return newCommandQueue(DefaultQueueLimit);
}

MTL::CommandQueue* MTL::Device::newCommandQueue(NS::UInteger maxCommandBufferCount)
{
    CommandQueueObject* queue = nullptr;
    if (!inspect::fails("newCommandQueue")) {
        laneCount();
        queue = new CommandQueueObject(self(this), makeQueueThread(self(this)->discards),
                                       std::max<NS::UInteger>(maxCommandBufferCount, 1));
    }
    note(this, "newCommandQueue", arg("limit", maxCommandBufferCount), arg("result", pointer(api(queue))));
    return api(queue);
}

// ---- resources -----------------------------------------------------------------------------------------------------

MTL::Buffer* MTL::Device::newBuffer(NS::UInteger length, ResourceOptions options)
{
    return makeBuffer(this, length, options);
}

MTL::Buffer* MTL::Device::newBuffer(const void* bytes, NS::UInteger length, ResourceOptions options)
{
    if (!require(bytes != nullptr, Rule::BufferNilBytes, length)) return nullptr;
    MTL::Buffer* result = makeBuffer(this, length, options);
    if (!result) return nullptr;
    std::copy_n(static_cast<const uint8_t*>(bytes), length, cast<BufferObject>(result)->memory.data());
    inspect::count(inspect::counters.bytesUploaded, length);
    return result;
}

MTL::Buffer* MTL::Device::newBuffer(const void* bytes, NS::UInteger length, ResourceOptions options,
                                    const std::function<void(void*, NS::UInteger)>& deallocator)
{
    MTL::Buffer* result = nullptr;
    if (!inspect::fails("newBuffer") && require(bytes != nullptr, Rule::BufferNilBytes, length) && sensible(length))
        result = api(new BufferObject(self(this), const_cast<void*>(bytes), length, options,
                                      deallocator)); // the API's own signature: the memory is written
    noteBuffer(this, length, options, result);
    return result;
}

MTL::Texture* MTL::Device::newTexture(const TextureDescriptor* descriptor)
{
    if (inspect::fails("newTexture") || !require(descriptor != nullptr, Rule::DeviceNilDescriptor, "newTexture"))
        return nullptr;
    const auto& d = *cast<TextureDescriptorObject>(descriptor);
    TextureObject* texture = TextureObject::make(self(this), d);
    note(this, "newTexture", arg("type", d.textureType), arg("format", d.pixelFormat), arg("width", d.width),
         arg("height", d.height), arg("depth", d.depth), arg("levels", d.mipmapLevelCount),
         arg("storage", d.storageMode), arg("usage", d.usage), arg("result", pointer(api(texture))));
    return api(texture);
}

// ---- states --------------------------------------------------------------------------------------------------------

MTL::SamplerState* MTL::Device::newSamplerState(const SamplerDescriptor* descriptor)
{
    if (inspect::fails("newSamplerState") ||
        !require(descriptor != nullptr, Rule::DeviceNilDescriptor, "newSamplerState"))
        return nullptr;
    const auto& d = *cast<SamplerDescriptorObject>(descriptor);
    MTL::SamplerState* result = api(new SamplerStateObject(self(this), d));
    note(this, "newSamplerState", arg("minFilter", d.minFilter), arg("magFilter", d.magFilter),
         arg("mipFilter", d.mipFilter), arg("s", d.sAddressMode), arg("t", d.tAddressMode), arg("r", d.rAddressMode),
         arg("normalized", d.normalizedCoordinates), arg("anisotropy", d.maxAnisotropy), arg("border", d.borderColor),
         arg("lodMin", d.lodMinClamp), arg("lodMax", d.lodMaxClamp), arg("result", pointer(result)));
    return result;
}

namespace
{

/// What a face's stencil test says; a face without one has the descriptor's defaults.
void noteStencil(std::vector<SoftMetal::LogArgument>& arguments, const std::string& face,
                 const softmetal::Object* stencil)
{
    const auto* s = dynamic_cast<const StencilDescriptorObject*>(stencil);
    if (!s) return;
    auto add = [&](const char* name, uint64_t value) {
        arguments.push_back({face + name, static_cast<double>(value), nullptr, {}});
    };
    add("Compare", s->stencilCompareFunction);
    add("Fail", s->stencilFailureOperation);
    add("DepthFail", s->depthFailureOperation);
    add("Pass", s->depthStencilPassOperation);
    add("ReadMask", s->readMask);
    add("WriteMask", s->writeMask);
}

} // namespace

MTL::DepthStencilState* MTL::Device::newDepthStencilState(const DepthStencilDescriptor* descriptor)
{
    if (inspect::fails("newDepthStencilState") ||
        !require(descriptor != nullptr, Rule::DeviceNilDescriptor, "newDepthStencilState"))
        return nullptr;
    const auto& d = *cast<DepthStencilDescriptorObject>(descriptor);
    MTL::DepthStencilState* result = api(new DepthStencilStateObject(self(this), d));
    if (!inspect::logging()) return result;
    std::vector<SoftMetal::LogArgument> arguments{arg("compare", d.depthCompareFunction),
                                                  arg("write", d.depthWriteEnabled), arg("result", pointer(result))};
    noteStencil(arguments, "front", d.frontFaceStencil.get());
    noteStencil(arguments, "back", d.backFaceStencil.get());
    inspect::logCall(this, "newDepthStencilState", std::move(arguments));
    return result;
}

// Passes run one after the other, so that a fence is no more than its name.
MTL::Fence* MTL::Device::newFence()
{
    MTL::Fence* result = inspect::fails("newFence") ? nullptr : api(new FenceObject(self(this)));
    note(this, "newFence", arg("result", pointer(result)));
    return result;
}

// ---- programs ------------------------------------------------------------------------------------------------------

MTL::Library* MTL::Device::newLibrary(const NS::String* source, const CompileOptions* options, NS::Error** error)
{
    std::string messages;
    inspect::BuildTime time("library");
    std::shared_ptr<shader::Library> library;
    if (inspect::fails("newLibrary")) {
        messages = "the library could not be made (injected fault)";
    } else if (!source) {
        messages = "the source must not be nil";
    } else {
        library = compiler().compile(textOf(source), optionsOf(options), messages);
    }
    LibraryObject* result = library ? new LibraryObject(self(this), std::move(library)) : nullptr;
    if (inspect::logging())
        note(this, "newLibrary", arg("source", textOf(source)), arg("result", pointer(api(result))));
    if (!result) report(error, "MTLLibraryErrorDomain", LibraryErrorCompileFailure, messages);
    return api(result);
}

MTL::Library* MTL::Device::newDefaultLibrary()
{
    return nullptr;
} // a process on this platform carries none

namespace
{

/// Formats, and for each colour attachment that was asked for its blending: "writeMask2" is that of attachment 2.
void notePipeline(const MTL::Device* device, const RenderPipelineDescriptorObject& d,
                  const MTL::RenderPipelineState* result)
{
    if (!inspect::logging()) return;
    std::vector<SoftMetal::LogArgument> arguments{
        arg("result", pointer(result)), arg("vertexFunction", static_cast<const void*>(d.vertexFunction.get())),
        arg("fragmentFunction", static_cast<const void*>(d.fragmentFunction.get())),
        arg("depthFormat", d.depthAttachmentPixelFormat), arg("stencilFormat", d.stencilAttachmentPixelFormat)};
    for (size_t i = 0; i < d.colorAttachments->size(); ++i) {
        const auto* c = d.colorAttachments->known(i);
        if (!c) continue;
        auto add = [&](const char* name, uint64_t value) {
            arguments.push_back({name + std::to_string(i), static_cast<double>(value), nullptr, {}});
        };
        add("format", c->pixelFormat);
        add("blending", c->blendingEnabled);
        add("rgbOperation", c->rgbBlendOperation);
        add("alphaOperation", c->alphaBlendOperation);
        add("sourceRGB", c->sourceRGBBlendFactor);
        add("sourceAlpha", c->sourceAlphaBlendFactor);
        add("destinationRGB", c->destinationRGBBlendFactor);
        add("destinationAlpha", c->destinationAlphaBlendFactor);
        add("writeMask", c->writeMask);
    }
    inspect::logCall(device, "newRenderPipelineState", std::move(arguments));
}

} // namespace

MTL::RenderPipelineState* MTL::Device::newRenderPipelineState(const RenderPipelineDescriptor* descriptor,
                                                              NS::Error** error)
{
    std::string why;
    inspect::BuildTime time("pipeline state");
    RenderPipelineStateObject* state = nullptr;
    if (inspect::fails("newRenderPipelineState"))
        why = "the pipeline state could not be made (injected fault)";
    else if (!descriptor)
        why = "the descriptor must not be nil";
    else
        state = RenderPipelineStateObject::make(self(this), *cast<RenderPipelineDescriptorObject>(descriptor), why);
    if (descriptor) notePipeline(this, *cast<RenderPipelineDescriptorObject>(descriptor), api(state));
    if (state)
        inspect::count(inspect::counters.pipelines);
    else
        report(error, "MTLRenderPipelineErrorDomain", 1, why);
    return api(state);
}

// The work is done before the call returns, which callers of these calls cannot tell from a quick machine.
void MTL::Device::newLibrary(const NS::String* source, const CompileOptions* options,
                             const NewLibraryCompletionHandlerFunction& completionHandler)
{
    NS::Error* error = nullptr;
    MTL::Library* library = newLibrary(source, options, &error);
    completionHandler(library, error);
    if (library) library->release();
}

void MTL::Device::newRenderPipelineState(const RenderPipelineDescriptor* descriptor,
                                         const NewRenderPipelineStateCompletionHandlerFunction& completionHandler)
{
    NS::Error* error = nullptr;
    MTL::RenderPipelineState* state = newRenderPipelineState(descriptor, &error);
    completionHandler(state, error);
    if (state) state->release();
}

namespace SoftMetal
{

uint32_t lanes()
{
    return laneCount();
}

ShaderWork shaderWork()
{
    shader::CompileCounts counts = shader::compileCounts();
    return {counts.parsed, counts.generated, counts.librariesFound, counts.functionsFound};
}

} // namespace SoftMetal
