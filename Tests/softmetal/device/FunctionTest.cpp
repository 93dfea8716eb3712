// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

namespace device_test {

class Function : public Device
{
protected:
    static constexpr const char* Source = R"(
#include <metal_stdlib>
using namespace metal;
constant int shift [[function_constant(3)]];
constant float4 tint [[function_constant(7)]];
struct In { float3 position [[attribute(0)]]; half4 color [[attribute(2)]]; uint id [[attribute(5)]]; };
struct Varying { float4 position [[position]]; float4 color; };
vertex Varying transform(In in [[stage_in]])
{
    Varying v;
    v.position = float4(in.position + float(shift), 1);
    v.color = float4(in.color) * tint + float(in.id);
    return v;
}
fragment float4 plain(Varying v [[stage_in]]) { return v.color; }
)";
    MTL::Library* described()
    {
        NS::Error* error = nullptr;
        auto* result = owned(device->newLibrary(text(Source), nullptr, &error));
        if (!result) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return result;
    }
    MTL::FunctionConstantValues* values()
    {
        auto* v = owned(MTL::FunctionConstantValues::alloc()->init());
        int shift = 1;
        float tint[4] = {1, 1, 1, 1};
        v->setConstantValue(&shift, MTL::DataTypeInt, NS::UInteger(3));
        v->setConstantValue(tint, MTL::DataTypeFloat4, NS::UInteger(7));
        return v;
    }
    MTL::Function* made(const char* name)
    {
        NS::Error* error = nullptr;
        auto* result = owned(described()->newFunction(text(name), values(), &error));
        if (!result) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return result;
    }
};

TEST_F(Function, TellsItsVertexAttributes)
{
    struct Expected
    {
        const char* name;
        NS::UInteger index;
        MTL::DataType type;
    };
    const Expected expected[] = {
        {"position", 0, MTL::DataTypeFloat3}, {"color", 2, MTL::DataTypeHalf4}, {"id", 5, MTL::DataTypeUInt}};
    NS::Array* attributes = made("transform")->vertexAttributes();
    ASSERT_EQ(attributes->count(), 3u);
    for (NS::UInteger i = 0; i < 3; ++i) {
        auto* attribute = attributes->object<MTL::VertexAttribute>(i);
        EXPECT_STREQ(attribute->name()->utf8String(), expected[i].name);
        EXPECT_EQ(attribute->attributeIndex(), expected[i].index);
        EXPECT_EQ(attribute->attributeType(), expected[i].type);
        EXPECT_TRUE(attribute->active());
        EXPECT_FALSE(attribute->patchData() || attribute->patchControlPointData());
    }
}

TEST_F(Function, OfTheFragmentStageHasNoVertexAttributes) { EXPECT_EQ(made("plain")->vertexAttributes(), nullptr); }

TEST_F(Function, TellsItsConstantsByName)
{
    NS::Dictionary* constants = made("transform")->functionConstantsDictionary();
    auto* tint = constants->object<MTL::FunctionConstant>(text("tint"));
    ASSERT_NE(tint, nullptr);
    EXPECT_STREQ(tint->name()->utf8String(), "tint");
    EXPECT_EQ(tint->index(), 7u);
    EXPECT_EQ(tint->type(), MTL::DataTypeFloat4);
    EXPECT_TRUE(tint->required());
    EXPECT_EQ(constants->object<MTL::FunctionConstant>(text("shift"))->index(), 3u);
}

TEST_F(Function, MadeBlankIsEmpty)
{
    auto* attribute = owned(MTL::VertexAttribute::alloc()->init());
    auto* constant = owned(MTL::FunctionConstant::alloc()->init());
    EXPECT_EQ(attribute->name()->length() + constant->name()->length(), 0u);
    EXPECT_EQ(attribute->attributeType(), MTL::DataTypeNone);
    EXPECT_EQ(constant->type(), MTL::DataTypeNone);
    EXPECT_FALSE(attribute->active() || constant->required());
}

TEST_F(Function, HandlerGetsTheFunctionOrTheError)
{
    std::string heard;
    auto hear = [&](MTL::Function* function, NS::Error* error) { heard += function ? function->name()->utf8String() : error ? "error" : "nothing"; };
    described()->newFunction(text("transform"), values(), hear);
    described()->newFunction(text("absent"), values(), hear);
    EXPECT_EQ(heard, "transformerror");
}

} // namespace device_test
