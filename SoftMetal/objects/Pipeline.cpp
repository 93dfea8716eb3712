// SPDX-License-Identifier: Apache-2.0
// Joins two functions, a vertex layout and attachment formats into what the rasteriser runs.
#include "formats/PixelFormat.h"
#include "formats/VertexFormat.h"
#include "objects/Resources.h"

#include <algorithm>

namespace softmetal {
namespace {

using shader::FunctionReflection;
using shader::ScalarType;

bool isReal(ScalarType type) { return type == ScalarType::Float || type == ScalarType::Half; }

/// The first thing that is wrong is the one that is told.
void refuse(std::string& why, const std::string& sentence)
{
    if (why.empty()) why = sentence;
}

/// What a step asks for that this device does not do, empty when there is nothing.
std::string stepProblem(const VertexBufferLayoutDescriptorObject& layout)
{
    if (layout.stepFunction > MTL::VertexStepFunctionPerInstance)
        return "steps by patches, which this device does not draw";
    if (layout.stepFunction == MTL::VertexStepFunctionPerVertex && layout.stepRate != 1)
        return "steps by vertices, whose rate must be 1";
    if (layout.stepFunction == MTL::VertexStepFunctionPerInstance && layout.stepRate == 0)
        return "steps by instances, whose rate must not be 0";
    return {};
}

void takeAttribute(raster::Pipeline& pipeline, const shader::AttributeReflection& attribute, const VertexDescriptorObject* descriptor, std::string& why)
{
    std::string subject = "Vertex attribute " + attribute.name + "(" + std::to_string(attribute.index) + ")";
    const VertexAttributeDescriptorObject* known = descriptor ? descriptor->attributes->known(attribute.index) : nullptr;
    if (!known || known->format == MTL::VertexFormatInvalid) return refuse(why, subject + " is missing from the vertex descriptor");
    if (formats::vertexFormatInfo(static_cast<uint32_t>(known->format)).components == 0) return refuse(why, subject + " has a vertex format that this device does not have");
    if (known->bufferIndex >= abi::MaxBuffers) return refuse(why, subject + " reads from a buffer index beyond 30");
    const VertexBufferLayoutDescriptorObject* layout = descriptor->layouts->known(known->bufferIndex);
    bool constant = layout && layout->stepFunction == MTL::VertexStepFunctionConstant;
    if (!layout || (layout->stride == 0 && !constant)) return refuse(why, subject + " reads from buffer index " + std::to_string(known->bufferIndex) + ", whose layout has no stride");
    if (std::string problem = stepProblem(*layout); !problem.empty())
        return refuse(why, subject + " reads from buffer index " + std::to_string(known->bufferIndex) + ", which " +
                               problem);
    pipeline.attributes[attribute.index] = {static_cast<uint32_t>(known->format), static_cast<uint32_t>(known->offset), static_cast<uint32_t>(known->bufferIndex),
                                            formats::vertexFormatInfo(static_cast<uint32_t>(known->format))};
    pipeline.attributeMask |= 1u << attribute.index;
    if (isReal(attribute.type)) pipeline.floatAttributes |= 1u << attribute.index;
}

void takeVertexDescriptor(raster::Pipeline& pipeline, const FunctionReflection& vertex, const Object* object, std::string& why)
{
    const auto* descriptor = static_cast<const VertexDescriptorObject*>(object);
    for (const auto& attribute : vertex.attributes)
        if (attribute.active && attribute.index < abi::MaxVertexAttributes) takeAttribute(pipeline, attribute, descriptor, why);
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
            return refuse(why, "Fragment input(s) `" + input.name + "` mismatching vertex shader output type(s) or not written by vertex shader");
        }
        for (uint32_t c = 0; c < input.components; ++c) {
            pipeline.inputMap.push_back(source->firstComponent + c);
            pipeline.inputInterpolation.push_back(static_cast<uint8_t>(input.interpolation));
        }
    }
}

