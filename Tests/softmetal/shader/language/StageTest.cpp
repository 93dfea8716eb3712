// SPDX-License-Identifier: Apache-2.0
// What the stages are given and what they hand on: identifiers, interpolation, facing, derivatives, discarding, function
// constants.
#include "Language.h"

namespace language_test {

class Stage : public Language
{
protected:
    /// Draws with a whole program of its own: entry points "in" and "out".
    std::vector<Value> run(const std::string& program, NS::UInteger width, NS::UInteger height,
                           const std::function<void(MTL::RenderCommandEncoder*)>& drawing, MTL::RenderPipelineDescriptor* d = nullptr)
    {
        std::vector<Value> result(width * height);
        auto* library = compiled(std::string(Numbers) + program);
        if (!library) return result;
        if (!d) d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(library->newFunction(device_test::text("in"))));
        d->setFragmentFunction(owned(library->newFunction(device_test::text("out"))));
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
        auto* state = pipeline(d);
        auto* target = texture(width, height, MTL::PixelFormatRGBA32Float);
        auto* e = encoder(target);
        e->setRenderPipelineState(state);
        drawing(e);
        finish(e);
        target->getBytes(result.data(), width * sizeof(Value), MTL::Region(0, 0, width, height), 0);
        return result;
    }

    /// A point for each vertex, at the pixel of its index.
    static constexpr const char* Points = R"(
float4 pixel(uint n, float width) { return float4((n + 0.5) / width * 2 - 1, 0, 0, 1); }
)";
};

TEST_F(Stage, VertexAndInstanceIdentifiers)
{
    const std::string program = std::string(Points) + R"(
struct Ids { float4 position [[position]]; float size [[point_size]]; float4 ids; };
vertex Ids in(uint vertexId [[vertex_id]], uint instance [[instance_id]], uint base [[base_instance]])
{
    Ids r;
    r.position = pixel((instance - base) * 2 + vertexId - 3, 4);
    r.size = 1;
    r.ids = float4(vertexId, instance, base, 1);
    return r;
}
fragment float4 out(Ids r [[stage_in]]) { return r.ids; }
)";
    auto values = run(program, 4, 1, [](auto* e) {
        e->drawPrimitives(MTL::PrimitiveTypePoint, NS::UInteger(3), NS::UInteger(2), NS::UInteger(2), NS::UInteger(5));
    });
    EXPECT_EQ(values[0], (Value{3, 5, 5, 1}));
    EXPECT_EQ(values[1], (Value{4, 5, 5, 1}));
    EXPECT_EQ(values[2], (Value{3, 6, 5, 1}));
    EXPECT_EQ(values[3], (Value{4, 6, 5, 1}));
}

TEST_F(Stage, IdentifiersMayBeShort)
{
    const std::string program = std::string(Points) + R"(
struct Ids { float4 position [[position]]; float size [[point_size]]; float id; };
vertex Ids in(ushort id [[vertex_id]], ushort instance [[instance_id]]) { return {pixel(id, 2), 1, float(id + instance)}; }
fragment float4 out(Ids r [[stage_in]]) { return r.id; }
)";
    auto values = run(program, 2, 1, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypePoint, NS::UInteger(0), NS::UInteger(2)); });
    EXPECT_EQ(values[1][0], 1);
}

TEST_F(Stage, BaseVertexOfAnIndexedDraw)
{
    const std::string program = std::string(Points) + R"(
struct Ids { float4 position [[position]]; float size [[point_size]]; float2 ids; };
vertex Ids in(uint id [[vertex_id]], uint base [[base_vertex]]) { return {pixel(0, 1), 1, float2(id, base)}; }
fragment float4 out(Ids r [[stage_in]]) { return float4(r.ids, 0, 0); }
)";
    auto* indices = bufferOf(std::vector<uint16_t>{2});
    auto values = run(program, 1, 1, [&](auto* e) {
        e->drawIndexedPrimitives(MTL::PrimitiveTypePoint, NS::UInteger(1), MTL::IndexTypeUInt16, indices, NS::UInteger(0), NS::UInteger(1), NS::Integer(7), NS::UInteger(0));
    });
    EXPECT_EQ(values[0], (Value{9, 7, 0, 0}));
}

