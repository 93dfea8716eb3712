// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{

/// A texel, counted from the top left front one.
struct Origin
{
    NS::UInteger x = 0, y = 0, z = 0;

    Origin() = default;
    Origin(NS::UInteger ox, NS::UInteger oy, NS::UInteger oz) : x(ox), y(oy), z(oz) {}
    static Origin Make(NS::UInteger x, NS::UInteger y, NS::UInteger z) { return Origin(x, y, z); }
};

struct Size
{
    NS::UInteger width = 0, height = 0, depth = 0;

    Size() = default;
    Size(NS::UInteger w, NS::UInteger h, NS::UInteger d) : width(w), height(h), depth(d) {}
    static Size Make(NS::UInteger w, NS::UInteger h, NS::UInteger d) { return Size(w, h, d); }
};

struct Region
{
    Origin origin;
    Size size;

    Region() = default;
    Region(NS::UInteger x, NS::UInteger width) : origin(x, 0, 0), size(width, 1, 1) {}
    Region(NS::UInteger x, NS::UInteger y, NS::UInteger width, NS::UInteger height)
        : origin(x, y, 0), size(width, height, 1)
    {}
    Region(NS::UInteger x, NS::UInteger y, NS::UInteger z, NS::UInteger width, NS::UInteger height, NS::UInteger depth)
        : origin(x, y, z), size(width, height, depth)
    {}
    static Region Make1D(NS::UInteger x, NS::UInteger width) { return Region(x, width); }
    static Region Make2D(NS::UInteger x, NS::UInteger y, NS::UInteger width, NS::UInteger height)
    {
        return Region(x, y, width, height);
    }
    static Region Make3D(NS::UInteger x, NS::UInteger y, NS::UInteger z, NS::UInteger width, NS::UInteger height,
                         NS::UInteger depth)
    {
        return Region(x, y, z, width, height, depth);
    }
};

/// A position inside a pixel, from 0 to 1.
struct SamplePosition
{
    float x = 0, y = 0;

    SamplePosition() = default;
    SamplePosition(float px, float py) : x(px), y(py) {}
    static SamplePosition Make(float x, float y) { return SamplePosition(x, y); }
};
using Coordinate2D = SamplePosition;

} // namespace MTL
