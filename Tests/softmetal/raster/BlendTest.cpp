// SPDX-License-Identifier: Apache-2.0
// Every blend factor and operation on formats of each kind, and every write mask, against the formulas written out
// again.
#include "RasterFixture.h"

#include <algorithm>

namespace raster_test
{

class Blend : public Raster
{
protected:
    static constexpr Value Source = {0.2f, 0.4f, 0.6f, 0.8f}, Destination = {0.9f, 0.5f, 0.1f, 0.3f},
                           Constant = {0.25f, 0.125f, 0.75f, 0.5f};

    /// Destination is there, Source is drawn over it.
    Value result(MTL::RenderPipelineDescriptor* d, MTL::PixelFormat format)
    {
        auto* target = texture(4, 4, format);
        auto* p = pass(target);
        p->colorAttachments()->object(0)->setClearColor(
            MTL::ClearColor(Destination[0], Destination[1], Destination[2], Destination[3]));
        auto* e = encoder(p);
        e->setRenderPipelineState(pipeline(d));
        e->setBlendColor(Constant[0], Constant[1], Constant[2], Constant[3]);
        Corner c = {{0, 0, 0, 1}, {Source[0], Source[1], Source[2], Source[3]}};
        put(e, MTL::PrimitiveTypeTriangle, acrossTarget(c, c));
        finish(e);
        return read(target, format);
    }

    static Value read(MTL::Texture* target, MTL::PixelFormat format)
    {
        uint8_t bytes[16] = {};
        target->getBytes(bytes, 16, MTL::Region(1, 1, 1, 1), 0);
        Value v{};
        if (format == MTL::PixelFormatRGBA32Float) std::memcpy(v.data(), bytes, 16);
        for (size_t c = 0; c < 4; ++c) {
            if (format == MTL::PixelFormatRGBA8Unorm) v[c] = bytes[c] / 255.0f;
            if (format == MTL::PixelFormatBGRA8Unorm) v[c] = bytes[c == 3 ? 3 : 2 - c] / 255.0f;
            if (format == MTL::PixelFormatRGBA16Float)
                v[c] = fromHalf(static_cast<uint16_t>(bytes[2 * c] | bytes[2 * c + 1] << 8));
        }
        return v;
    }

