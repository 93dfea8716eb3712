// SPDX-License-Identifier: Apache-2.0
// Over 400 lines: one line for each getter and setter of the descriptors, in the order of their headers.
#include "objects/Descriptors.h"

namespace softmetal {
namespace {

template <class Api, class Implementation>
Api* create()
{
    return reinterpret_cast<Api*>(static_cast<Object*>(new Implementation));
}

/// For properties that keep a copy of what they are set to.
ObjectRef copied(const void* value) { return value ? ObjectRef::adopt(castObject(value)->copy()) : ObjectRef(); }

/// For properties that are never nil: setting nil brings the default back.
template <class Implementation>
ObjectRef copiedOrNew(const void* value)
{
    return value ? copied(value) : ObjectRef::adopt(new Implementation);
}

} // namespace

DepthStencilDescriptorObject::DepthStencilDescriptorObject()
{
    frontFaceStencil = ObjectRef::adopt(new StencilDescriptorObject);
    backFaceStencil = ObjectRef::adopt(new StencilDescriptorObject);
}

DepthStencilDescriptorObject::DepthStencilDescriptorObject(const DepthStencilDescriptorObject& other) : ObjectOf<MTL::DepthStencilDescriptor>()
{
    depthCompareFunction = other.depthCompareFunction;
    depthWriteEnabled = other.depthWriteEnabled;
    frontFaceStencil = ObjectRef::adopt(other.frontFaceStencil->copy());
    backFaceStencil = ObjectRef::adopt(other.backFaceStencil->copy());
    label = other.label;
}

RenderPassDescriptorObject::RenderPassDescriptorObject()
{
    depthAttachment = Ref<Object>::adopt(new RenderPassDepthAttachmentDescriptorObject);
    stencilAttachment = Ref<Object>::adopt(new RenderPassStencilAttachmentDescriptorObject);
}

RenderPassDescriptorObject::RenderPassDescriptorObject(const RenderPassDescriptorObject& other) : ObjectOf<MTL::RenderPassDescriptor>()
{
    depthAttachment = Ref<Object>::adopt(other.depthAttachment->copy());
    stencilAttachment = Ref<Object>::adopt(other.stencilAttachment->copy());
    visibilityResultBuffer = other.visibilityResultBuffer;
    renderTargetArrayLength = other.renderTargetArrayLength;
    defaultRasterSampleCount = other.defaultRasterSampleCount;
    renderTargetWidth = other.renderTargetWidth;
    renderTargetHeight = other.renderTargetHeight;
    colorAttachments = Ref<RenderPassColorAttachmentDescriptorArrayObject>::adopt(new RenderPassColorAttachmentDescriptorArrayObject(*other.colorAttachments));
}

RenderPipelineDescriptorObject::RenderPipelineDescriptorObject(const RenderPipelineDescriptorObject& other) : ObjectOf<MTL::RenderPipelineDescriptor>()
{
    label = other.label;
    vertexFunction = other.vertexFunction;
    fragmentFunction = other.fragmentFunction;
    vertexDescriptor = other.vertexDescriptor ? Ref<Object>::adopt(other.vertexDescriptor->copy()) : Ref<Object>();
    rasterSampleCount = other.rasterSampleCount;
    alphaToCoverageEnabled = other.alphaToCoverageEnabled;
    alphaToOneEnabled = other.alphaToOneEnabled;
    rasterizationEnabled = other.rasterizationEnabled;
    depthAttachmentPixelFormat = other.depthAttachmentPixelFormat;
    stencilAttachmentPixelFormat = other.stencilAttachmentPixelFormat;
    inputPrimitiveTopology = other.inputPrimitiveTopology;
    colorAttachments = Ref<RenderPipelineColorAttachmentDescriptorArrayObject>::adopt(new RenderPipelineColorAttachmentDescriptorArrayObject(*other.colorAttachments));
}

VertexDescriptorObject::VertexDescriptorObject(const VertexDescriptorObject& other) : ObjectOf<MTL::VertexDescriptor>()
{
    layouts = Ref<VertexBufferLayoutDescriptorArrayObject>::adopt(new VertexBufferLayoutDescriptorArrayObject(*other.layouts));
    attributes = Ref<VertexAttributeDescriptorArrayObject>::adopt(new VertexAttributeDescriptorArrayObject(*other.attributes));
}

} // namespace softmetal

using namespace softmetal;