bool hasSecondSource(const RenderPipelineColorAttachmentDescriptorObject& a)
{
    return std::max({a.sourceRGBBlendFactor, a.destinationRGBBlendFactor, a.sourceAlphaBlendFactor,
                     a.destinationAlphaBlendFactor}) > MTL::BlendFactorOneMinusBlendAlpha;
}

void takeAttachments(raster::Pipeline& pipeline, const RenderPipelineDescriptorObject& d, std::string& why)
{
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        const RenderPipelineColorAttachmentDescriptorObject* a = d.colorAttachments->known(i);
        if (!a) continue;
        pipeline.colorFormats[i] = static_cast<uint32_t>(a->pixelFormat);
        const auto* format = formats::pixelFormatInfo(pipeline.colorFormats[i]);
        if (a->pixelFormat != MTL::PixelFormatInvalid && (!format || !format->renderable || format->isDepthOrStencil()))
            refuse(why, "the pixel format of colour attachment " + std::to_string(i) + " cannot be rendered to");
        if (format && a->blendingEnabled && !format->blendable) refuse(why, "the pixel format of colour attachment " + std::to_string(i) + " does not support blending");
        if (a->blendingEnabled && hasSecondSource(*a))
            refuse(why, "colour attachment " + std::to_string(i) +
                            " blends with a second source, which this device does not have");
        pipeline.blend[i] = {a->blendingEnabled, static_cast<uint8_t>(a->rgbBlendOperation), static_cast<uint8_t>(a->alphaBlendOperation),
                             static_cast<uint8_t>(a->sourceRGBBlendFactor), static_cast<uint8_t>(a->destinationRGBBlendFactor),
                             static_cast<uint8_t>(a->sourceAlphaBlendFactor), static_cast<uint8_t>(a->destinationAlphaBlendFactor),
                             static_cast<uint8_t>(a->writeMask)};
    }
    const auto* depth = formats::pixelFormatInfo(static_cast<uint32_t>(d.depthAttachmentPixelFormat));
    const auto* stencil = formats::pixelFormatInfo(static_cast<uint32_t>(d.stencilAttachmentPixelFormat));
    if (d.depthAttachmentPixelFormat != MTL::PixelFormatInvalid && (!depth || !depth->hasDepth)) refuse(why, "the depth attachment's pixel format has no depth");
    if (d.stencilAttachmentPixelFormat != MTL::PixelFormatInvalid && (!stencil || !stencil->hasStencil))
        refuse(why, "the stencil attachment's pixel format has no stencil");
    if (d.rasterSampleCount != 1) refuse(why, "this device has no pipelines of several samples (" + std::to_string(d.rasterSampleCount) + ")");
    if (d.alphaToCoverageEnabled)
        refuse(why, "alpha-to-coverage chooses among several samples, and this device has one");
    pipeline.alphaToOne = d.alphaToOneEnabled;
    pipeline.rasterizationEnabled = d.rasterizationEnabled;
}

/// What a fragment function writes to an attachment: 0 real, 1 signed, 2 unsigned numbers.
uint8_t outputKind(ScalarType type)
{
    if (isReal(type)) return 0;
    return type == ScalarType::Int || type == ScalarType::Short || type == ScalarType::Char ? 1 : 2;
}

uint8_t attachmentKind(const formats::PixelFormatInfo& format)
{
    if (format.component == formats::Component::Sint) return 1;
    return format.component == formats::Component::Uint ? 2 : 0;
}