TEST_F(Stage, PointSizeAndCoordinate)
{
    const std::string program = R"(
struct Point { float4 position [[position]]; float size [[point_size]]; };
vertex Point in(uint id [[vertex_id]]) { return {float4(0, 0, 0, 1), 4}; }
fragment float4 out(Point p [[stage_in]], float2 at [[point_coord]]) { return float4(at, 1, 1); }
)";
    auto values = run(program, 8, 8, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypePoint, NS::UInteger(0), NS::UInteger(1)); });
    EXPECT_EQ(values[1 * 8 + 1][2], 0);
    EXPECT_EQ(values[2 * 8 + 2], (Value{0.125f, 0.125f, 1, 1}));
    EXPECT_EQ(values[5 * 8 + 4], (Value{0.625f, 0.875f, 1, 1}));
    EXPECT_EQ(values[6 * 8 + 6][2], 0);
}

TEST_F(Stage, FrontFacingFollowsTheWinding)
{
    const std::string program = R"(
vertex Corner in(uint id [[vertex_id]]) { return corner(id); }
fragment float4 out(Corner c [[stage_in]], bool front [[front_facing]]) { return front ? float4(1) : float4(0.5); }
)";
    for (auto winding : {MTL::WindingClockwise, MTL::WindingCounterClockwise}) {
        auto values = run(program, 1, 1, [&](auto* e) {
            e->setFrontFacingWinding(winding);
            e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
        });
        EXPECT_EQ(values[0][0], winding == MTL::WindingCounterClockwise ? 1 : 0.5f);
    }
}

TEST_F(Stage, FragmentPositionIsThePixelCentreDepthAndInverseW)
{
    const std::string program = R"(
vertex Corner in(uint id [[vertex_id]]) { Corner c = corner(id); c.position *= 2; return c; }
fragment float4 out(Corner c [[stage_in]]) { return c.position; }
)";
    auto values = run(program, 4, 2, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3)); });
    EXPECT_EQ(values[4 + 2], (Value{2.5f, 1.5f, 0.25f, 0.5f}));
}

TEST_F(Stage, InterpolationIsPerspectiveLinearOrFlat)
{
    // w goes from 1 on the left to 3 on the right: half-way across the target, perspective weights the left three to one.
    const std::string program = R"(
struct Mixed
{
    float4 position [[position]];
    float usual;
    float linear [[center_no_perspective]];
    float flatly [[flat]];
    float centroid [[centroid_perspective]];
    int whole [[flat]];
};
vertex Mixed in(uint id [[vertex_id]])
{
    bool right = id & 1;
    float w = right ? 3 : 1, a = right ? 1 : 0;
    return {float4((right ? 1 : -1) * w, (id & 2 ? 1 : -1) * w, 0, w), a, a, id + 10.0f, a, int(id) + 20};
}
fragment float4 out(Mixed m [[stage_in]]) { return float4(m.usual + (m.centroid - m.usual), m.linear, m.flatly, m.whole); }
)";
    auto values = run(program, 3, 3, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangleStrip, NS::UInteger(0), NS::UInteger(4)); });
    const Value& middle = values[3 + 1];
    EXPECT_NEAR(middle[0], 0.25f, 1e-6f);
    EXPECT_NEAR(middle[1], 0.5f, 1e-6f);
    EXPECT_EQ(values[6][2], 10); // the first vertex of the first triangle
    EXPECT_EQ(values[6][3], 20);
}

TEST_F(Stage, MembersAreMatchedByNameOrByUserAttribute)
{
    const std::string program = R"(
struct Sent { float4 position [[position]]; float2 b; float3 first [[user(given)]]; float a; };
struct Received { float a; float3 second [[user(given)]]; };
vertex Sent in(uint id [[vertex_id]]) { return {corner(id).position, float2(9), float3(1, 2, 3), 4}; }
fragment float4 out(Received r [[stage_in]]) { return float4(r.second, r.a); }
)";
    auto values = run(program, 1, 1, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3)); });
    EXPECT_EQ(values[0], (Value{1, 2, 3, 4}));
}