MTL::SamplerMinMagFilter MTL::SamplerDescriptor::minFilter() const { return cast<SamplerDescriptorObject>(this)->minFilter; }
void MTL::SamplerDescriptor::setMinFilter(MTL::SamplerMinMagFilter value) { cast<SamplerDescriptorObject>(this)->minFilter = value; }
MTL::SamplerMinMagFilter MTL::SamplerDescriptor::magFilter() const { return cast<SamplerDescriptorObject>(this)->magFilter; }
void MTL::SamplerDescriptor::setMagFilter(MTL::SamplerMinMagFilter value) { cast<SamplerDescriptorObject>(this)->magFilter = value; }
MTL::SamplerMipFilter MTL::SamplerDescriptor::mipFilter() const { return cast<SamplerDescriptorObject>(this)->mipFilter; }
void MTL::SamplerDescriptor::setMipFilter(MTL::SamplerMipFilter value) { cast<SamplerDescriptorObject>(this)->mipFilter = value; }
NS::UInteger MTL::SamplerDescriptor::maxAnisotropy() const { return cast<SamplerDescriptorObject>(this)->maxAnisotropy; }
void MTL::SamplerDescriptor::setMaxAnisotropy(NS::UInteger value) { cast<SamplerDescriptorObject>(this)->maxAnisotropy = value; }
MTL::SamplerAddressMode MTL::SamplerDescriptor::sAddressMode() const { return cast<SamplerDescriptorObject>(this)->sAddressMode; }
void MTL::SamplerDescriptor::setSAddressMode(MTL::SamplerAddressMode value) { cast<SamplerDescriptorObject>(this)->sAddressMode = value; }
MTL::SamplerAddressMode MTL::SamplerDescriptor::tAddressMode() const { return cast<SamplerDescriptorObject>(this)->tAddressMode; }
void MTL::SamplerDescriptor::setTAddressMode(MTL::SamplerAddressMode value) { cast<SamplerDescriptorObject>(this)->tAddressMode = value; }
MTL::SamplerAddressMode MTL::SamplerDescriptor::rAddressMode() const { return cast<SamplerDescriptorObject>(this)->rAddressMode; }
void MTL::SamplerDescriptor::setRAddressMode(MTL::SamplerAddressMode value) { cast<SamplerDescriptorObject>(this)->rAddressMode = value; }
MTL::SamplerBorderColor MTL::SamplerDescriptor::borderColor() const { return cast<SamplerDescriptorObject>(this)->borderColor; }
void MTL::SamplerDescriptor::setBorderColor(MTL::SamplerBorderColor value) { cast<SamplerDescriptorObject>(this)->borderColor = value; }
bool MTL::SamplerDescriptor::normalizedCoordinates() const { return cast<SamplerDescriptorObject>(this)->normalizedCoordinates; }
void MTL::SamplerDescriptor::setNormalizedCoordinates(bool value) { cast<SamplerDescriptorObject>(this)->normalizedCoordinates = value; }
float MTL::SamplerDescriptor::lodMinClamp() const { return cast<SamplerDescriptorObject>(this)->lodMinClamp; }
void MTL::SamplerDescriptor::setLodMinClamp(float value) { cast<SamplerDescriptorObject>(this)->lodMinClamp = value; }
float MTL::SamplerDescriptor::lodMaxClamp() const { return cast<SamplerDescriptorObject>(this)->lodMaxClamp; }
void MTL::SamplerDescriptor::setLodMaxClamp(float value) { cast<SamplerDescriptorObject>(this)->lodMaxClamp = value; }
MTL::CompareFunction MTL::SamplerDescriptor::compareFunction() const { return cast<SamplerDescriptorObject>(this)->compareFunction; }
void MTL::SamplerDescriptor::setCompareFunction(MTL::CompareFunction value) { cast<SamplerDescriptorObject>(this)->compareFunction = value; }
NS::String* MTL::SamplerDescriptor::label() const { return reinterpret_cast<NS::String*>(cast<SamplerDescriptorObject>(this)->label.get()); }
void MTL::SamplerDescriptor::setLabel(const NS::String* value) { cast<SamplerDescriptorObject>(this)->label = copied(value); }

MTL::SamplerDescriptor* MTL::SamplerDescriptor::alloc() { return create<MTL::SamplerDescriptor, SamplerDescriptorObject>(); }
MTL::SamplerDescriptor* MTL::SamplerDescriptor::init() { return this; }

MTL::CompareFunction MTL::StencilDescriptor::stencilCompareFunction() const { return cast<StencilDescriptorObject>(this)->stencilCompareFunction; }
void MTL::StencilDescriptor::setStencilCompareFunction(MTL::CompareFunction value) { cast<StencilDescriptorObject>(this)->stencilCompareFunction = value; }
MTL::StencilOperation MTL::StencilDescriptor::stencilFailureOperation() const { return cast<StencilDescriptorObject>(this)->stencilFailureOperation; }
void MTL::StencilDescriptor::setStencilFailureOperation(MTL::StencilOperation value) { cast<StencilDescriptorObject>(this)->stencilFailureOperation = value; }
MTL::StencilOperation MTL::StencilDescriptor::depthFailureOperation() const { return cast<StencilDescriptorObject>(this)->depthFailureOperation; }
void MTL::StencilDescriptor::setDepthFailureOperation(MTL::StencilOperation value) { cast<StencilDescriptorObject>(this)->depthFailureOperation = value; }
MTL::StencilOperation MTL::StencilDescriptor::depthStencilPassOperation() const { return cast<StencilDescriptorObject>(this)->depthStencilPassOperation; }
void MTL::StencilDescriptor::setDepthStencilPassOperation(MTL::StencilOperation value) { cast<StencilDescriptorObject>(this)->depthStencilPassOperation = value; }
uint32_t MTL::StencilDescriptor::readMask() const { return cast<StencilDescriptorObject>(this)->readMask; }
void MTL::StencilDescriptor::setReadMask(uint32_t value) { cast<StencilDescriptorObject>(this)->readMask = value; }
uint32_t MTL::StencilDescriptor::writeMask() const { return cast<StencilDescriptorObject>(this)->writeMask; }
void MTL::StencilDescriptor::setWriteMask(uint32_t value) { cast<StencilDescriptorObject>(this)->writeMask = value; }

MTL::StencilDescriptor* MTL::StencilDescriptor::alloc() { return create<MTL::StencilDescriptor, StencilDescriptorObject>(); }
MTL::StencilDescriptor* MTL::StencilDescriptor::init() { return this; }

MTL::CompareFunction MTL::DepthStencilDescriptor::depthCompareFunction() const { return cast<DepthStencilDescriptorObject>(this)->depthCompareFunction; }
void MTL::DepthStencilDescriptor::setDepthCompareFunction(MTL::CompareFunction value) { cast<DepthStencilDescriptorObject>(this)->depthCompareFunction = value; }
bool MTL::DepthStencilDescriptor::depthWriteEnabled() const { return cast<DepthStencilDescriptorObject>(this)->depthWriteEnabled; }
void MTL::DepthStencilDescriptor::setDepthWriteEnabled(bool value) { cast<DepthStencilDescriptorObject>(this)->depthWriteEnabled = value; }
MTL::StencilDescriptor* MTL::DepthStencilDescriptor::frontFaceStencil() const { return reinterpret_cast<MTL::StencilDescriptor*>(cast<DepthStencilDescriptorObject>(this)->frontFaceStencil.get()); }
void MTL::DepthStencilDescriptor::setFrontFaceStencil(const MTL::StencilDescriptor* value) { cast<DepthStencilDescriptorObject>(this)->frontFaceStencil = copiedOrNew<StencilDescriptorObject>(value); }
MTL::StencilDescriptor* MTL::DepthStencilDescriptor::backFaceStencil() const { return reinterpret_cast<MTL::StencilDescriptor*>(cast<DepthStencilDescriptorObject>(this)->backFaceStencil.get()); }
void MTL::DepthStencilDescriptor::setBackFaceStencil(const MTL::StencilDescriptor* value) { cast<DepthStencilDescriptorObject>(this)->backFaceStencil = copiedOrNew<StencilDescriptorObject>(value); }
NS::String* MTL::DepthStencilDescriptor::label() const { return reinterpret_cast<NS::String*>(cast<DepthStencilDescriptorObject>(this)->label.get()); }
void MTL::DepthStencilDescriptor::setLabel(const NS::String* value) { cast<DepthStencilDescriptorObject>(this)->label = copied(value); }

