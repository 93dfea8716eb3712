// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Metal/MTLDrawable.hpp>

namespace MTL
{
class Texture;
}

namespace CA
{

class MetalLayer;

class SOFTMETAL_API MetalDrawable : public NS::Referencing<MetalDrawable, MTL::Drawable>
{
public:
    MetalLayer* layer() const;
    MTL::Texture* texture() const;
};

}