TEST_F(Stage, DerivativesAreDifferencesWithinAQuad)
{
    const std::string program = R"(
vertex Corner in(uint id [[vertex_id]]) { return corner(id); }
fragment float4 out(Corner c [[stage_in]])
{
    float2 p = c.position.xy;
    return float4(dfdx(p.x * 3), dfdy(p.y * p.y), fwidth(p.x + 2 * p.y), dfdx(float2(p.y, p.x)).y);
}
)";
    auto values = run(program, 4, 4, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3)); });
    EXPECT_EQ(values[0], (Value{3, 2, 3, 1}));
    EXPECT_EQ(values[2 * 4 + 3], (Value{3, 6, 3, 1}));
}

TEST_F(Stage, DiscardedFragmentsWriteNothing)
{
    const std::string program = R"(
vertex Corner in(uint id [[vertex_id]]) { return corner(id); }
void leave(float at) { if (at < 2) discard_fragment(); }
fragment float4 out(Corner c [[stage_in]]) { leave(c.position.x); return float4(dfdx(c.position.x), 0, 0, 1); }
)";
    auto values = run(program, 4, 1, [](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3)); });
    EXPECT_EQ(values[1], (Value{0, 0, 0, 0}));
    EXPECT_EQ(values[2], (Value{1, 0, 0, 1}));
}

TEST_F(Stage, DepthIsWritten)
{
    const std::string program = R"(
struct Depths { float4 color [[color(0)]]; float depth [[depth(any)]]; };
vertex Corner in(uint id [[vertex_id]]) { return corner(id); }
fragment Depths out(Corner c [[stage_in]]) { return {float4(1), c.position.x / 4}; }
)";
    auto* library = compiled(std::string(Numbers) + program);
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    d->setVertexFunction(owned(library->newFunction(device_test::text("in"))));
    d->setFragmentFunction(owned(library->newFunction(device_test::text("out"))));
    d->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth32Float);
    auto* depth = texture(2, 1, MTL::PixelFormatDepth32Float);
    auto* target = MTL::RenderPassDescriptor::renderPassDescriptor();
    target->depthAttachment()->setTexture(depth);
    target->depthAttachment()->setLoadAction(MTL::LoadActionClear);
    target->depthAttachment()->setStoreAction(MTL::StoreActionStore);
    auto* test = owned(MTL::DepthStencilDescriptor::alloc()->init());
    test->setDepthCompareFunction(MTL::CompareFunctionLess);
    test->setDepthWriteEnabled(true);
    auto* e = encoder(target);
    e->setRenderPipelineState(pipeline(d));
    e->setDepthStencilState(owned(device->newDepthStencilState(test)));
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    finish(e);
    float stored[2] = {};
    depth->getBytes(stored, sizeof stored, MTL::Region(0, 0, 2, 1), 0);
    EXPECT_EQ(stored[0], 0.125f);
    EXPECT_EQ(stored[1], 0.375f);
}

TEST_F(Stage, AttributesOfAnEnumerationOrAConstantExpression)
{
    const std::string program = R"(
enum Places { PlaceColor = 1, PlacePosition };
constexpr constant int Base = 1;
struct In { float2 position [[attribute(PlacePosition)]]; float3 color [[attribute(Base + 0)]]; };
struct Link { float4 position [[position]]; float3 color; };
enum Slots : int { SlotTint = 3 };
vertex Link in(In in [[stage_in]], constant float& scale [[buffer(SlotTint)]]) { return {float4(in.position, 0, 1), in.color * scale}; }
fragment float4 out(Link l [[stage_in]]) { return float4(l.color, 1); }
)";
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    auto* layout = MTL::VertexDescriptor::vertexDescriptor();
    layout->attributes()->object(2)->setFormat(MTL::VertexFormatFloat2);
    layout->attributes()->object(1)->setFormat(MTL::VertexFormatFloat3);
    layout->attributes()->object(1)->setOffset(8);
    layout->layouts()->object(0)->setStride(20);
    d->setVertexDescriptor(layout);
    auto values = run(program, 1, 1, [&](auto* e) {
        e->setVertexBuffer(bufferOf(std::vector<float>{-1, -1, 1, 2, 3, 3, -1, 1, 2, 3, -1, 3, 1, 2, 3}), 0, 0);
        const float scale = 2;
        e->setVertexBytes(&scale, sizeof scale, 3);
        e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    }, d);
    EXPECT_EQ(values[0], (Value{2, 4, 6, 1}));
}