MTL::DepthStencilDescriptor* MTL::DepthStencilDescriptor::alloc() { return create<MTL::DepthStencilDescriptor, DepthStencilDescriptorObject>(); }
MTL::DepthStencilDescriptor* MTL::DepthStencilDescriptor::init() { return this; }

NS::UInteger MTL::VertexBufferLayoutDescriptor::stride() const { return cast<VertexBufferLayoutDescriptorObject>(this)->stride; }
void MTL::VertexBufferLayoutDescriptor::setStride(NS::UInteger value) { cast<VertexBufferLayoutDescriptorObject>(this)->stride = value; }
MTL::VertexStepFunction MTL::VertexBufferLayoutDescriptor::stepFunction() const { return cast<VertexBufferLayoutDescriptorObject>(this)->stepFunction; }
void MTL::VertexBufferLayoutDescriptor::setStepFunction(MTL::VertexStepFunction value) { cast<VertexBufferLayoutDescriptorObject>(this)->stepFunction = value; }
NS::UInteger MTL::VertexBufferLayoutDescriptor::stepRate() const { return cast<VertexBufferLayoutDescriptorObject>(this)->stepRate; }
void MTL::VertexBufferLayoutDescriptor::setStepRate(NS::UInteger value) { cast<VertexBufferLayoutDescriptorObject>(this)->stepRate = value; }

MTL::VertexBufferLayoutDescriptor* MTL::VertexBufferLayoutDescriptor::alloc() { return create<MTL::VertexBufferLayoutDescriptor, VertexBufferLayoutDescriptorObject>(); }
MTL::VertexBufferLayoutDescriptor* MTL::VertexBufferLayoutDescriptor::init() { return this; }

MTL::VertexFormat MTL::VertexAttributeDescriptor::format() const { return cast<VertexAttributeDescriptorObject>(this)->format; }
void MTL::VertexAttributeDescriptor::setFormat(MTL::VertexFormat value) { cast<VertexAttributeDescriptorObject>(this)->format = value; }
NS::UInteger MTL::VertexAttributeDescriptor::offset() const { return cast<VertexAttributeDescriptorObject>(this)->offset; }
void MTL::VertexAttributeDescriptor::setOffset(NS::UInteger value) { cast<VertexAttributeDescriptorObject>(this)->offset = value; }
NS::UInteger MTL::VertexAttributeDescriptor::bufferIndex() const { return cast<VertexAttributeDescriptorObject>(this)->bufferIndex; }
void MTL::VertexAttributeDescriptor::setBufferIndex(NS::UInteger value) { cast<VertexAttributeDescriptorObject>(this)->bufferIndex = value; }

MTL::VertexAttributeDescriptor* MTL::VertexAttributeDescriptor::alloc() { return create<MTL::VertexAttributeDescriptor, VertexAttributeDescriptorObject>(); }
MTL::VertexAttributeDescriptor* MTL::VertexAttributeDescriptor::init() { return this; }

MTL::Texture* MTL::RenderPassAttachmentDescriptor::texture() const { return reinterpret_cast<MTL::Texture*>(cast<RenderPassAttachmentDescriptorObject>(this)->texture.get()); }
void MTL::RenderPassAttachmentDescriptor::setTexture(const MTL::Texture* value) { cast<RenderPassAttachmentDescriptorObject>(this)->texture = ObjectRef(castObject(value)); }
NS::UInteger MTL::RenderPassAttachmentDescriptor::level() const { return cast<RenderPassAttachmentDescriptorObject>(this)->level; }
void MTL::RenderPassAttachmentDescriptor::setLevel(NS::UInteger value) { cast<RenderPassAttachmentDescriptorObject>(this)->level = value; }
NS::UInteger MTL::RenderPassAttachmentDescriptor::slice() const { return cast<RenderPassAttachmentDescriptorObject>(this)->slice; }
void MTL::RenderPassAttachmentDescriptor::setSlice(NS::UInteger value) { cast<RenderPassAttachmentDescriptorObject>(this)->slice = value; }
NS::UInteger MTL::RenderPassAttachmentDescriptor::depthPlane() const { return cast<RenderPassAttachmentDescriptorObject>(this)->depthPlane; }
void MTL::RenderPassAttachmentDescriptor::setDepthPlane(NS::UInteger value) { cast<RenderPassAttachmentDescriptorObject>(this)->depthPlane = value; }
MTL::Texture* MTL::RenderPassAttachmentDescriptor::resolveTexture() const { return reinterpret_cast<MTL::Texture*>(cast<RenderPassAttachmentDescriptorObject>(this)->resolveTexture.get()); }
void MTL::RenderPassAttachmentDescriptor::setResolveTexture(const MTL::Texture* value) { cast<RenderPassAttachmentDescriptorObject>(this)->resolveTexture = ObjectRef(castObject(value)); }
NS::UInteger MTL::RenderPassAttachmentDescriptor::resolveLevel() const { return cast<RenderPassAttachmentDescriptorObject>(this)->resolveLevel; }
void MTL::RenderPassAttachmentDescriptor::setResolveLevel(NS::UInteger value) { cast<RenderPassAttachmentDescriptorObject>(this)->resolveLevel = value; }
NS::UInteger MTL::RenderPassAttachmentDescriptor::resolveSlice() const { return cast<RenderPassAttachmentDescriptorObject>(this)->resolveSlice; }
void MTL::RenderPassAttachmentDescriptor::setResolveSlice(NS::UInteger value) { cast<RenderPassAttachmentDescriptorObject>(this)->resolveSlice = value; }
NS::UInteger MTL::RenderPassAttachmentDescriptor::resolveDepthPlane() const { return cast<RenderPassAttachmentDescriptorObject>(this)->resolveDepthPlane; }
void MTL::RenderPassAttachmentDescriptor::setResolveDepthPlane(NS::UInteger value) { cast<RenderPassAttachmentDescriptorObject>(this)->resolveDepthPlane = value; }
MTL::LoadAction MTL::RenderPassAttachmentDescriptor::loadAction() const { return cast<RenderPassAttachmentDescriptorObject>(this)->loadAction; }
void MTL::RenderPassAttachmentDescriptor::setLoadAction(MTL::LoadAction value) { cast<RenderPassAttachmentDescriptorObject>(this)->loadAction = value; }
MTL::StoreAction MTL::RenderPassAttachmentDescriptor::storeAction() const { return cast<RenderPassAttachmentDescriptorObject>(this)->storeAction; }
void MTL::RenderPassAttachmentDescriptor::setStoreAction(MTL::StoreAction value) { cast<RenderPassAttachmentDescriptorObject>(this)->storeAction = value; }

