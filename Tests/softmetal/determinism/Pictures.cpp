// SPDX-License-Identifier: Apache-2.0
// The pictures: ten kinds, five of each.
#include "Painter.h"

#include <array>
#include <memory>

namespace determinism
{
namespace
{

/// Corners all over and a little beyond the target, some behind the eye, so that there is clipping.
std::vector<Vertex> scattered(Random& random, size_t count, float reach)
{
    std::vector<Vertex> vertices(count);
    for (size_t i = 0; i < count; ++i) {
        static constexpr size_t Corners = 3;
        Vertex& v = vertices[i];
        const Vertex& first = vertices[i - i % Corners];
        float w = random.below(12) ? random.between(0.5f, 2) : random.between(-1, 0.5f);
        for (int axis = 0; axis < 2; ++axis)
            v.position[axis] =
                i % Corners ? first.position[axis] + random.between(-reach, reach) : random.between(-1.2f, 1.2f);
        v.position[2] = random.between(-0.1f, 1.1f) * w;
        v.position[3] = w;
        for (float& c : v.color)
            c = random.between(0, 1);
        for (float& p : v.place)
            p = random.between(0, 1);
        v.size = random.between(0.5f, 20);
    }
    return vertices;
}

constexpr std::array Factors = {MTL::BlendFactorOne, MTL::BlendFactorSourceAlpha, MTL::BlendFactorOneMinusSourceAlpha,
                                MTL::BlendFactorDestinationColor, MTL::BlendFactorBlendColor};
constexpr std::array Operations = {MTL::BlendOperationAdd, MTL::BlendOperationSubtract,
                                   MTL::BlendOperationReverseSubtract, MTL::BlendOperationMin, MTL::BlendOperationMax};

uint64_t triangles(Painter& painter, Random& random)
{
    Look look;
    look.cull = random.below(2) ? MTL::CullModeBack : MTL::CullModeNone;
    return painter.draw(scattered(random, 900, 0.3f), look);
}

uint64_t stripsWithDepth(Painter& painter, Random& random)
{
    Look look;
    look.primitive = MTL::PrimitiveTypeTriangleStrip;
    look.depth = true;
    look.compare = random.below(2) ? MTL::CompareFunctionLess : MTL::CompareFunctionGreater;
    return painter.draw(scattered(random, 200, 0.5f), look);
}

uint64_t blending(Painter& painter, Random& random)
{
    Look look;
    look.blend = true;
    look.from = Factors[random.below(Factors.size())];
    look.to = Factors[random.below(Factors.size())];
    look.operation = Operations[random.below(Operations.size())];
    return painter.draw(scattered(random, 300, 0.6f), look);
}

uint64_t points(Painter& painter, Random& random)
{
    Look look;
    look.primitive = MTL::PrimitiveTypePoint;
    look.fragment = "points";
    return painter.draw(scattered(random, 150, 0.5f), look);
}

uint64_t lines(Painter& painter, Random& random)
{
    Look look;
    look.primitive = random.below(2) ? MTL::PrimitiveTypeLine : MTL::PrimitiveTypeLineStrip;
    return painter.draw(scattered(random, 150, 0.8f), look);
}

uint64_t images(Painter& painter, Random& random)
{
    static constexpr std::array Kinds = {MTL::TextureType2D, MTL::TextureType3D, MTL::TextureTypeCube};
    static constexpr std::array Functions = {"image", "volume", "cube"};
    const uint32_t kind = random.below(3);
    Look look;
    look.fragment = Functions[kind];
    look.texture = painter.newTexture(random, Kinds[kind],
                                      random.below(2) ? MTL::PixelFormatRGBA8Unorm : MTL::PixelFormatRG16Unorm);
    look.sampler = painter.newSampler(random);
    return painter.draw(scattered(random, 90, 1.0f), look);
}

uint64_t targets(Painter& painter, Random& random)
{
    Look look;
    look.fragment = "targets";
    look.targets = true;
    look.depth = true;
    look.blend = random.below(2) != 0;
    return painter.draw(scattered(random, 150, 0.6f), look);
}

uint64_t stencils(Painter& painter, Random& random)
{
    Look look;
    look.stencil = true;
    look.depth = random.below(2) != 0;
    return painter.draw(scattered(random, 240, 0.6f), look);
}

uint64_t functions(Painter& painter, Random& random)
{
    Look look;
    look.fragment = random.below(2) ? "functions" : "loops";
    return painter.draw(scattered(random, 60, 1.0f), look);
}

uint64_t instancesWithTheirDepth(Painter& painter, Random& random)
{
    Look look;
    look.fragment = "deep";
    look.depth = true;
    look.instances = 2 + random.below(6);
    return painter.draw(scattered(random, 60, 0.5f), look);
}

struct Kind
{
    const char* name;
    uint64_t (*draw)(Painter&, Random&);
};

constexpr std::array Kinds = {
    Kind{"triangles", triangles}, Kind{"strips-with-depth", stripsWithDepth},
    Kind{"blending", blending},   Kind{"points", points},
    Kind{"lines", lines},         Kind{"images", images},
    Kind{"targets", targets},     Kind{"stencils", stencils},
    Kind{"functions", functions}, Kind{"instances-with-their-depth", instancesWithTheirDepth},
};
constexpr int OfEachKind = 5;

} // namespace

std::vector<Picture> drawPictures()
{
    auto* outer = NS::AutoreleasePool::alloc()->init();
    auto painter = std::make_unique<Painter>();
    std::vector<Picture> pictures;
    for (size_t kind = 0; kind < Kinds.size(); ++kind) {
        for (int n = 0; n < OfEachKind; ++n) {
            auto* pool = NS::AutoreleasePool::alloc()->init();
            Random random(kind * 100 + static_cast<uint64_t>(n) + 1);
            pictures.push_back(
                {Kinds[kind].name + std::string("-") + std::to_string(n), Kinds[kind].draw(*painter, random)});
            pool->release();
        }
    }
    painter.reset();
    outer->release();
    return pictures;
}

} // namespace determinism