TEST_F(Stage, WritesSeveralColoursByMember)
{
    const std::string source = std::string(Numbers) + R"(
struct Colors { half4 second [[color(1)]]; float first [[color(0)]]; uint2 third [[color(2)]]; };
fragment Colors out(Corner c [[stage_in]]) { return {half4(1, 0.5, 0, 1), 0.25, uint2(7, 9)}; }
)";
    auto* library = compiled(source);
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    d->setVertexFunction(owned(library->newFunction(device_test::text("corner"))));
    d->setFragmentFunction(owned(library->newFunction(device_test::text("out"))));
    const MTL::PixelFormat formats[] = {MTL::PixelFormatR32Float, MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatRG16Uint};
    auto* target = pass(texture(1, 1, formats[0]));
    for (NS::UInteger i = 0; i < 3; ++i) {
        d->colorAttachments()->object(i)->setPixelFormat(formats[i]);
        target->colorAttachments()->object(i)->setTexture(texture(1, 1, formats[i]));
    }
    auto* e = encoder(target);
    e->setRenderPipelineState(pipeline(d));
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    finish(e);
    auto at = [&](NS::UInteger i, void* to) { target->colorAttachments()->object(i)->texture()->getBytes(to, 4, MTL::Region(0, 0, 1, 1), 0); };
    float first = 0;
    at(0, &first);
    EXPECT_EQ(first, 0.25f);
    std::array<uint8_t, 4> second{};
    at(1, second.data());
    EXPECT_EQ(second, (std::array<uint8_t, 4>{255, 128, 0, 255}));
    std::array<uint16_t, 2> third{};
    at(2, third.data());
    EXPECT_EQ(third, (std::array<uint16_t, 2>{7, 9}));
}

// ---- function constants --------------------------------------------------------------------------------------------------

class FunctionConstants : public Stage
{
protected:
    static constexpr const char* Program = R"(
constant bool tinted [[function_constant(0)]];
constant int count [[function_constant(1)]];
constant float3 shift [[function_constant(2)]];
constant float scale [[function_constant(5)]];
constant bool plain = !tinted;
constant float factor = is_function_constant_defined(scale) ? scale : 10;
constant half4 wide [[function_constant(7)]];
fragment float4 out(Corner c [[stage_in]], constant float4& tint [[buffer(1), function_constant(tinted)]])
{
    float4 r = float4(shift, float(count));
    if (tinted) r *= tint;
    if (plain) r += 0.5;
    return r * factor;
}
fragment float4 halves(Corner c [[stage_in]]) { return float4(wide); }
struct In { float2 position [[attribute(0)]]; float4 color [[attribute(1), function_constant(tinted)]]; };
struct Link { float4 position [[position]]; float4 color [[function_constant(tinted)]]; };
vertex Link moved(In in [[stage_in]]) { Link l; l.position = float4(in.position, 0, 1); if (tinted) l.color = in.color; return l; }
fragment float4 linked(Link l [[stage_in]]) { return tinted ? l.color : float4(0.5); }
)";
    MTL::FunctionConstantValues* values(bool tinted, bool scaled = false)
    {
        auto* v = owned(MTL::FunctionConstantValues::alloc()->init());
        const int count = 3;
        const float shift[4] = {1, 2, 3, 0}, scale = 2;
        v->setConstantValue(&tinted, MTL::DataTypeBool, NS::UInteger(0));
        v->setConstantValue(&count, MTL::DataTypeInt, NS::UInteger(1));
        v->setConstantValue(shift, MTL::DataTypeFloat3, NS::UInteger(2));
        if (scaled) v->setConstantValue(&scale, MTL::DataTypeFloat, device_test::text("scale"));
        return v;
    }
    MTL::Function* made(MTL::Library* library, const char* name, MTL::FunctionConstantValues* v)
    {
        NS::Error* error = nullptr;
        auto* f = owned(library->newFunction(device_test::text(name), v, &error));
        if (!f) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return f;
    }
    Value pixelOf(MTL::FunctionConstantValues* v, bool bind)
    {
        auto* library = compiled(std::string(Numbers) + Program);
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(made(library, "corner", v));
        d->setFragmentFunction(made(library, "out", v));
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
        const float tint[4] = {2, 2, 2, 2};
        return draw(pipeline(d), 1, 1, [&](auto* e) { if (bind) e->setFragmentBytes(tint, sizeof tint, 1); })[0];
    }
};