MTL::RenderPassAttachmentDescriptor* MTL::RenderPassAttachmentDescriptor::alloc() { return create<MTL::RenderPassAttachmentDescriptor, RenderPassAttachmentDescriptorObject>(); }
MTL::RenderPassAttachmentDescriptor* MTL::RenderPassAttachmentDescriptor::init() { return this; }

MTL::ClearColor MTL::RenderPassColorAttachmentDescriptor::clearColor() const { return cast<RenderPassColorAttachmentDescriptorObject>(this)->clearColor; }
void MTL::RenderPassColorAttachmentDescriptor::setClearColor(MTL::ClearColor value) { cast<RenderPassColorAttachmentDescriptorObject>(this)->clearColor = value; }

MTL::RenderPassColorAttachmentDescriptor* MTL::RenderPassColorAttachmentDescriptor::alloc() { return create<MTL::RenderPassColorAttachmentDescriptor, RenderPassColorAttachmentDescriptorObject>(); }
MTL::RenderPassColorAttachmentDescriptor* MTL::RenderPassColorAttachmentDescriptor::init() { return this; }

double MTL::RenderPassDepthAttachmentDescriptor::clearDepth() const { return cast<RenderPassDepthAttachmentDescriptorObject>(this)->clearDepth; }
void MTL::RenderPassDepthAttachmentDescriptor::setClearDepth(double value) { cast<RenderPassDepthAttachmentDescriptorObject>(this)->clearDepth = value; }
MTL::MultisampleDepthResolveFilter MTL::RenderPassDepthAttachmentDescriptor::depthResolveFilter() const { return cast<RenderPassDepthAttachmentDescriptorObject>(this)->depthResolveFilter; }
void MTL::RenderPassDepthAttachmentDescriptor::setDepthResolveFilter(MTL::MultisampleDepthResolveFilter value) { cast<RenderPassDepthAttachmentDescriptorObject>(this)->depthResolveFilter = value; }

MTL::RenderPassDepthAttachmentDescriptor* MTL::RenderPassDepthAttachmentDescriptor::alloc() { return create<MTL::RenderPassDepthAttachmentDescriptor, RenderPassDepthAttachmentDescriptorObject>(); }
MTL::RenderPassDepthAttachmentDescriptor* MTL::RenderPassDepthAttachmentDescriptor::init() { return this; }

uint32_t MTL::RenderPassStencilAttachmentDescriptor::clearStencil() const { return cast<RenderPassStencilAttachmentDescriptorObject>(this)->clearStencil; }
void MTL::RenderPassStencilAttachmentDescriptor::setClearStencil(uint32_t value) { cast<RenderPassStencilAttachmentDescriptorObject>(this)->clearStencil = value; }
MTL::MultisampleStencilResolveFilter MTL::RenderPassStencilAttachmentDescriptor::stencilResolveFilter() const { return cast<RenderPassStencilAttachmentDescriptorObject>(this)->stencilResolveFilter; }
void MTL::RenderPassStencilAttachmentDescriptor::setStencilResolveFilter(MTL::MultisampleStencilResolveFilter value) { cast<RenderPassStencilAttachmentDescriptorObject>(this)->stencilResolveFilter = value; }

MTL::RenderPassStencilAttachmentDescriptor* MTL::RenderPassStencilAttachmentDescriptor::alloc() { return create<MTL::RenderPassStencilAttachmentDescriptor, RenderPassStencilAttachmentDescriptorObject>(); }
MTL::RenderPassStencilAttachmentDescriptor* MTL::RenderPassStencilAttachmentDescriptor::init() { return this; }

