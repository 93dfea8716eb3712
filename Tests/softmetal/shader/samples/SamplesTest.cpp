// SPDX-License-Identifier: Apache-2.0
// Each program of this folder from its text to machine code.
#include "softmetal/device/DeviceFixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace samples_test
{

namespace fs = std::filesystem;
using device_test::text;

std::vector<std::string> sampleNames()
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(SOFTMETAL_SAMPLES)) {
        if (entry.path().extension() == ".metal") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Attachments of programs that do not write one real colour.
const std::map<std::string, std::vector<MTL::PixelFormat>> Attachments = {
    {"gbuffer",
     {MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatRGBA16Float, MTL::PixelFormatR32Float, MTL::PixelFormatR32Uint}},
    {"integer_formats", {MTL::PixelFormatRGBA32Uint, MTL::PixelFormatRGBA32Sint, MTL::PixelFormatR16Uint}},
};

MTL::VertexFormat formatOf(MTL::DataType type)
{
    switch (type) {
    case MTL::DataTypeFloat2:
        return MTL::VertexFormatFloat2;
    case MTL::DataTypeFloat3:
        return MTL::VertexFormatFloat3;
    case MTL::DataTypeHalf3:
        return MTL::VertexFormatHalf3;
    case MTL::DataTypeUShort4:
        return MTL::VertexFormatUShort4;
    default:
        return MTL::VertexFormatFloat4;
    }
}

class Samples : public device_test::Device, public ::testing::WithParamInterface<std::string>
{
protected:
    MTL::Library* compiled()
    {
        std::ifstream file(std::string(SOFTMETAL_SAMPLES) + "/" + GetParam() + ".metal");
        std::ostringstream source;
        source << file.rdbuf();
        NS::Error* error = nullptr;
        auto* result = owned(device->newLibrary(text(source.str()), nullptr, &error));
        if (!result) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return result;
    }

    /// Constants that some of the programs declare; the others pass over them.
    MTL::FunctionConstantValues* constants()
    {
        auto* values = owned(MTL::FunctionConstantValues::alloc()->init());
        const bool yes[] = {true, true};
        const int lights = 3;
        values->setConstantValues(yes, MTL::DataTypeBool, NS::Range(0, 2));
        values->setConstantValue(&lights, MTL::DataTypeInt, NS::UInteger(2));
        return values;
    }

    std::vector<MTL::Function*> functionsOf(MTL::Library* made, MTL::FunctionType type)
    {
        std::vector<MTL::Function*> result;
        for (NS::UInteger i = 0; i < made->functionNames()->count(); ++i) {
            auto* name = made->functionNames()->object<NS::String>(i);
            NS::Error* error = nullptr;
            auto* one = owned(made->newFunction(name, constants(), &error));
            if (!one)
                ADD_FAILURE() << name->utf8String() << ": " << error->localizedDescription()->utf8String();
            else if (one->functionType() == type)
                result.push_back(one);
        }
        return result;
    }

    MTL::RenderPipelineDescriptor* described(MTL::Function* vertices, MTL::Function* pixels)
    {
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(vertices);
        d->setFragmentFunction(pixels);
        auto* layout = MTL::VertexDescriptor::vertexDescriptor();
        NS::Array* attributes = vertices->vertexAttributes();
        for (NS::UInteger i = 0; attributes && i < attributes->count(); ++i) {
            auto* attribute = attributes->object<MTL::VertexAttribute>(i);
            layout->attributes()->object(attribute->attributeIndex())->setFormat(formatOf(attribute->attributeType()));
            layout->attributes()->object(attribute->attributeIndex())->setBufferIndex(30);
            layout->layouts()->object(30)->setStride(16);
        }
        d->setVertexDescriptor(layout);
        auto known = Attachments.find(GetParam());
        std::vector<MTL::PixelFormat> formats =
            known == Attachments.end() ? std::vector{MTL::PixelFormatRGBA32Float} : known->second;
        for (NS::UInteger i = 0; i < formats.size(); ++i)
            d->colorAttachments()->object(i)->setPixelFormat(formats[i]);
        return d;
    }
};

TEST_P(Samples, MakesAPipelineOfEachFragmentFunction)
{
    auto* made = compiled();
    ASSERT_NE(made, nullptr);
    auto vertices = functionsOf(made, MTL::FunctionTypeVertex),
         fragments = functionsOf(made, MTL::FunctionTypeFragment);
    ASSERT_FALSE(vertices.empty());
    ASSERT_FALSE(fragments.empty());
    for (MTL::Function* one : vertices)
        EXPECT_NE(pipeline(described(one, nullptr)), nullptr) << one->name()->utf8String();
    for (MTL::Function* one : fragments)
        EXPECT_NE(pipeline(described(vertices.back(), one)), nullptr) << one->name()->utf8String();
}

INSTANTIATE_TEST_SUITE_P(Programs, Samples, ::testing::ValuesIn(sampleNames()),
                         [](const auto& one) { return one.param; });

TEST(SampleFolder, HoldsAtLeastThirtyPrograms)
{
    EXPECT_GE(sampleNames().size(), 30u);
}

} // namespace samples_test
