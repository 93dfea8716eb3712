// SPDX-License-Identifier: Apache-2.0
// What an opaque triangle covers in a whole tile need not be drawn before it, unless something else tells.
#include "RasterFixture.h"

namespace raster_test
{

class Hidden : public Raster
{
protected:
    static constexpr int Side = 64; // of a tile

    /// What is there first, and what comes over it.
    struct Scene
    {
        MTL::RenderPipelineDescriptor *first, *over;
        Setting beforeFirst = {}, beforeOver = {};
        float reach = 3; // of the upper triangle, in clip space
        MTL::Buffer* visibility = nullptr;
    };

    Scene scene(const char* first = "value", const char* over = "value")
    {
        return {rasterDescriptor(first), rasterDescriptor(over)};
    }

    static std::vector<Corner> corner(float reach, Value value)
    {
        return {{{-1, -1, 0.5f, 1}, {value[0], value[1], value[2], value[3]}},
                {{-1, reach, 0.5f, 1}, {value[0], value[1], value[2], value[3]}},
                {{reach, -1, 0.5f, 1}, {value[0], value[1], value[2], value[3]}}};
    }

    /// Triangles that were left out; the picture is kept.
    uint64_t hidden(const Scene& s)
    {
        const uint64_t before = SoftMetal::counters().trianglesHidden;
        auto* target = texture(Side, Side, MTL::PixelFormatRGBA32Float);
        auto* d = pass(target);
        d->setVisibilityResultBuffer(s.visibility);
        if (s.first->depthAttachmentPixelFormat() != MTL::PixelFormatInvalid) {
            auto* depth = textureDescriptor(Side, Side, MTL::PixelFormatDepth32Float);
            depth->setStorageMode(MTL::StorageModePrivate);
            d->depthAttachment()->setTexture(texture(depth));
            d->depthAttachment()->setLoadAction(MTL::LoadActionClear);
        }
        auto* e = encoder(d);
        e->setRenderPipelineState(pipeline(s.first));
        if (s.beforeFirst) s.beforeFirst(e);
        put(e, MTL::PrimitiveTypeTriangle, corner(3, {1, 2, 3, 1}));
        e->setRenderPipelineState(pipeline(s.over));
        if (s.beforeOver) s.beforeOver(e);
        put(e, MTL::PrimitiveTypeTriangle, corner(s.reach, {4, 5, 6, 1}));
        finish(e);
        picture = pictureOf(target);
        return SoftMetal::counters().trianglesHidden - before;
    }

    Setting depthState(MTL::CompareFunction compare, bool write)
    {
        auto* d = owned(MTL::DepthStencilDescriptor::alloc()->init());
        d->setDepthCompareFunction(compare);
        d->setDepthWriteEnabled(write);
        auto* state = owned(device->newDepthStencilState(d));
        return [state](MTL::RenderCommandEncoder* e) { e->setDepthStencilState(state); };
    }

    Picture picture;
    static constexpr Value Over = {4, 5, 6, 1};
};

TEST_F(Hidden, IsWhatAnOpaqueTriangleCovers)
{
    EXPECT_EQ(hidden(scene()), 1u);
    EXPECT_EQ(picture.values, std::vector<Value>(Side * Side, Over));
}

TEST_F(Hidden, IsNothingWhereATileShowsThrough)
{
    auto s = scene();
    s.reach = 1; // half of the tile
    EXPECT_EQ(hidden(s), 0u);
    EXPECT_EQ(picture.at(0, Side - 1), Over);
    EXPECT_EQ(picture.at(Side - 1, 0), (Value{1, 2, 3, 1}));
}

TEST_F(Hidden, IsNothingUnderWhatScissorsCut)
{
    auto s = scene();
    s.beforeOver = [](auto* e) { e->setScissorRect({0, 0, Side - 1, Side}); };
    EXPECT_EQ(hidden(s), 0u);
    EXPECT_EQ(picture.at(Side - 1, 0), (Value{1, 2, 3, 1}));
}

TEST_F(Hidden, IsNothingUnderBlending)
{
    auto s = scene();
    s.over = addingDescriptor("value");
    EXPECT_EQ(hidden(s), 0u);
    EXPECT_EQ(picture.at(9, 9), (Value{5, 7, 9, 2}));
}

TEST_F(Hidden, IsNothingUnderAWriteMask)
{
    auto s = scene();
    s.over->colorAttachments()->object(0)->setWriteMask(MTL::ColorWriteMaskRed);
    EXPECT_EQ(hidden(s), 0u);
    EXPECT_EQ(picture.at(9, 9), (Value{4, 2, 3, 1}));
}

TEST_F(Hidden, IsNothingUnderAProgramThatDiscards)
{
    EXPECT_EQ(hidden(scene("value", "valueUnlessNegative")), 0u);
    EXPECT_EQ(picture.at(9, 9), Over);
}

TEST_F(Hidden, IsNothingThatCountsItsPixels)
{
    auto s = scene();
    s.visibility = buffer(8);
    s.beforeFirst = [](auto* e) { e->setVisibilityResultMode(MTL::VisibilityResultModeCounting, 0); };
    s.beforeOver = [](auto* e) { e->setVisibilityResultMode(MTL::VisibilityResultModeDisabled, 0); };
    EXPECT_EQ(hidden(s), 0u);
    EXPECT_EQ(*static_cast<const uint64_t*>(s.visibility->contents()), uint64_t{Side} * Side);
}

TEST_F(Hidden, IsNothingThatWritesMemory)
{
    for (const char* program : {"counted", "noted"}) {
        auto* memory = buffer(16);
        auto s = scene(program);
        s.beforeFirst = [memory](auto* e) { e->setFragmentBuffer(memory, 0, 0); };
        EXPECT_EQ(hidden(s), 0u) << program;
        EXPECT_NE(*static_cast<const uint32_t*>(memory->contents()), 0u) << program;
        EXPECT_EQ(picture.at(9, 9), Over) << program;
    }
}

TEST_F(Hidden, IsNothingThatLeavesDepths)
{
    auto s = scene();
    for (auto* d : {s.first, s.over})
        d->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth32Float);
    s.beforeFirst = depthState(MTL::CompareFunctionAlways, true);
    s.beforeOver = depthState(MTL::CompareFunctionAlways, false);
    EXPECT_EQ(hidden(s), 0u);
    s.beforeFirst = depthState(MTL::CompareFunctionAlways, false);
    EXPECT_EQ(hidden(s), 1u);
    s.beforeOver = depthState(MTL::CompareFunctionLess, false); // might fail
    EXPECT_EQ(hidden(s), 0u);
}

} // namespace raster_test