MTL::RenderPassDepthAttachmentDescriptor* MTL::RenderPassDescriptor::depthAttachment() const { return reinterpret_cast<MTL::RenderPassDepthAttachmentDescriptor*>(cast<RenderPassDescriptorObject>(this)->depthAttachment.get()); }
void MTL::RenderPassDescriptor::setDepthAttachment(const MTL::RenderPassDepthAttachmentDescriptor* value) { cast<RenderPassDescriptorObject>(this)->depthAttachment = copiedOrNew<RenderPassDepthAttachmentDescriptorObject>(value); }
MTL::RenderPassStencilAttachmentDescriptor* MTL::RenderPassDescriptor::stencilAttachment() const { return reinterpret_cast<MTL::RenderPassStencilAttachmentDescriptor*>(cast<RenderPassDescriptorObject>(this)->stencilAttachment.get()); }
void MTL::RenderPassDescriptor::setStencilAttachment(const MTL::RenderPassStencilAttachmentDescriptor* value) { cast<RenderPassDescriptorObject>(this)->stencilAttachment = copiedOrNew<RenderPassStencilAttachmentDescriptorObject>(value); }
MTL::Buffer* MTL::RenderPassDescriptor::visibilityResultBuffer() const { return reinterpret_cast<MTL::Buffer*>(cast<RenderPassDescriptorObject>(this)->visibilityResultBuffer.get()); }
void MTL::RenderPassDescriptor::setVisibilityResultBuffer(const MTL::Buffer* value) { cast<RenderPassDescriptorObject>(this)->visibilityResultBuffer = ObjectRef(castObject(value)); }
NS::UInteger MTL::RenderPassDescriptor::renderTargetArrayLength() const { return cast<RenderPassDescriptorObject>(this)->renderTargetArrayLength; }
void MTL::RenderPassDescriptor::setRenderTargetArrayLength(NS::UInteger value) { cast<RenderPassDescriptorObject>(this)->renderTargetArrayLength = value; }
NS::UInteger MTL::RenderPassDescriptor::defaultRasterSampleCount() const { return cast<RenderPassDescriptorObject>(this)->defaultRasterSampleCount; }
void MTL::RenderPassDescriptor::setDefaultRasterSampleCount(NS::UInteger value) { cast<RenderPassDescriptorObject>(this)->defaultRasterSampleCount = value; }
NS::UInteger MTL::RenderPassDescriptor::renderTargetWidth() const { return cast<RenderPassDescriptorObject>(this)->renderTargetWidth; }
void MTL::RenderPassDescriptor::setRenderTargetWidth(NS::UInteger value) { cast<RenderPassDescriptorObject>(this)->renderTargetWidth = value; }
NS::UInteger MTL::RenderPassDescriptor::renderTargetHeight() const { return cast<RenderPassDescriptorObject>(this)->renderTargetHeight; }
void MTL::RenderPassDescriptor::setRenderTargetHeight(NS::UInteger value) { cast<RenderPassDescriptorObject>(this)->renderTargetHeight = value; }

MTL::RenderPassDescriptor* MTL::RenderPassDescriptor::alloc() { return create<MTL::RenderPassDescriptor, RenderPassDescriptorObject>(); }
MTL::RenderPassDescriptor* MTL::RenderPassDescriptor::init() { return this; }

MTL::PixelFormat MTL::RenderPipelineColorAttachmentDescriptor::pixelFormat() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->pixelFormat; }
void MTL::RenderPipelineColorAttachmentDescriptor::setPixelFormat(MTL::PixelFormat value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->pixelFormat = value; }
bool MTL::RenderPipelineColorAttachmentDescriptor::blendingEnabled() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->blendingEnabled; }
void MTL::RenderPipelineColorAttachmentDescriptor::setBlendingEnabled(bool value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->blendingEnabled = value; }
MTL::BlendFactor MTL::RenderPipelineColorAttachmentDescriptor::sourceRGBBlendFactor() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->sourceRGBBlendFactor; }
void MTL::RenderPipelineColorAttachmentDescriptor::setSourceRGBBlendFactor(MTL::BlendFactor value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->sourceRGBBlendFactor = value; }
MTL::BlendFactor MTL::RenderPipelineColorAttachmentDescriptor::destinationRGBBlendFactor() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->destinationRGBBlendFactor; }
void MTL::RenderPipelineColorAttachmentDescriptor::setDestinationRGBBlendFactor(MTL::BlendFactor value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->destinationRGBBlendFactor = value; }
MTL::BlendOperation MTL::RenderPipelineColorAttachmentDescriptor::rgbBlendOperation() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->rgbBlendOperation; }
void MTL::RenderPipelineColorAttachmentDescriptor::setRgbBlendOperation(MTL::BlendOperation value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->rgbBlendOperation = value; }
MTL::BlendFactor MTL::RenderPipelineColorAttachmentDescriptor::sourceAlphaBlendFactor() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->sourceAlphaBlendFactor; }
void MTL::RenderPipelineColorAttachmentDescriptor::setSourceAlphaBlendFactor(MTL::BlendFactor value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->sourceAlphaBlendFactor = value; }
MTL::BlendFactor MTL::RenderPipelineColorAttachmentDescriptor::destinationAlphaBlendFactor() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->destinationAlphaBlendFactor; }
void MTL::RenderPipelineColorAttachmentDescriptor::setDestinationAlphaBlendFactor(MTL::BlendFactor value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->destinationAlphaBlendFactor = value; }
MTL::BlendOperation MTL::RenderPipelineColorAttachmentDescriptor::alphaBlendOperation() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->alphaBlendOperation; }
void MTL::RenderPipelineColorAttachmentDescriptor::setAlphaBlendOperation(MTL::BlendOperation value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->alphaBlendOperation = value; }
MTL::ColorWriteMask MTL::RenderPipelineColorAttachmentDescriptor::writeMask() const { return cast<RenderPipelineColorAttachmentDescriptorObject>(this)->writeMask; }
void MTL::RenderPipelineColorAttachmentDescriptor::setWriteMask(MTL::ColorWriteMask value) { cast<RenderPipelineColorAttachmentDescriptorObject>(this)->writeMask = value; }

MTL::RenderPipelineColorAttachmentDescriptor* MTL::RenderPipelineColorAttachmentDescriptor::alloc() { return create<MTL::RenderPipelineColorAttachmentDescriptor, RenderPipelineColorAttachmentDescriptorObject>(); }
MTL::RenderPipelineColorAttachmentDescriptor* MTL::RenderPipelineColorAttachmentDescriptor::init() { return this; }

