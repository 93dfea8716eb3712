// SPDX-License-Identifier: Apache-2.0
// What callers fill in before they make something: plain property bags, with Metal's default for every property.
#pragma once

#include "foundation/Object.h"

#include <Metal/Metal.hpp>

#include <array>
#include <limits>

namespace softmetal {

template <class T>
Object* copyOf(const T& object)
{
    return new T(object);
}

/// An array of descriptors that are made when they are first asked for.
template <class Api, class Element, size_t Count>
class DescriptorArray final : public ObjectOf<Api>
{
public:
    DescriptorArray() = default;
    DescriptorArray(const DescriptorArray& other) : ObjectOf<Api>()
    {
        for (size_t i = 0; i < Count; ++i)
            if (other.elements_[i]) elements_[i] = Ref<Element>::adopt(static_cast<Element*>(other.elements_[i]->copy()));
    }
    const char* className() const override { return "MTLDescriptorArray"; }

    /// Null beyond the end.
    Element* at(size_t index)
    {
        if (index >= Count) return nullptr;
        if (!elements_[index]) elements_[index] = Ref<Element>::adopt(new Element);
        return elements_[index].get();
    }
    /// Null when nobody has asked for it.
    const Element* known(size_t index) const { return index < Count ? elements_[index].get() : nullptr; }
    void set(size_t index, const Element* element)
    {
        if (index < Count) elements_[index] = element ? Ref<Element>::adopt(static_cast<Element*>(element->copy())) : Ref<Element>();
    }
    static constexpr size_t size() { return Count; }

private:
    std::array<Ref<Element>, Count> elements_;
};

class SamplerDescriptorObject final : public ObjectOf<MTL::SamplerDescriptor>
{
public:
    MTL::SamplerMinMagFilter minFilter = {};
    MTL::SamplerMinMagFilter magFilter = {};
    MTL::SamplerMipFilter mipFilter = {};
    NS::UInteger maxAnisotropy = 1;
    MTL::SamplerAddressMode sAddressMode = {};
    MTL::SamplerAddressMode tAddressMode = {};
    MTL::SamplerAddressMode rAddressMode = {};
    MTL::SamplerBorderColor borderColor = {};
    bool normalizedCoordinates = true;
    float lodMinClamp = {};
    float lodMaxClamp = std::numeric_limits<float>::max();
    MTL::CompareFunction compareFunction = MTL::CompareFunctionNever;
    Ref<Object> label;

