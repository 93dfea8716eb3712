// SPDX-License-Identifier: Apache-2.0
// What a host's compiler sees: plain structs, option sets and pointer conversions.
#include <AppKit/AppKit.hpp>
#include <Metal/Metal.hpp>
#include <QuartzCore/QuartzCore.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(std::is_convertible_v<MTL::CaptureScope*, id>, "any object goes where several classes are taken");
static_assert(std::is_convertible_v<CA::MetalDrawable*, MTL::Drawable*>);
static_assert(std::is_convertible_v<MTL::Texture*, MTL::Resource*>);
static_assert(std::is_convertible_v<MTL::RenderCommandEncoder*, MTL::CommandEncoder*>);
static_assert(std::is_convertible_v<MTL::RenderPassDepthAttachmentDescriptor*, MTL::RenderPassAttachmentDescriptor*>);
static_assert(std::is_convertible_v<NSView*, NS::Object*>);
static_assert(!std::is_default_constructible_v<MTL::Buffer>, "objects are made by calls only");
static_assert(!std::is_polymorphic_v<MTL::Buffer> && std::is_empty_v<MTL::Buffer>, "an API pointer is opaque");
static_assert(std::is_trivially_copyable_v<MTL::Region> && sizeof(MTL::Region) == 6 * sizeof(NS::UInteger));
static_assert(sizeof(MTL::Viewport) == 6 * sizeof(double) && sizeof(MTL::ScissorRect) == 4 * sizeof(NS::UInteger));
static_assert(sizeof(MTL::TextureSwizzleChannels) == 4);

TEST(Options, AreCombinedAndTakenApart)
{
    MTL::TextureUsage usage = MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget;
    usage |= MTL::TextureUsagePixelFormatView;
    EXPECT_EQ(usage, 21u);
    usage &= ~MTL::TextureUsageShaderRead;
    EXPECT_EQ(usage, 20u);
    MTL::ResourceOptions options = MTL::ResourceStorageModeManaged | MTL::ResourceCPUCacheModeWriteCombined;
    EXPECT_EQ(options, 17u);
    EXPECT_EQ(MTL::ColorWriteMaskRed | MTL::ColorWriteMaskAlpha, 9);
}

TEST(Range, TellsWhatItHolds)
{
    NS::Range range = NS::Range::Make(3, 2);
    EXPECT_EQ(range.Max(), 5u);
    EXPECT_FALSE(range.LocationInRange(2));
    EXPECT_TRUE(range.LocationInRange(3));
    EXPECT_TRUE(range.LocationInRange(4));
    EXPECT_FALSE(range.LocationInRange(5));
    EXPECT_TRUE(range.Equal({3, 2}));
    EXPECT_FALSE(range.Equal({3, 1}));
}

TEST(Region, FillsWhatItsDimensionLeavesOpen)
{
    MTL::Region line = MTL::Region::Make1D(1, 2), plane = MTL::Region::Make2D(1, 2, 3, 4);
    EXPECT_EQ(line.size.height * line.size.depth, 1u);
    EXPECT_EQ(plane.origin.z, 0u);
    EXPECT_EQ(plane.size.depth, 1u);
    MTL::Region block = MTL::Region::Make3D(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(block.origin.z, 3u);
    EXPECT_EQ(block.size.depth, 6u);
}

TEST(Swizzle, IsTheIdentityUnlessSaidOtherwise)
{
    MTL::TextureSwizzleChannels identity;
    EXPECT_EQ(identity.red, MTL::TextureSwizzleRed);
    EXPECT_EQ(identity.alpha, MTL::TextureSwizzleAlpha);
    MTL::TextureSwizzleChannels luminance = {MTL::TextureSwizzleRed, MTL::TextureSwizzleRed, MTL::TextureSwizzleRed, MTL::TextureSwizzleOne};
    EXPECT_EQ(luminance.green, MTL::TextureSwizzleRed);
}

/// Numbers that go into files and to shaders, spelt out again.
TEST(Enumerators, HaveMetalsValues)
{
    EXPECT_EQ(MTL::PixelFormatA8Unorm, 1u);
    EXPECT_EQ(MTL::PixelFormatBGRA8Unorm, 80u);
    EXPECT_EQ(MTL::PixelFormatRGBA32Float, 125u);
    EXPECT_EQ(MTL::PixelFormatDepth24Unorm_Stencil8, 255u);
    EXPECT_EQ(MTL::PixelFormatDepth32Float_Stencil8, 260u);
    EXPECT_EQ(MTL::VertexFormatUChar2, 1u);
    EXPECT_EQ(MTL::VertexFormatFloat4, 31u);
    EXPECT_EQ(MTL::VertexFormatHalf, 53u);
    EXPECT_EQ(MTL::DataTypeFloat, 3u);
    EXPECT_EQ(MTL::DataTypeBool, 53u);
    EXPECT_EQ(MTL::GPUFamilyMac2, 2002);
    EXPECT_EQ(MTL::FeatureSet_macOS_GPUFamily2_v1, 10005u);
}

} // namespace