NS::String* MTL::RenderPipelineDescriptor::label() const { return reinterpret_cast<NS::String*>(cast<RenderPipelineDescriptorObject>(this)->label.get()); }
void MTL::RenderPipelineDescriptor::setLabel(const NS::String* value) { cast<RenderPipelineDescriptorObject>(this)->label = copied(value); }
MTL::Function* MTL::RenderPipelineDescriptor::vertexFunction() const { return reinterpret_cast<MTL::Function*>(cast<RenderPipelineDescriptorObject>(this)->vertexFunction.get()); }
void MTL::RenderPipelineDescriptor::setVertexFunction(const MTL::Function* value) { cast<RenderPipelineDescriptorObject>(this)->vertexFunction = ObjectRef(castObject(value)); }
MTL::Function* MTL::RenderPipelineDescriptor::fragmentFunction() const { return reinterpret_cast<MTL::Function*>(cast<RenderPipelineDescriptorObject>(this)->fragmentFunction.get()); }
void MTL::RenderPipelineDescriptor::setFragmentFunction(const MTL::Function* value) { cast<RenderPipelineDescriptorObject>(this)->fragmentFunction = ObjectRef(castObject(value)); }
MTL::VertexDescriptor* MTL::RenderPipelineDescriptor::vertexDescriptor() const { return reinterpret_cast<MTL::VertexDescriptor*>(cast<RenderPipelineDescriptorObject>(this)->vertexDescriptor.get()); }
void MTL::RenderPipelineDescriptor::setVertexDescriptor(const MTL::VertexDescriptor* value) { cast<RenderPipelineDescriptorObject>(this)->vertexDescriptor = copied(value); }
NS::UInteger MTL::RenderPipelineDescriptor::sampleCount() const { return rasterSampleCount(); }
void MTL::RenderPipelineDescriptor::setSampleCount(NS::UInteger value) { setRasterSampleCount(value); }
NS::UInteger MTL::RenderPipelineDescriptor::rasterSampleCount() const { return cast<RenderPipelineDescriptorObject>(this)->rasterSampleCount; }
void MTL::RenderPipelineDescriptor::setRasterSampleCount(NS::UInteger value) { cast<RenderPipelineDescriptorObject>(this)->rasterSampleCount = value; }
bool MTL::RenderPipelineDescriptor::alphaToCoverageEnabled() const { return cast<RenderPipelineDescriptorObject>(this)->alphaToCoverageEnabled; }
void MTL::RenderPipelineDescriptor::setAlphaToCoverageEnabled(bool value) { cast<RenderPipelineDescriptorObject>(this)->alphaToCoverageEnabled = value; }
bool MTL::RenderPipelineDescriptor::alphaToOneEnabled() const { return cast<RenderPipelineDescriptorObject>(this)->alphaToOneEnabled; }
void MTL::RenderPipelineDescriptor::setAlphaToOneEnabled(bool value) { cast<RenderPipelineDescriptorObject>(this)->alphaToOneEnabled = value; }
bool MTL::RenderPipelineDescriptor::rasterizationEnabled() const { return cast<RenderPipelineDescriptorObject>(this)->rasterizationEnabled; }
void MTL::RenderPipelineDescriptor::setRasterizationEnabled(bool value) { cast<RenderPipelineDescriptorObject>(this)->rasterizationEnabled = value; }
MTL::PixelFormat MTL::RenderPipelineDescriptor::depthAttachmentPixelFormat() const { return cast<RenderPipelineDescriptorObject>(this)->depthAttachmentPixelFormat; }
void MTL::RenderPipelineDescriptor::setDepthAttachmentPixelFormat(MTL::PixelFormat value) { cast<RenderPipelineDescriptorObject>(this)->depthAttachmentPixelFormat = value; }
MTL::PixelFormat MTL::RenderPipelineDescriptor::stencilAttachmentPixelFormat() const { return cast<RenderPipelineDescriptorObject>(this)->stencilAttachmentPixelFormat; }
void MTL::RenderPipelineDescriptor::setStencilAttachmentPixelFormat(MTL::PixelFormat value) { cast<RenderPipelineDescriptorObject>(this)->stencilAttachmentPixelFormat = value; }
MTL::PrimitiveTopologyClass MTL::RenderPipelineDescriptor::inputPrimitiveTopology() const { return cast<RenderPipelineDescriptorObject>(this)->inputPrimitiveTopology; }
void MTL::RenderPipelineDescriptor::setInputPrimitiveTopology(MTL::PrimitiveTopologyClass value) { cast<RenderPipelineDescriptorObject>(this)->inputPrimitiveTopology = value; }

MTL::RenderPipelineDescriptor* MTL::RenderPipelineDescriptor::alloc() { return create<MTL::RenderPipelineDescriptor, RenderPipelineDescriptorObject>(); }
MTL::RenderPipelineDescriptor* MTL::RenderPipelineDescriptor::init() { return this; }

MTL::TextureType MTL::TextureDescriptor::textureType() const { return cast<TextureDescriptorObject>(this)->textureType; }
void MTL::TextureDescriptor::setTextureType(MTL::TextureType value) { cast<TextureDescriptorObject>(this)->textureType = value; }
MTL::PixelFormat MTL::TextureDescriptor::pixelFormat() const { return cast<TextureDescriptorObject>(this)->pixelFormat; }
void MTL::TextureDescriptor::setPixelFormat(MTL::PixelFormat value) { cast<TextureDescriptorObject>(this)->pixelFormat = value; }
NS::UInteger MTL::TextureDescriptor::width() const { return cast<TextureDescriptorObject>(this)->width; }
void MTL::TextureDescriptor::setWidth(NS::UInteger value) { cast<TextureDescriptorObject>(this)->width = value; }
NS::UInteger MTL::TextureDescriptor::height() const { return cast<TextureDescriptorObject>(this)->height; }
void MTL::TextureDescriptor::setHeight(NS::UInteger value) { cast<TextureDescriptorObject>(this)->height = value; }
NS::UInteger MTL::TextureDescriptor::depth() const { return cast<TextureDescriptorObject>(this)->depth; }
void MTL::TextureDescriptor::setDepth(NS::UInteger value) { cast<TextureDescriptorObject>(this)->depth = value; }
NS::UInteger MTL::TextureDescriptor::mipmapLevelCount() const { return cast<TextureDescriptorObject>(this)->mipmapLevelCount; }
void MTL::TextureDescriptor::setMipmapLevelCount(NS::UInteger value) { cast<TextureDescriptorObject>(this)->mipmapLevelCount = value; }
NS::UInteger MTL::TextureDescriptor::sampleCount() const { return cast<TextureDescriptorObject>(this)->sampleCount; }
void MTL::TextureDescriptor::setSampleCount(NS::UInteger value) { cast<TextureDescriptorObject>(this)->sampleCount = value; }
NS::UInteger MTL::TextureDescriptor::arrayLength() const { return cast<TextureDescriptorObject>(this)->arrayLength; }
void MTL::TextureDescriptor::setArrayLength(NS::UInteger value) { cast<TextureDescriptorObject>(this)->arrayLength = value; }
MTL::CPUCacheMode MTL::TextureDescriptor::cpuCacheMode() const { return cast<TextureDescriptorObject>(this)->cpuCacheMode; }
void MTL::TextureDescriptor::setCpuCacheMode(MTL::CPUCacheMode value) { cast<TextureDescriptorObject>(this)->cpuCacheMode = value; }
MTL::StorageMode MTL::TextureDescriptor::storageMode() const { return cast<TextureDescriptorObject>(this)->storageMode; }
void MTL::TextureDescriptor::setStorageMode(MTL::StorageMode value) { cast<TextureDescriptorObject>(this)->storageMode = value; }
MTL::HazardTrackingMode MTL::TextureDescriptor::hazardTrackingMode() const { return cast<TextureDescriptorObject>(this)->hazardTrackingMode; }
void MTL::TextureDescriptor::setHazardTrackingMode(MTL::HazardTrackingMode value) { cast<TextureDescriptorObject>(this)->hazardTrackingMode = value; }
MTL::TextureUsage MTL::TextureDescriptor::usage() const { return cast<TextureDescriptorObject>(this)->usage; }
void MTL::TextureDescriptor::setUsage(MTL::TextureUsage value) { cast<TextureDescriptorObject>(this)->usage = value; }
MTL::TextureSwizzleChannels MTL::TextureDescriptor::swizzle() const { return cast<TextureDescriptorObject>(this)->swizzle; }
void MTL::TextureDescriptor::setSwizzle(MTL::TextureSwizzleChannels value) { cast<TextureDescriptorObject>(this)->swizzle = value; }