    static float fromHalf(uint16_t half)
    {
        int exponent = half >> 10 & 31;
        float mantissa = static_cast<float>(half & 1023) / 1024.0f + (exponent ? 1.0f : 0.0f);
        return std::ldexp(mantissa, (exponent ? exponent : 1) - 15) * (half & 0x8000 ? -1.0f : 1.0f);
    }
};

/// A factor as it stands in Metal's reference.
Value factorOf(MTL::BlendFactor factor, Value s, Value d, Value c)
{
    auto all = [](float v) { return Value{v, v, v, v}; };
    auto less = [](Value v) { return Value{1 - v[0], 1 - v[1], 1 - v[2], 1 - v[3]}; };
    float saturated = std::min(s[3], 1 - d[3]);
    switch (factor) {
    case MTL::BlendFactorZero:
        return all(0);
    case MTL::BlendFactorOne:
        return all(1);
    case MTL::BlendFactorSourceColor:
        return s;
    case MTL::BlendFactorOneMinusSourceColor:
        return less(s);
    case MTL::BlendFactorSourceAlpha:
        return all(s[3]);
    case MTL::BlendFactorOneMinusSourceAlpha:
        return all(1 - s[3]);
    case MTL::BlendFactorDestinationColor:
        return d;
    case MTL::BlendFactorOneMinusDestinationColor:
        return less(d);
    case MTL::BlendFactorDestinationAlpha:
        return all(d[3]);
    case MTL::BlendFactorOneMinusDestinationAlpha:
        return all(1 - d[3]);
    case MTL::BlendFactorSourceAlphaSaturated:
        return {saturated, saturated, saturated, 1};
    case MTL::BlendFactorBlendColor:
        return c;
    case MTL::BlendFactorOneMinusBlendColor:
        return less(c);
    case MTL::BlendFactorBlendAlpha:
        return all(c[3]);
    default:
        return all(1 - c[3]);
    }
}

float operated(MTL::BlendOperation operation, float s, float sf, float d, float df)
{
    switch (operation) {
    case MTL::BlendOperationAdd:
        return s * sf + d * df;
    case MTL::BlendOperationSubtract:
        return s * sf - d * df;
    case MTL::BlendOperationReverseSubtract:
        return d * df - s * sf;
    case MTL::BlendOperationMin:
        return std::min(s, d);
    default:
        return std::max(s, d);
    }
}

struct FormatRow
{
    MTL::PixelFormat format;
    bool clamps;
    float tolerance;
};
constexpr FormatRow Formats[] = {
    {MTL::PixelFormatRGBA8Unorm, true, 1.6f / 255},
    {MTL::PixelFormatBGRA8Unorm, true, 1.6f / 255},
    {MTL::PixelFormatRGBA16Float, false, 1e-3f},
    {MTL::PixelFormatRGBA32Float, false, 1e-6f},
};

constexpr NS::UInteger Factors = 15; // those of one source colour

TEST_F(Blend, EachFactorOnEitherSideOfEachFormat)
{
    for (const FormatRow& row : Formats) {
        for (NS::UInteger n = 0; n < Factors; ++n) {
            auto sf = static_cast<MTL::BlendFactor>(n), df = static_cast<MTL::BlendFactor>((n * 7 + 3) % Factors);
            auto* d = rasterDescriptor("value", row.format);
            auto* color = d->colorAttachments()->object(0);
            color->setBlendingEnabled(true);
            color->setSourceRGBBlendFactor(sf);
            color->setSourceAlphaBlendFactor(df); // alpha has factors of its own
            color->setDestinationRGBBlendFactor(df);
            color->setDestinationAlphaBlendFactor(sf);
            Value got = result(d, row.format);
            Value s = factorOf(sf, Source, Destination, Constant), t = factorOf(df, Source, Destination, Constant);
            for (size_t c = 0; c < 4; ++c) {
                float wanted =
                    c == 3 ? Source[c] * t[c] + Destination[c] * s[c] : Source[c] * s[c] + Destination[c] * t[c];
                if (row.clamps) wanted = std::clamp(wanted, 0.0f, 1.0f);
                EXPECT_NEAR(got[c], wanted, row.tolerance)
                    << "format " << row.format << ", factors " << sf << " and " << df << ", component " << c;
            }
        }
    }
}

TEST_F(Blend, EachOperationForColourAndAlpha)
{
    for (const FormatRow& row : Formats) {
        for (NS::UInteger rgb = 0; rgb < 5; ++rgb) {
            auto alpha = static_cast<MTL::BlendOperation>((rgb + 2) % 5);
            auto* d = rasterDescriptor("value", row.format);
            auto* color = d->colorAttachments()->object(0);
            color->setBlendingEnabled(true);
            color->setRgbBlendOperation(static_cast<MTL::BlendOperation>(rgb));
            color->setAlphaBlendOperation(alpha);
            color->setSourceRGBBlendFactor(MTL::BlendFactorSourceAlpha);
            color->setSourceAlphaBlendFactor(MTL::BlendFactorOne);
            color->setDestinationRGBBlendFactor(MTL::BlendFactorDestinationColor);
            color->setDestinationAlphaBlendFactor(MTL::BlendFactorBlendAlpha);
            Value got = result(d, row.format);
            for (size_t c = 0; c < 4; ++c) {
                float wanted = c == 3 ? operated(alpha, Source[3], 1, Destination[3], Constant[3])
                                      : operated(static_cast<MTL::BlendOperation>(rgb), Source[c], Source[3],
                                                 Destination[c], Destination[c]);
                if (row.clamps) wanted = std::clamp(wanted, 0.0f, 1.0f);
                EXPECT_NEAR(got[c], wanted, row.tolerance)
                    << "format " << row.format << ", operation " << rgb << ", component " << c;
            }
        }
    }
}

TEST_F(Blend, WriteMaskKeepsTheOthers)
{
    for (const FormatRow& row : Formats) {
        for (bool blending : {false, true}) {
            for (MTL::ColorWriteMask mask = 0; mask < 16; ++mask) {
                auto* d = rasterDescriptor("value", row.format);
                d->colorAttachments()->object(0)->setWriteMask(mask);
                d->colorAttachments()->object(0)->setBlendingEnabled(blending); // one and zero: no change
                Value got = result(d, row.format);
                for (size_t c = 0; c < 4; ++c) {
                    constexpr MTL::ColorWriteMask Bits[] = {MTL::ColorWriteMaskRed, MTL::ColorWriteMaskGreen,
                                                            MTL::ColorWriteMaskBlue, MTL::ColorWriteMaskAlpha};
                    EXPECT_NEAR(got[c], mask & Bits[c] ? Source[c] : Destination[c], row.tolerance)
                        << "format " << row.format << ", mask " << mask << ", component " << c;
                }
            }
        }
    }
}

/// Values whose product with 255 lies in the middle of two steps, or so close that single precision cannot tell.
TEST_F(Blend, StoresTheNearestOf256Steps)
{
    constexpr int Width = 2048, Height = 4;
    std::vector<float> steps;
    for (int i = 0; i < 255; ++i)
        for (int nudge : {-1, 0, 1}) {
            const float middle = static_cast<float>((i + 0.5) / 255);
            steps.push_back(nudge == 0 ? middle : std::nextafter(middle, nudge < 0 ? 0.0f : 1.0f));
        }
    auto* d = rasterDescriptor("constantly", MTL::PixelFormatRGBA8Unorm);
    d->colorAttachments()->object(0)->setBlendingEnabled(true); // one and zero: the source itself
    auto* target = texture(Width, Height, MTL::PixelFormatRGBA8Unorm);
    auto* e = encoder(target);
    e->setRenderPipelineState(pipeline(d));
    for (size_t i = 0; i < steps.size(); ++i) {
        const double x = static_cast<double>(i) * 2;
        const Value v = {steps[i], 1 - steps[i], 0.5f, 1};
        put(e, MTL::PrimitiveTypeTriangle,
            {atPixel(x, 0, Width, Height, v), atPixel(x + 2, 0, Width, Height, v), atPixel(x, 8, Width, Height, v)});
    }
    finish(e);
    std::vector<uint8_t> bytes(Width * 4);
    target->getBytes(bytes.data(), bytes.size(), MTL::Region(0, 0, Width, 1), 0);
    for (size_t i = 0; i < steps.size(); ++i) {
        const uint8_t* texel = bytes.data() + i * 8;
        EXPECT_EQ(texel[0], std::lrint(static_cast<double>(steps[i]) * 255)) << steps[i];
        EXPECT_EQ(texel[1], std::lrint(static_cast<double>(1 - steps[i]) * 255)) << 1 - steps[i];
        EXPECT_EQ(texel[2], 128) << "the middle goes to the even step";
    }
}

} // namespace raster_test