void takeFragment(raster::Pipeline& pipeline, const FunctionReflection& fragment, std::string& why)
{
    pipeline.colorOutputs = fragment.colorOutputs;
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        pipeline.colorTypes[i] = outputKind(fragment.colorTypes[i]);
        const auto* format = formats::pixelFormatInfo(pipeline.colorFormats[i]);
        bool meets = format && (fragment.colorOutputs >> i & 1) != 0;
        if (meets && attachmentKind(*format) != pipeline.colorTypes[i])
            refuse(why, "output " + std::to_string(i) + " of function '" + fragment.name + "' is of another kind of number than pixel format " + format->name);
    }
    if (pipeline.alphaToOne && (fragment.colorOutputs & 1) != 0 && pipeline.colorTypes[0] != 0)
        refuse(why,
               "alpha-to-one does not go with colours of whole numbers, which function '" + fragment.name + "' writes");
    pipeline.writesDepth = fragment.writesDepth;
    pipeline.writesStencil = fragment.writesStencil;
    pipeline.writesCoverage = fragment.writesCoverage;
    pipeline.discards = fragment.discards;
    pipeline.usesPointCoord = fragment.usesPointCoord;
    pipeline.earlyTests = fragment.earlyFragmentTests;
    pipeline.readsDepth = fragment.readsDepth;
    pipeline.readsInverseW = fragment.readsInverseW;
    pipeline.readsW = fragment.readsW;
    pipeline.copiedTexture = fragment.copiedTexture;
    std::copy_n(fragment.copiedPlanes, 2, pipeline.copiedPlanes);
    pipeline.writesMemory = fragment.writesMemory;
}

std::shared_ptr<shader::Function> functionOf(const ObjectRef& object) { return object ? static_cast<FunctionObject*>(object.get())->function : nullptr; }

} // namespace

std::string RenderPipelineStateObject::summary() const
{
    std::string text = vertexFunction ? vertexFunction->reflection().name : "";
    return fragmentFunction ? text + ", " + fragmentFunction->reflection().name : text;
}

RenderPipelineStateObject* RenderPipelineStateObject::make(DeviceObject* owner, const RenderPipelineDescriptorObject& d, std::string& why)
{
    auto result = Ref<RenderPipelineStateObject>::adopt(new RenderPipelineStateObject(owner));
    raster::Pipeline& pipeline = result->pipeline;
    result->label = d.label;
    result->vertexFunction = functionOf(d.vertexFunction);
    result->fragmentFunction = functionOf(d.fragmentFunction);
    if (!result->vertexFunction) {
        why = "vertexFunction must not be nil";
        return nullptr;
    }
    const FunctionReflection& vertex = result->vertexFunction->reflection();
    if (vertex.stage != shader::Stage::Vertex) refuse(why, "function '" + vertex.name + "' is not a vertex function");
    if (vertex.inputComponents > abi::MaxVertexOutputComponents) refuse(why, "the vertex function has too many outputs");
    if (d.rasterizationEnabled && !vertex.hasPosition)
        refuse(why, "vertex function '" + vertex.name + "' has no position, which rasterization needs");
    pipeline.outputComponents = vertex.inputComponents;
    pipeline.pointSizeComponent = vertex.pointSizeComponent;
    pipeline.clipComponent = vertex.clipComponent;
    pipeline.clipDistances = vertex.clipDistances;
    takeVertexDescriptor(pipeline, vertex, d.vertexDescriptor.get(), why);
    takeAttachments(pipeline, d, why);
    if (why.empty() && result->fragmentFunction) {
        const FunctionReflection& fragment = result->fragmentFunction->reflection();
        if (fragment.stage != shader::Stage::Fragment) refuse(why, "function '" + fragment.name + "' is not a fragment function");
        connect(pipeline, vertex, fragment, why);
        takeFragment(pipeline, fragment, why);
    }
    if (why.empty()) pipeline.vertex = result->vertexFunction->vertexCode(why);
    if (why.empty() && result->fragmentFunction) pipeline.fragment = result->fragmentFunction->fragmentCode(why);
    if (!why.empty()) return nullptr;
    result->topology = static_cast<uint8_t>(d.inputPrimitiveTopology);
    result->depthFormat = static_cast<uint32_t>(d.depthAttachmentPixelFormat);
    result->stencilFormat = static_cast<uint32_t>(d.stencilAttachmentPixelFormat);
    return result.detach();
}

} // namespace softmetal