MTL::TextureDescriptor* MTL::TextureDescriptor::alloc() { return create<MTL::TextureDescriptor, TextureDescriptorObject>(); }
MTL::TextureDescriptor* MTL::TextureDescriptor::init() { return this; }

NS::Dictionary* MTL::CompileOptions::preprocessorMacros() const { return reinterpret_cast<NS::Dictionary*>(cast<CompileOptionsObject>(this)->preprocessorMacros.get()); }
void MTL::CompileOptions::setPreprocessorMacros(const NS::Dictionary* value) { cast<CompileOptionsObject>(this)->preprocessorMacros = copied(value); }
bool MTL::CompileOptions::fastMathEnabled() const { return cast<CompileOptionsObject>(this)->fastMathEnabled; }
void MTL::CompileOptions::setFastMathEnabled(bool value) { cast<CompileOptionsObject>(this)->fastMathEnabled = value; }
MTL::LanguageVersion MTL::CompileOptions::languageVersion() const { return cast<CompileOptionsObject>(this)->languageVersion; }
void MTL::CompileOptions::setLanguageVersion(MTL::LanguageVersion value) { cast<CompileOptionsObject>(this)->languageVersion = value; }
bool MTL::CompileOptions::preserveInvariance() const { return cast<CompileOptionsObject>(this)->preserveInvariance; }
void MTL::CompileOptions::setPreserveInvariance(bool value) { cast<CompileOptionsObject>(this)->preserveInvariance = value; }

MTL::CompileOptions* MTL::CompileOptions::alloc() { return create<MTL::CompileOptions, CompileOptionsObject>(); }
MTL::CompileOptions* MTL::CompileOptions::init() { return this; }

id MTL::CaptureDescriptor::captureObject() const { return reinterpret_cast<id>(cast<CaptureDescriptorObject>(this)->captureObject.get()); }
void MTL::CaptureDescriptor::setCaptureObject(id value) { cast<CaptureDescriptorObject>(this)->captureObject = ObjectRef(castObject(value)); }
MTL::CaptureDestination MTL::CaptureDescriptor::destination() const { return cast<CaptureDescriptorObject>(this)->destination; }
void MTL::CaptureDescriptor::setDestination(MTL::CaptureDestination value) { cast<CaptureDescriptorObject>(this)->destination = value; }
NS::URL* MTL::CaptureDescriptor::outputURL() const { return reinterpret_cast<NS::URL*>(cast<CaptureDescriptorObject>(this)->outputURL.get()); }
void MTL::CaptureDescriptor::setOutputURL(const NS::URL* value) { cast<CaptureDescriptorObject>(this)->outputURL = copied(value); }

MTL::CaptureDescriptor* MTL::CaptureDescriptor::alloc() { return create<MTL::CaptureDescriptor, CaptureDescriptorObject>(); }
MTL::CaptureDescriptor* MTL::CaptureDescriptor::init() { return this; }

// ---- arrays and what they belong to ---------------------------------------------------------------------------------------

MTL::RenderPassColorAttachmentDescriptorArray* MTL::RenderPassDescriptor::colorAttachments() const { return api(cast<RenderPassDescriptorObject>(this)->colorAttachments.get()); }
MTL::RenderPassDescriptor* MTL::RenderPassDescriptor::renderPassDescriptor() { return autoreleased(new RenderPassDescriptorObject); }
MTL::RenderPipelineColorAttachmentDescriptorArray* MTL::RenderPipelineDescriptor::colorAttachments() const { return api(cast<RenderPipelineDescriptorObject>(this)->colorAttachments.get()); }
void MTL::RenderPipelineDescriptor::reset() {}
MTL::VertexDescriptor* MTL::VertexDescriptor::alloc() { return api(new VertexDescriptorObject); }
MTL::VertexDescriptor* MTL::VertexDescriptor::init() { return this; }
MTL::VertexDescriptor* MTL::VertexDescriptor::vertexDescriptor() { return autoreleased(new VertexDescriptorObject); }
MTL::VertexBufferLayoutDescriptorArray* MTL::VertexDescriptor::layouts() const { return api(cast<VertexDescriptorObject>(this)->layouts.get()); }
MTL::VertexAttributeDescriptorArray* MTL::VertexDescriptor::attributes() const { return api(cast<VertexDescriptorObject>(this)->attributes.get()); }

void MTL::VertexDescriptor::reset()
{
    cast<VertexDescriptorObject>(this)->layouts = Ref<VertexBufferLayoutDescriptorArrayObject>::adopt(new VertexBufferLayoutDescriptorArrayObject);
    cast<VertexDescriptorObject>(this)->attributes = Ref<VertexAttributeDescriptorArrayObject>::adopt(new VertexAttributeDescriptorArrayObject);
}

