// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLPixelFormat.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Device;
class Function;
class RenderPipelineColorAttachmentDescriptor;
class RenderPipelineColorAttachmentDescriptorArray;
class RenderPipelineDescriptor;
class VertexDescriptor;

enum BlendFactor : NS::UInteger
{
    BlendFactorZero = 0,
    BlendFactorOne = 1,
    BlendFactorSourceColor = 2,
    BlendFactorOneMinusSourceColor = 3,
    BlendFactorSourceAlpha = 4,
    BlendFactorOneMinusSourceAlpha = 5,
    BlendFactorDestinationColor = 6,
    BlendFactorOneMinusDestinationColor = 7,
    BlendFactorDestinationAlpha = 8,
    BlendFactorOneMinusDestinationAlpha = 9,
    BlendFactorSourceAlphaSaturated = 10,
    BlendFactorBlendColor = 11,
    BlendFactorOneMinusBlendColor = 12,
    BlendFactorBlendAlpha = 13,
    BlendFactorOneMinusBlendAlpha = 14,
    BlendFactorSource1Color = 15,
    BlendFactorOneMinusSource1Color = 16,
    BlendFactorSource1Alpha = 17,
    BlendFactorOneMinusSource1Alpha = 18,
};

enum BlendOperation : NS::UInteger
{
    BlendOperationAdd = 0,
    BlendOperationSubtract = 1,
    BlendOperationReverseSubtract = 2,
    BlendOperationMin = 3,
    BlendOperationMax = 4,
};

using ColorWriteMask = NS::UInteger; // any of:
enum : ColorWriteMask
{
    ColorWriteMaskNone = 0,
    ColorWriteMaskRed = 8,
    ColorWriteMaskGreen = 4,
    ColorWriteMaskBlue = 2,
    ColorWriteMaskAlpha = 1,
    ColorWriteMaskAll = 15,
};

enum PrimitiveTopologyClass : NS::UInteger
{
    PrimitiveTopologyClassUnspecified = 0,
    PrimitiveTopologyClassPoint = 1,
    PrimitiveTopologyClassLine = 2,
    PrimitiveTopologyClassTriangle = 3,
};

class SOFTMETAL_API RenderPipelineColorAttachmentDescriptor
    : public NS::Copying<RenderPipelineColorAttachmentDescriptor>
{
public:
    static RenderPipelineColorAttachmentDescriptor* alloc();
    RenderPipelineColorAttachmentDescriptor* init();
    PixelFormat pixelFormat() const;
    void setPixelFormat(PixelFormat pixelFormat);
    bool blendingEnabled() const;
    void setBlendingEnabled(bool blendingEnabled);
    BlendFactor sourceRGBBlendFactor() const;
    void setSourceRGBBlendFactor(BlendFactor sourceRGBBlendFactor);
    BlendFactor destinationRGBBlendFactor() const;
    void setDestinationRGBBlendFactor(BlendFactor destinationRGBBlendFactor);
    BlendOperation rgbBlendOperation() const;
    void setRgbBlendOperation(BlendOperation rgbBlendOperation);
    BlendFactor sourceAlphaBlendFactor() const;
    void setSourceAlphaBlendFactor(BlendFactor sourceAlphaBlendFactor);
    BlendFactor destinationAlphaBlendFactor() const;
    void setDestinationAlphaBlendFactor(BlendFactor destinationAlphaBlendFactor);
    BlendOperation alphaBlendOperation() const;
    void setAlphaBlendOperation(BlendOperation alphaBlendOperation);
    ColorWriteMask writeMask() const;
    void setWriteMask(ColorWriteMask writeMask);
};

class SOFTMETAL_API RenderPipelineColorAttachmentDescriptorArray
    : public NS::Referencing<RenderPipelineColorAttachmentDescriptorArray>
{
public:
    static RenderPipelineColorAttachmentDescriptorArray* alloc();
    RenderPipelineColorAttachmentDescriptorArray* init();
    RenderPipelineColorAttachmentDescriptor* object(NS::UInteger attachmentIndex);
    void setObject(const RenderPipelineColorAttachmentDescriptor* attachment, NS::UInteger attachmentIndex);
};

class SOFTMETAL_API RenderPipelineDescriptor : public NS::Copying<RenderPipelineDescriptor>
{
public:
    static RenderPipelineDescriptor* alloc();
    RenderPipelineDescriptor* init();
    NS::String* label() const;
    void setLabel(const NS::String* label);
    Function* vertexFunction() const;
    void setVertexFunction(const Function* vertexFunction);
    Function* fragmentFunction() const;
    void setFragmentFunction(const Function* fragmentFunction);
    VertexDescriptor* vertexDescriptor() const;
    void setVertexDescriptor(const VertexDescriptor* vertexDescriptor);
    NS::UInteger sampleCount() const;
    void setSampleCount(NS::UInteger sampleCount);
    NS::UInteger rasterSampleCount() const;
    void setRasterSampleCount(NS::UInteger rasterSampleCount);
    bool alphaToCoverageEnabled() const;
    void setAlphaToCoverageEnabled(bool alphaToCoverageEnabled);
    bool alphaToOneEnabled() const;
    void setAlphaToOneEnabled(bool alphaToOneEnabled);
    bool rasterizationEnabled() const;
    void setRasterizationEnabled(bool rasterizationEnabled);
    RenderPipelineColorAttachmentDescriptorArray* colorAttachments() const;
    PixelFormat depthAttachmentPixelFormat() const;
    void setDepthAttachmentPixelFormat(PixelFormat depthAttachmentPixelFormat);
    PixelFormat stencilAttachmentPixelFormat() const;
    void setStencilAttachmentPixelFormat(PixelFormat stencilAttachmentPixelFormat);
    PrimitiveTopologyClass inputPrimitiveTopology() const;
    void setInputPrimitiveTopology(PrimitiveTopologyClass inputPrimitiveTopology);
    void reset();
};

class SOFTMETAL_API RenderPipelineState : public NS::Referencing<RenderPipelineState>
{
public:
    NS::String* label() const;
    Device* device() const;
};

} // namespace MTL