    const char* className() const override { return "MTLSamplerDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class StencilDescriptorObject final : public ObjectOf<MTL::StencilDescriptor>
{
public:
    MTL::CompareFunction stencilCompareFunction = MTL::CompareFunctionAlways;
    MTL::StencilOperation stencilFailureOperation = {};
    MTL::StencilOperation depthFailureOperation = {};
    MTL::StencilOperation depthStencilPassOperation = {};
    uint32_t readMask = 0xFFFFFFFF;
    uint32_t writeMask = 0xFFFFFFFF;

    const char* className() const override { return "MTLStencilDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class DepthStencilDescriptorObject final : public ObjectOf<MTL::DepthStencilDescriptor>
{
public:
    MTL::CompareFunction depthCompareFunction = MTL::CompareFunctionAlways;
    bool depthWriteEnabled = {};
    Ref<Object> frontFaceStencil; // never null
    Ref<Object> backFaceStencil;  // never null
    Ref<Object> label;
    DepthStencilDescriptorObject();
    DepthStencilDescriptorObject(const DepthStencilDescriptorObject& other);

    const char* className() const override { return "MTLDepthStencilDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class VertexBufferLayoutDescriptorObject final : public ObjectOf<MTL::VertexBufferLayoutDescriptor>
{
public:
    NS::UInteger stride = {};
    MTL::VertexStepFunction stepFunction = MTL::VertexStepFunctionPerVertex;
    NS::UInteger stepRate = 1;

    const char* className() const override { return "MTLVertexBufferLayoutDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class VertexAttributeDescriptorObject final : public ObjectOf<MTL::VertexAttributeDescriptor>
{
public:
    MTL::VertexFormat format = {};
    NS::UInteger offset = {};
    NS::UInteger bufferIndex = {};

    const char* className() const override { return "MTLVertexAttributeDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class RenderPassAttachmentDescriptorObject : public ObjectOf<MTL::RenderPassAttachmentDescriptor>
{
public:
    Ref<Object> texture;
    NS::UInteger level = {};
    NS::UInteger slice = {};
    NS::UInteger depthPlane = {};
    Ref<Object> resolveTexture;
    NS::UInteger resolveLevel = {};
    NS::UInteger resolveSlice = {};
    NS::UInteger resolveDepthPlane = {};
    MTL::LoadAction loadAction = {};
    MTL::StoreAction storeAction = {};

    const char* className() const override { return "MTLRenderPassAttachmentDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class RenderPassColorAttachmentDescriptorObject final : public RenderPassAttachmentDescriptorObject
{
public:
    MTL::ClearColor clearColor = {0, 0, 0, 1};

    RenderPassColorAttachmentDescriptorObject() { storeAction = MTL::StoreActionStore; }
    const char* className() const override { return "MTLRenderPassColorAttachmentDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class RenderPassDepthAttachmentDescriptorObject final : public RenderPassAttachmentDescriptorObject
{
public:
    double clearDepth = 1.0;
    MTL::MultisampleDepthResolveFilter depthResolveFilter = {};

    RenderPassDepthAttachmentDescriptorObject() { loadAction = MTL::LoadActionClear; }
    const char* className() const override { return "MTLRenderPassDepthAttachmentDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class RenderPassStencilAttachmentDescriptorObject final : public RenderPassAttachmentDescriptorObject
{
public:
    uint32_t clearStencil = {};
    MTL::MultisampleStencilResolveFilter stencilResolveFilter = {};

    RenderPassStencilAttachmentDescriptorObject() { loadAction = MTL::LoadActionClear; }
    const char* className() const override { return "MTLRenderPassStencilAttachmentDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

using RenderPassColorAttachmentDescriptorArrayObject = DescriptorArray<MTL::RenderPassColorAttachmentDescriptorArray, RenderPassColorAttachmentDescriptorObject, 8>;

class RenderPassDescriptorObject final : public ObjectOf<MTL::RenderPassDescriptor>
{
public:
    Ref<Object> depthAttachment;
    Ref<Object> stencilAttachment;
    Ref<Object> visibilityResultBuffer;
    NS::UInteger renderTargetArrayLength = {};
    NS::UInteger defaultRasterSampleCount = {};
    NS::UInteger renderTargetWidth = {};
    NS::UInteger renderTargetHeight = {};
    Ref<RenderPassColorAttachmentDescriptorArrayObject> colorAttachments = Ref<RenderPassColorAttachmentDescriptorArrayObject>::adopt(new RenderPassColorAttachmentDescriptorArrayObject);
    RenderPassDescriptorObject();
    RenderPassDescriptorObject(const RenderPassDescriptorObject& other);

    const char* className() const override { return "MTLRenderPassDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class RenderPipelineColorAttachmentDescriptorObject final : public ObjectOf<MTL::RenderPipelineColorAttachmentDescriptor>
{
public:
    MTL::PixelFormat pixelFormat = {};
    bool blendingEnabled = {};
    MTL::BlendFactor sourceRGBBlendFactor = MTL::BlendFactorOne;
    MTL::BlendFactor destinationRGBBlendFactor = {};
    MTL::BlendOperation rgbBlendOperation = {};
    MTL::BlendFactor sourceAlphaBlendFactor = MTL::BlendFactorOne;
    MTL::BlendFactor destinationAlphaBlendFactor = {};
    MTL::BlendOperation alphaBlendOperation = {};
    MTL::ColorWriteMask writeMask = MTL::ColorWriteMaskAll;

    const char* className() const override { return "MTLRenderPipelineColorAttachmentDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

using RenderPipelineColorAttachmentDescriptorArrayObject = DescriptorArray<MTL::RenderPipelineColorAttachmentDescriptorArray, RenderPipelineColorAttachmentDescriptorObject, 8>;

class RenderPipelineDescriptorObject final : public ObjectOf<MTL::RenderPipelineDescriptor>
{
public:
    Ref<Object> label;
    Ref<Object> vertexFunction;
    Ref<Object> fragmentFunction;
    Ref<Object> vertexDescriptor;
    NS::UInteger rasterSampleCount = 1;
    bool alphaToCoverageEnabled = {};
    bool alphaToOneEnabled = {};
    bool rasterizationEnabled = true;
    MTL::PixelFormat depthAttachmentPixelFormat = {};
    MTL::PixelFormat stencilAttachmentPixelFormat = {};
    MTL::PrimitiveTopologyClass inputPrimitiveTopology = {};
    Ref<RenderPipelineColorAttachmentDescriptorArrayObject> colorAttachments = Ref<RenderPipelineColorAttachmentDescriptorArrayObject>::adopt(new RenderPipelineColorAttachmentDescriptorArrayObject);
    RenderPipelineDescriptorObject() = default;
    RenderPipelineDescriptorObject(const RenderPipelineDescriptorObject& other);

    const char* className() const override { return "MTLRenderPipelineDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class TextureDescriptorObject final : public ObjectOf<MTL::TextureDescriptor>
{
public:
    MTL::TextureType textureType = MTL::TextureType2D;
    MTL::PixelFormat pixelFormat = MTL::PixelFormatRGBA8Unorm;
    NS::UInteger width = 1;
    NS::UInteger height = 1;
    NS::UInteger depth = 1;
    NS::UInteger mipmapLevelCount = 1;
    NS::UInteger sampleCount = 1;
    NS::UInteger arrayLength = 1;
    MTL::CPUCacheMode cpuCacheMode = {};
    MTL::StorageMode storageMode = MTL::StorageModeManaged;
    MTL::HazardTrackingMode hazardTrackingMode = {};
    MTL::TextureUsage usage = MTL::TextureUsageShaderRead;
    MTL::TextureSwizzleChannels swizzle = {};

    const char* className() const override { return "MTLTextureDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

class CompileOptionsObject final : public ObjectOf<MTL::CompileOptions>
{
public:
    Ref<Object> preprocessorMacros;
    bool fastMathEnabled = true;
    MTL::LanguageVersion languageVersion = MTL::LanguageVersion3_1;
    bool preserveInvariance = {};

    const char* className() const override { return "MTLCompileOptions"; }
    Object* copy() const override { return copyOf(*this); }
};

class CaptureDescriptorObject final : public ObjectOf<MTL::CaptureDescriptor>
{
public:
    Ref<Object> captureObject;
    MTL::CaptureDestination destination = MTL::CaptureDestinationDeveloperTools;
    Ref<Object> outputURL;

    const char* className() const override { return "MTLCaptureDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

using VertexBufferLayoutDescriptorArrayObject = DescriptorArray<MTL::VertexBufferLayoutDescriptorArray, VertexBufferLayoutDescriptorObject, 31>;
using VertexAttributeDescriptorArrayObject = DescriptorArray<MTL::VertexAttributeDescriptorArray, VertexAttributeDescriptorObject, 31>;

class VertexDescriptorObject final : public ObjectOf<MTL::VertexDescriptor>
{
public:
    Ref<VertexBufferLayoutDescriptorArrayObject> layouts = Ref<VertexBufferLayoutDescriptorArrayObject>::adopt(new VertexBufferLayoutDescriptorArrayObject);
    Ref<VertexAttributeDescriptorArrayObject> attributes = Ref<VertexAttributeDescriptorArrayObject>::adopt(new VertexAttributeDescriptorArrayObject);

    VertexDescriptorObject() = default;
    VertexDescriptorObject(const VertexDescriptorObject& other);
    const char* className() const override { return "MTLVertexDescriptor"; }
    Object* copy() const override { return copyOf(*this); }
};

} // namespace softmetal
