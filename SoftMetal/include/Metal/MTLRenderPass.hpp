// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLTypes.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Buffer;
class RenderPassAttachmentDescriptor;
class RenderPassColorAttachmentDescriptor;
class RenderPassColorAttachmentDescriptorArray;
class RenderPassDepthAttachmentDescriptor;
class RenderPassDescriptor;
class RenderPassStencilAttachmentDescriptor;
class Texture;

struct ClearColor
{
    double red = 0, green = 0, blue = 0, alpha = 0;

    ClearColor() = default;
    ClearColor(double r, double g, double b, double a) : red(r), green(g), blue(b), alpha(a) {}
    static ClearColor Make(double r, double g, double b, double a) { return ClearColor(r, g, b, a); }
};

enum LoadAction : NS::UInteger
{
    LoadActionDontCare = 0,
    LoadActionLoad = 1,
    LoadActionClear = 2,
};

enum StoreAction : NS::UInteger
{
    StoreActionDontCare = 0,
    StoreActionStore = 1,
    StoreActionMultisampleResolve = 2,
    StoreActionStoreAndMultisampleResolve = 3,
    StoreActionUnknown = 4,
    StoreActionCustomSampleDepthStore = 5,
};

enum MultisampleDepthResolveFilter : NS::UInteger
{
    MultisampleDepthResolveFilterSample0 = 0,
    MultisampleDepthResolveFilterMin = 1,
    MultisampleDepthResolveFilterMax = 2,
};

enum MultisampleStencilResolveFilter : NS::UInteger
{
    MultisampleStencilResolveFilterSample0 = 0,
    MultisampleStencilResolveFilterDepthResolvedSample = 1,
};

class SOFTMETAL_API RenderPassAttachmentDescriptor : public NS::Copying<RenderPassAttachmentDescriptor>
{
public:
    static RenderPassAttachmentDescriptor* alloc();
    RenderPassAttachmentDescriptor* init();
    Texture* texture() const;
    void setTexture(const Texture* texture);
    NS::UInteger level() const;
    void setLevel(NS::UInteger level);
    NS::UInteger slice() const;
    void setSlice(NS::UInteger slice);
    NS::UInteger depthPlane() const;
    void setDepthPlane(NS::UInteger depthPlane);
    Texture* resolveTexture() const;
    void setResolveTexture(const Texture* resolveTexture);
    NS::UInteger resolveLevel() const;
    void setResolveLevel(NS::UInteger resolveLevel);
    NS::UInteger resolveSlice() const;
    void setResolveSlice(NS::UInteger resolveSlice);
    NS::UInteger resolveDepthPlane() const;
    void setResolveDepthPlane(NS::UInteger resolveDepthPlane);
    LoadAction loadAction() const;
    void setLoadAction(LoadAction loadAction);
    StoreAction storeAction() const;
    void setStoreAction(StoreAction storeAction);
};

class SOFTMETAL_API RenderPassColorAttachmentDescriptor
    : public NS::Copying<RenderPassColorAttachmentDescriptor, RenderPassAttachmentDescriptor>
{
public:
    static RenderPassColorAttachmentDescriptor* alloc();
    RenderPassColorAttachmentDescriptor* init();
    ClearColor clearColor() const;
    void setClearColor(ClearColor clearColor);
};

class SOFTMETAL_API RenderPassDepthAttachmentDescriptor
    : public NS::Copying<RenderPassDepthAttachmentDescriptor, RenderPassAttachmentDescriptor>
{
public:
    static RenderPassDepthAttachmentDescriptor* alloc();
    RenderPassDepthAttachmentDescriptor* init();
    double clearDepth() const;
    void setClearDepth(double clearDepth);
    MultisampleDepthResolveFilter depthResolveFilter() const;
    void setDepthResolveFilter(MultisampleDepthResolveFilter depthResolveFilter);
};

class SOFTMETAL_API RenderPassStencilAttachmentDescriptor
    : public NS::Copying<RenderPassStencilAttachmentDescriptor, RenderPassAttachmentDescriptor>
{
public:
    static RenderPassStencilAttachmentDescriptor* alloc();
    RenderPassStencilAttachmentDescriptor* init();
    uint32_t clearStencil() const;
    void setClearStencil(uint32_t clearStencil);
    MultisampleStencilResolveFilter stencilResolveFilter() const;
    void setStencilResolveFilter(MultisampleStencilResolveFilter stencilResolveFilter);
};

class SOFTMETAL_API RenderPassColorAttachmentDescriptorArray
    : public NS::Referencing<RenderPassColorAttachmentDescriptorArray>
{
public:
    static RenderPassColorAttachmentDescriptorArray* alloc();
    RenderPassColorAttachmentDescriptorArray* init();
    RenderPassColorAttachmentDescriptor* object(NS::UInteger attachmentIndex);
    void setObject(const RenderPassColorAttachmentDescriptor* attachment, NS::UInteger attachmentIndex);
};

class SOFTMETAL_API RenderPassDescriptor : public NS::Copying<RenderPassDescriptor>
{
public:
    static RenderPassDescriptor* alloc();
    RenderPassDescriptor* init();
    static RenderPassDescriptor* renderPassDescriptor();
    RenderPassColorAttachmentDescriptorArray* colorAttachments() const;
    RenderPassDepthAttachmentDescriptor* depthAttachment() const;
    void setDepthAttachment(const RenderPassDepthAttachmentDescriptor* depthAttachment);
    RenderPassStencilAttachmentDescriptor* stencilAttachment() const;
    void setStencilAttachment(const RenderPassStencilAttachmentDescriptor* stencilAttachment);
    Buffer* visibilityResultBuffer() const;
    void setVisibilityResultBuffer(const Buffer* visibilityResultBuffer);
    NS::UInteger renderTargetArrayLength() const;
    void setRenderTargetArrayLength(NS::UInteger renderTargetArrayLength);
    NS::UInteger defaultRasterSampleCount() const;
    void setDefaultRasterSampleCount(NS::UInteger defaultRasterSampleCount);
    NS::UInteger renderTargetWidth() const;
    void setRenderTargetWidth(NS::UInteger renderTargetWidth);
    NS::UInteger renderTargetHeight() const;
    void setRenderTargetHeight(NS::UInteger renderTargetHeight);
};

} // namespace MTL
