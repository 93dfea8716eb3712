// SPDX-License-Identifier: Apache-2.0
// Joins two functions, a vertex layout and attachment formats into what the rasteriser runs.
#include "formats/PixelFormat.h"
#include "objects/Resources.h"

namespace softmetal {
namespace {

using shader::FunctionReflection;
using shader::ScalarType;

bool isReal(ScalarType type) { return type == ScalarType::Float || type == ScalarType::Half; }

void takeVertexDescriptor(raster::Pipeline& pipeline, const FunctionReflection& vertex, const Object* object, std::string& why)
{
    const auto* descriptor = static_cast<const VertexDescriptorObject*>(object);
    for (const auto& attribute : vertex.attributes) {
        if (!attribute.active || attribute.index >= abi::MaxVertexAttributes) continue;
        const VertexAttributeDescriptorObject* known = descriptor ? descriptor->attributes->known(attribute.index) : nullptr;
        if (!known || known->format == MTL::VertexFormatInvalid) {
            why = "Vertex attribute " + attribute.name + "(" + std::to_string(attribute.index) + ") is missing from the vertex descriptor";
            return;
        }
        pipeline.attributes[attribute.index] = {static_cast<uint32_t>(known->format), static_cast<uint32_t>(known->offset), static_cast<uint32_t>(known->bufferIndex)};
        pipeline.attributeMask |= 1u << attribute.index;
        if (isReal(attribute.type)) pipeline.floatAttributes |= 1u << attribute.index;
        if (known->bufferIndex >= abi::MaxBuffers) why = "a vertex attribute reads from a buffer index beyond 30";
    }
    for (uint32_t i = 0; descriptor && i < abi::MaxBuffers; ++i)
        if (const VertexBufferLayoutDescriptorObject* layout = descriptor->layouts->known(i))
            pipeline.layouts[i] = {static_cast<uint32_t>(layout->stride), static_cast<uint8_t>(layout->stepFunction), static_cast<uint32_t>(layout->stepRate)};
}

/// Finds for each input of the fragment function where the vertex function leaves it.
void connect(raster::Pipeline& pipeline, const FunctionReflection& vertex, const FunctionReflection& fragment, std::string& why)
{
    for (const auto& input : fragment.varyings) {
        const shader::VaryingReflection* source = nullptr;
        for (const auto& output : vertex.varyings)
            if (output.name == input.name) source = &output;
        if (!source || source->components < input.components || isReal(source->type) != isReal(input.type)) {
            why = "Fragment input(s) `" + input.name + "` mismatching vertex shader output type(s) or not written by vertex shader";
            return;
        }
        for (uint32_t c = 0; c < input.components; ++c) {
            pipeline.inputMap.push_back(source->firstComponent + c);
            pipeline.inputInterpolation.push_back(static_cast<uint8_t>(input.interpolation));
        }
    }
}

void takeAttachments(raster::Pipeline& pipeline, const RenderPipelineDescriptorObject& d, std::string& why)
{
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        const RenderPipelineColorAttachmentDescriptorObject* a = d.colorAttachments->known(i);
        if (!a) continue;
        pipeline.colorFormats[i] = static_cast<uint32_t>(a->pixelFormat);
        const auto* format = formats::pixelFormatInfo(pipeline.colorFormats[i]);
        if (a->pixelFormat != MTL::PixelFormatInvalid && (!format || !format->renderable || format->isDepthOrStencil()))
            why = "the pixel format of colour attachment " + std::to_string(i) + " cannot be rendered to";
        if (format && a->blendingEnabled && !format->blendable) why = "the pixel format of colour attachment " + std::to_string(i) + " does not support blending";
        pipeline.blend[i] = {a->blendingEnabled, static_cast<uint8_t>(a->rgbBlendOperation), static_cast<uint8_t>(a->alphaBlendOperation),
                             static_cast<uint8_t>(a->sourceRGBBlendFactor), static_cast<uint8_t>(a->destinationRGBBlendFactor),
                             static_cast<uint8_t>(a->sourceAlphaBlendFactor), static_cast<uint8_t>(a->destinationAlphaBlendFactor),
                             static_cast<uint8_t>(a->writeMask)};
    }
    const auto* depth = formats::pixelFormatInfo(static_cast<uint32_t>(d.depthAttachmentPixelFormat));
    const auto* stencil = formats::pixelFormatInfo(static_cast<uint32_t>(d.stencilAttachmentPixelFormat));
    if (d.depthAttachmentPixelFormat != MTL::PixelFormatInvalid && (!depth || !depth->hasDepth)) why = "the depth attachment's pixel format has no depth";
    if (d.stencilAttachmentPixelFormat != MTL::PixelFormatInvalid && (!stencil || !stencil->hasStencil)) why = "the stencil attachment's pixel format has no stencil";
}

void takeFragment(raster::Pipeline& pipeline, const FunctionReflection& fragment)
{
    pipeline.colorOutputs = fragment.colorOutputs;
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i)
        pipeline.colorTypes[i] = isReal(fragment.colorTypes[i]) ? 0 : fragment.colorTypes[i] == ScalarType::Int ? 1 : 2;
    pipeline.writesDepth = fragment.writesDepth;
    pipeline.discards = fragment.discards;
    pipeline.usesPointCoord = fragment.usesPointCoord;
    pipeline.earlyTests = fragment.earlyFragmentTests;
}

} // namespace

RenderPipelineStateObject* RenderPipelineStateObject::make(DeviceObject* owner, const RenderPipelineDescriptorObject& d, std::string& why)
{
    auto result = Ref<RenderPipelineStateObject>::adopt(new RenderPipelineStateObject(owner));
    raster::Pipeline& pipeline = result->pipeline;
    auto functionOf = [](const ObjectRef& object) { return object ? static_cast<FunctionObject*>(object.get())->function : nullptr; };
    result->label = d.label;
    result->vertexFunction = functionOf(d.vertexFunction);
    result->fragmentFunction = functionOf(d.fragmentFunction);
    if (!result->vertexFunction) {
        why = "vertexFunction must not be nil";
        return nullptr;
    }
    const FunctionReflection& vertex = result->vertexFunction->reflection();
    pipeline.outputComponents = vertex.inputComponents;
    pipeline.pointSizeComponent = vertex.pointSizeComponent;
    pipeline.rasterizationEnabled = d.rasterizationEnabled;
    if (vertex.inputComponents > abi::MaxVertexOutputComponents) why = "the vertex function has too many outputs";
    takeVertexDescriptor(pipeline, vertex, d.vertexDescriptor.get(), why);
    takeAttachments(pipeline, d, why);
    if (why.empty() && result->fragmentFunction) {
        connect(pipeline, vertex, result->fragmentFunction->reflection(), why);
        takeFragment(pipeline, result->fragmentFunction->reflection());
    }
    if (why.empty()) pipeline.vertex = result->vertexFunction->vertexCode(why);
    if (why.empty() && result->fragmentFunction) pipeline.fragment = result->fragmentFunction->fragmentCode(why);
    if (!why.empty()) return nullptr;
    result->depthFormat = static_cast<uint32_t>(d.depthAttachmentPixelFormat);
    result->stencilFormat = static_cast<uint32_t>(d.stencilAttachmentPixelFormat);
    return result.detach();
}

} // namespace softmetal
