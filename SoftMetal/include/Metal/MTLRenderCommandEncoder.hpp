// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLArgument.hpp"
#include "MTLCommandEncoder.hpp"
#include "MTLRenderPass.hpp"
#include "MTLStageInputOutputDescriptor.hpp"
#include "MTLTypes.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Buffer;
class DepthStencilState;
class Fence;
class RenderPipelineState;
class Resource;
class SamplerState;
class Texture;

/// In pixels of the render target, origin at its top left.
struct ScissorRect
{
    NS::UInteger x, y, width, height;
};

/// In pixels; a negative height turns the picture upside down.
struct Viewport
{
    double originX, originY, width, height, znear, zfar;
};

enum PrimitiveType : NS::UInteger
{
    PrimitiveTypePoint = 0,
    PrimitiveTypeLine = 1,
    PrimitiveTypeLineStrip = 2,
    PrimitiveTypeTriangle = 3,
    PrimitiveTypeTriangleStrip = 4,
};

enum VisibilityResultMode : NS::UInteger
{
    VisibilityResultModeDisabled = 0,
    VisibilityResultModeBoolean = 1,
    VisibilityResultModeCounting = 2,
};

enum CullMode : NS::UInteger
{
    CullModeNone = 0,
    CullModeFront = 1,
    CullModeBack = 2,
};

enum Winding : NS::UInteger
{
    WindingClockwise = 0,
    WindingCounterClockwise = 1,
};

enum DepthClipMode : NS::UInteger
{
    DepthClipModeClip = 0,
    DepthClipModeClamp = 1,
};

enum TriangleFillMode : NS::UInteger
{
    TriangleFillModeFill = 0,
    TriangleFillModeLines = 1,
};

using RenderStages = NS::UInteger; // any of:
enum : RenderStages
{
    RenderStageVertex = 1,
    RenderStageFragment = 2,
    RenderStageTile = 4,
    RenderStageObject = 8,
    RenderStageMesh = 16,
};

class SOFTMETAL_API RenderCommandEncoder : public NS::Referencing<RenderCommandEncoder, CommandEncoder>
{
public:
    void setRenderPipelineState(const RenderPipelineState* pipelineState);
    void setVertexBytes(const void* bytes, NS::UInteger length, NS::UInteger index);
    void setVertexBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger index);
    void setVertexBufferOffset(NS::UInteger offset, NS::UInteger index);
    void setVertexBuffers(const Buffer* const buffers[], const NS::UInteger offsets[], NS::Range range);
    void setVertexTexture(const Texture* texture, NS::UInteger index);
    void setVertexTextures(const Texture* const textures[], NS::Range range);
    void setVertexSamplerState(const SamplerState* sampler, NS::UInteger index);
    void setVertexSamplerStates(const SamplerState* const samplers[], NS::Range range);
    void setViewport(Viewport viewport);
    void setViewports(const Viewport* viewports, NS::UInteger count);
    void setFrontFacingWinding(Winding frontFacingWinding);
    void setCullMode(CullMode cullMode);
    void setDepthClipMode(DepthClipMode depthClipMode);
    void setDepthBias(float depthBias, float slopeScale, float clamp);
    void setScissorRect(ScissorRect rect);
    void setScissorRects(const ScissorRect* scissorRects, NS::UInteger count);
    void setTriangleFillMode(TriangleFillMode fillMode);
    void setFragmentBytes(const void* bytes, NS::UInteger length, NS::UInteger index);
    void setFragmentBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger index);
    void setFragmentBufferOffset(NS::UInteger offset, NS::UInteger index);
    void setFragmentBuffers(const Buffer* const buffers[], const NS::UInteger offsets[], NS::Range range);
    void setFragmentTexture(const Texture* texture, NS::UInteger index);
    void setFragmentTextures(const Texture* const textures[], NS::Range range);
    void setFragmentSamplerState(const SamplerState* sampler, NS::UInteger index);
    void setFragmentSamplerStates(const SamplerState* const samplers[], NS::Range range);
    void setBlendColor(float red, float green, float blue, float alpha);
    void setDepthStencilState(const DepthStencilState* depthStencilState);
    void setStencilReferenceValue(uint32_t referenceValue);
    void setStencilReferenceValues(uint32_t frontReferenceValue, uint32_t backReferenceValue);
    void setVisibilityResultMode(VisibilityResultMode mode, NS::UInteger offset);
    void setColorStoreAction(StoreAction storeAction, NS::UInteger colorAttachmentIndex);
    void setDepthStoreAction(StoreAction storeAction);
    void setStencilStoreAction(StoreAction storeAction);
    void drawPrimitives(PrimitiveType primitiveType, NS::UInteger vertexStart, NS::UInteger vertexCount,
                        NS::UInteger instanceCount);
    void drawPrimitives(PrimitiveType primitiveType, NS::UInteger vertexStart, NS::UInteger vertexCount);
    void drawIndexedPrimitives(PrimitiveType primitiveType, NS::UInteger indexCount, IndexType indexType,
                               const Buffer* indexBuffer, NS::UInteger indexBufferOffset, NS::UInteger instanceCount);
    void drawIndexedPrimitives(PrimitiveType primitiveType, NS::UInteger indexCount, IndexType indexType,
                               const Buffer* indexBuffer, NS::UInteger indexBufferOffset);
    void drawPrimitives(PrimitiveType primitiveType, NS::UInteger vertexStart, NS::UInteger vertexCount,
                        NS::UInteger instanceCount, NS::UInteger baseInstance);
    void drawIndexedPrimitives(PrimitiveType primitiveType, NS::UInteger indexCount, IndexType indexType,
                               const Buffer* indexBuffer, NS::UInteger indexBufferOffset, NS::UInteger instanceCount,
                               NS::Integer baseVertex, NS::UInteger baseInstance);
    void textureBarrier();
    void updateFence(const Fence* fence, RenderStages stages);
    void waitForFence(const Fence* fence, RenderStages stages);
    void useResource(const Resource* resource, ResourceUsage usage);
    void useResources(const Resource* const resources[], NS::UInteger count, ResourceUsage usage);
    void useResource(const Resource* resource, ResourceUsage usage, RenderStages stages);
    void useResources(const Resource* const resources[], NS::UInteger count, ResourceUsage usage, RenderStages stages);
    void memoryBarrier(BarrierScope scope, RenderStages after, RenderStages before);
    void memoryBarrier(const Resource* const resources[], NS::UInteger count, RenderStages after, RenderStages before);
};

} // namespace MTL