TEST_F(FunctionConstants, ChooseAmongBranchesAndValues)
{
    EXPECT_EQ(pixelOf(values(true, true), true), (Value{4, 8, 12, 12}));
    EXPECT_EQ(pixelOf(values(false, false), false), (Value{15, 25, 35, 35}));
}

TEST_F(FunctionConstants, SwitchArgumentsAndMembersOff)
{
    auto* library = compiled(std::string(Numbers) + Program);
    for (bool tinted : {true, false}) {
        auto* vertexFunction = made(library, "moved", values(tinted));
        auto* attributes = vertexFunction->vertexAttributes();
        ASSERT_EQ(attributes->count(), 2u);
        EXPECT_EQ(attributes->object<MTL::VertexAttribute>(1)->active(), tinted);
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        auto* layout = MTL::VertexDescriptor::vertexDescriptor();
        layout->attributes()->object(0)->setFormat(MTL::VertexFormatFloat2);
        layout->layouts()->object(0)->setStride(8);
        if (tinted) {
            layout->attributes()->object(1)->setFormat(MTL::VertexFormatFloat4);
            layout->attributes()->object(1)->setBufferIndex(1);
            layout->layouts()->object(1)->setStride(16);
            layout->layouts()->object(1)->setStepFunction(MTL::VertexStepFunctionConstant);
            layout->layouts()->object(1)->setStepRate(0);
        }
        d->setVertexDescriptor(layout);
        d->setVertexFunction(vertexFunction);
        d->setFragmentFunction(made(library, "linked", values(tinted)));
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
        Value pixel = draw(pipeline(d), 1, 1, [&](auto* e) {
            e->setVertexBuffer(bufferOf(std::vector<float>{-1, -1, 3, -1, -1, 3}), 0, 0);
            if (tinted) e->setVertexBuffer(bufferOf(std::vector<float>{1, 2, 3, 4}), 0, 1);
        })[0];
        EXPECT_EQ(pixel, tinted ? (Value{1, 2, 3, 4}) : (Value{0.5f, 0.5f, 0.5f, 0.5f}));
    }
}

TEST_F(FunctionConstants, MissingOneIsNamed)
{
    auto* library = compiled(std::string(Numbers) + Program);
    NS::Error* error = nullptr;
    EXPECT_EQ(library->newFunction(device_test::text("halves"), values(true), &error), nullptr);
    ASSERT_NE(error, nullptr);
    EXPECT_STREQ(error->localizedDescription()->utf8String(), "function constant 'wide' has no value");
}

TEST_F(FunctionConstants, OfAnotherTypeIsNamed)
{
    auto* library = compiled(std::string(Numbers) + Program);
    auto* v = values(true);
    const float number = 1;
    v->setConstantValue(&number, MTL::DataTypeFloat, NS::UInteger(1));
    NS::Error* error = nullptr;
    EXPECT_EQ(library->newFunction(device_test::text("out"), v, &error), nullptr);
    ASSERT_NE(error, nullptr);
    EXPECT_NE(std::string(error->localizedDescription()->utf8String()).find("'count' was given a value of another type"), std::string::npos);
}

} // namespace language_test
