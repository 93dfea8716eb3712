// SPDX-License-Identifier: Apache-2.0
// One render pass as the rasteriser sees it: plain descriptions in, pixels in texture memory out. The room knows neither
// encoders nor Metal objects; execution translates records into these structs and keeps what they point to alive until
// finish() has returned. Enumerators are Metal's, as integers.
#pragma once

#include "formats/VertexFormat.h"
#include "shader/abi.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace softmetal::raster {

/// A sub-image that is drawn to: one level and slice (or depth plane) of a texture.
struct Target
{
    const abi::Texture* texture = nullptr; // null: nothing attached
    uint32_t level = 0, slice = 0, plane = 0;
    uint8_t loadAction = 0;  // MTL::LoadAction
    uint8_t storeAction = 1; // MTL::StoreAction
    double clearColor[4] = {0, 0, 0, 0};
    double clearDepth = 1;
    uint32_t clearStencil = 0;
};

struct PassDescription
{
    Target color[abi::MaxColorOutputs];
    Target depth, stencil;
    uint32_t width = 0, height = 0; // render area
    uint64_t* visibility = nullptr; // occlusion counters (8 bytes each), or null
    uint64_t visibilityCount = 0;
};

struct BlendState
{
    bool enabled = false;
    uint8_t rgbOperation = 0, alphaOperation = 0;                                  // MTL::BlendOperation
    uint8_t sourceRgb = 1, destinationRgb = 0, sourceAlpha = 1, destinationAlpha = 0; // MTL::BlendFactor
    uint8_t writeMask = 15;                                                        // MTL::ColorWriteMask
};

struct VertexAttribute
{
    uint32_t format = 0; // MTL::VertexFormat, 0: the attribute reads zeros
    uint32_t offset = 0;
    uint32_t buffer = 0;
    formats::VertexFormatInfo info{}; // of format
};

struct VertexLayout
{
    uint32_t stride = 0;
    uint8_t stepFunction = 1; // MTL::VertexStepFunction
    uint32_t stepRate = 1;
};

/// Everything that a pipeline state fixes. Immutable; shared by draws.
struct Pipeline
{
    abi::VertexFunction vertex = nullptr;
    abi::FragmentFunction fragment = nullptr; // null: depth and stencil only
    VertexAttribute attributes[abi::MaxVertexAttributes];
    uint32_t attributeMask = 0;   // attributes the vertex function reads
    uint32_t floatAttributes = 0; // attributes it declares with a real type: integers are converted
    VertexLayout layouts[abi::MaxBuffers];
    uint32_t outputComponents = 4;              // of the vertex function, position included
    int32_t pointSizeComponent = -1;
    uint32_t clipComponent = 0, clipDistances = 0; // output components: what lies where one is below zero is cut away
    std::vector<uint32_t> inputMap;             // fragment plane i is made from this vertex output component
    std::vector<uint8_t> inputInterpolation;    // per plane: 0 perspective, 1 linear, 2 flat
    uint32_t colorOutputs = 0;                  // bit n: the fragment function writes colour n
    uint8_t colorTypes[abi::MaxColorOutputs] = {}; // 0 float, 1 signed, 2 unsigned
    bool writesDepth = false, writesStencil = false, writesCoverage = false, discards = false, usesPointCoord = false,
         earlyTests = false;
    bool readsDepth = true, readsInverseW = true, readsW = true; // of FragmentInput: z, invW, w
    int32_t copiedTexture = -1;    // the fragment function does nothing but copy this texture's texels to colour 0
    uint32_t copiedPlanes[2] = {}; // the inputs that give their places, in pixels
    bool writesMemory = true; // the fragment function may write buffers or textures
    uint32_t colorFormats[abi::MaxColorOutputs] = {}; // MTL::PixelFormat
    BlendState blend[abi::MaxColorOutputs];
    bool alphaToOne = false; // the alpha of colour 0 is one, whatever the fragment function says
    bool rasterizationEnabled = true;
};

struct StencilState
{
    uint8_t compareFunction = 7;                          // MTL::CompareFunction
    uint8_t failOperation = 0, depthFailOperation = 0, passOperation = 0; // MTL::StencilOperation
    uint32_t readMask = 0xFFFFFFFF, writeMask = 0xFFFFFFFF;
};

struct DepthStencil
{
    uint8_t depthCompare = 7; // MTL::CompareFunction
    bool depthWrite = false;
    bool stencilEnabled = false;
    StencilState front, back;
};

/// State that the encoder may change between draws.
struct DrawState
{
    const Pipeline* pipeline = nullptr;
    DepthStencil depthStencil;
    uint32_t stencilReferenceFront = 0, stencilReferenceBack = 0;
    double viewport[6] = {0, 0, 0, 0, 0, 1}; // originX, originY, width, height, znear, zfar
    uint32_t scissor[4] = {0, 0, 0xFFFFFFFF, 0xFFFFFFFF}; // x, y, width, height; clamped to the render area
    uint8_t winding = 0;      // MTL::Winding of front faces
    uint8_t cullMode = 0;     // MTL::CullMode
    uint8_t fillMode = 0;     // MTL::TriangleFillMode
    uint8_t depthClipMode = 0; // MTL::DepthClipMode
    float depthBias = 0, depthBiasSlope = 0, depthBiasClamp = 0;
    float blendColor[4] = {0, 0, 0, 0};
    uint8_t visibilityMode = 0; // MTL::VisibilityResultMode
    uint64_t visibilityIndex = 0;
    const abi::Resources* vertexResources = nullptr;   // also where vertex buffers are fetched from
    const abi::Resources* fragmentResources = nullptr;
};

struct DrawCall
{
    uint8_t primitive = 3; // MTL::PrimitiveType
    uint32_t start = 0, count = 0; // vertices, or indices
    uint32_t instanceCount = 1, baseInstance = 0;
    int32_t baseVertex = 0;
    const void* indices = nullptr; // null: not indexed
    uint64_t indexBytes = 0;       // readable from indices
    uint8_t indexType = 0;         // MTL::IndexType
    uint32_t firstPrimitive = 0;   // number of the first one, of a call that is a part of another
};

/// Lanes that the process's shader functions were compiled for: 4, 8 or 16. Set once, before the first pass.
void setLanes(uint32_t count);

class PassImplementation;

/// Draws may be deferred: the state, and what state, call and description point to, must stay valid until finish() returns.
/// One thread drives a pass; inside, work is spread over the pool. The pixels do not depend on the number of workers.
class Pass
{
public:
    explicit Pass(const PassDescription& description);
    ~Pass();
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    void draw(const DrawState& state, const DrawCall& call); // calls with one state struct are drawn as one
    void finish();

private:
    std::unique_ptr<PassImplementation> implementation_;
};

} // namespace softmetal::raster