MTL::RenderPassColorAttachmentDescriptorArray* MTL::RenderPassColorAttachmentDescriptorArray::alloc() { return create<MTL::RenderPassColorAttachmentDescriptorArray, RenderPassColorAttachmentDescriptorArrayObject>(); }
MTL::RenderPassColorAttachmentDescriptorArray* MTL::RenderPassColorAttachmentDescriptorArray::init() { return this; }
MTL::RenderPassColorAttachmentDescriptor* MTL::RenderPassColorAttachmentDescriptorArray::object(NS::UInteger index) { return reinterpret_cast<MTL::RenderPassColorAttachmentDescriptor*>(static_cast<softmetal::Object*>(cast<RenderPassColorAttachmentDescriptorArrayObject>(this)->at(index))); }
void MTL::RenderPassColorAttachmentDescriptorArray::setObject(const MTL::RenderPassColorAttachmentDescriptor* element, NS::UInteger index) { cast<RenderPassColorAttachmentDescriptorArrayObject>(this)->set(index, cast<RenderPassColorAttachmentDescriptorObject>(element)); }

MTL::RenderPipelineColorAttachmentDescriptorArray* MTL::RenderPipelineColorAttachmentDescriptorArray::alloc() { return create<MTL::RenderPipelineColorAttachmentDescriptorArray, RenderPipelineColorAttachmentDescriptorArrayObject>(); }
MTL::RenderPipelineColorAttachmentDescriptorArray* MTL::RenderPipelineColorAttachmentDescriptorArray::init() { return this; }
MTL::RenderPipelineColorAttachmentDescriptor* MTL::RenderPipelineColorAttachmentDescriptorArray::object(NS::UInteger index) { return reinterpret_cast<MTL::RenderPipelineColorAttachmentDescriptor*>(static_cast<softmetal::Object*>(cast<RenderPipelineColorAttachmentDescriptorArrayObject>(this)->at(index))); }
void MTL::RenderPipelineColorAttachmentDescriptorArray::setObject(const MTL::RenderPipelineColorAttachmentDescriptor* element, NS::UInteger index) { cast<RenderPipelineColorAttachmentDescriptorArrayObject>(this)->set(index, cast<RenderPipelineColorAttachmentDescriptorObject>(element)); }

MTL::VertexBufferLayoutDescriptorArray* MTL::VertexBufferLayoutDescriptorArray::alloc() { return create<MTL::VertexBufferLayoutDescriptorArray, VertexBufferLayoutDescriptorArrayObject>(); }
MTL::VertexBufferLayoutDescriptorArray* MTL::VertexBufferLayoutDescriptorArray::init() { return this; }
MTL::VertexBufferLayoutDescriptor* MTL::VertexBufferLayoutDescriptorArray::object(NS::UInteger index) { return reinterpret_cast<MTL::VertexBufferLayoutDescriptor*>(static_cast<softmetal::Object*>(cast<VertexBufferLayoutDescriptorArrayObject>(this)->at(index))); }
void MTL::VertexBufferLayoutDescriptorArray::setObject(const MTL::VertexBufferLayoutDescriptor* element, NS::UInteger index) { cast<VertexBufferLayoutDescriptorArrayObject>(this)->set(index, cast<VertexBufferLayoutDescriptorObject>(element)); }

MTL::VertexAttributeDescriptorArray* MTL::VertexAttributeDescriptorArray::alloc() { return create<MTL::VertexAttributeDescriptorArray, VertexAttributeDescriptorArrayObject>(); }
MTL::VertexAttributeDescriptorArray* MTL::VertexAttributeDescriptorArray::init() { return this; }
MTL::VertexAttributeDescriptor* MTL::VertexAttributeDescriptorArray::object(NS::UInteger index) { return reinterpret_cast<MTL::VertexAttributeDescriptor*>(static_cast<softmetal::Object*>(cast<VertexAttributeDescriptorArrayObject>(this)->at(index))); }
void MTL::VertexAttributeDescriptorArray::setObject(const MTL::VertexAttributeDescriptor* element, NS::UInteger index) { cast<VertexAttributeDescriptorArrayObject>(this)->set(index, cast<VertexAttributeDescriptorObject>(element)); }

// ---- texture descriptors ---------------------------------------------------------------------------------------------------

namespace {

MTL::TextureDescriptor* textureDescriptor(MTL::TextureType type, MTL::PixelFormat format, NS::UInteger width, NS::UInteger height, bool mipmapped)
{
    auto* result = new TextureDescriptorObject;
    result->textureType = type;
    result->pixelFormat = format;
    result->width = width;
    result->height = height;
    for (NS::UInteger size = std::max(width, height); mipmapped && size > 1; size /= 2) ++result->mipmapLevelCount;
    return autoreleased(result);
}

} // namespace

MTL::TextureDescriptor* MTL::TextureDescriptor::texture2DDescriptor(PixelFormat format, NS::UInteger width, NS::UInteger height, bool mipmapped)
{
    return textureDescriptor(TextureType2D, format, width, height, mipmapped);
}

MTL::TextureDescriptor* MTL::TextureDescriptor::textureCubeDescriptor(PixelFormat format, NS::UInteger size, bool mipmapped)
{
    return textureDescriptor(TextureTypeCube, format, size, size, mipmapped);
}

MTL::ResourceOptions MTL::TextureDescriptor::resourceOptions() const
{
    auto& d = *cast<TextureDescriptorObject>(this);
    return static_cast<ResourceOptions>(d.cpuCacheMode | d.storageMode << 4 | d.hazardTrackingMode << 8);
}

void MTL::TextureDescriptor::setResourceOptions(ResourceOptions options)
{
    auto& d = *cast<TextureDescriptorObject>(this);
    d.cpuCacheMode = static_cast<CPUCacheMode>(options & 15);
    d.storageMode = static_cast<StorageMode>(options >> 4 & 15);
    d.hazardTrackingMode = static_cast<HazardTrackingMode>(options >> 8 & 3);
}
