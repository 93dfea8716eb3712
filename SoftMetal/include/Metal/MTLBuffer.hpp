// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLResource.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Texture;
class TextureDescriptor;

class SOFTMETAL_API Buffer : public NS::Referencing<Buffer, Resource>
{
public:
    NS::UInteger length() const;
    void* contents();
    void didModifyRange(NS::Range range);
    Texture* newTexture(const TextureDescriptor* descriptor, NS::UInteger offset, NS::UInteger bytesPerRow);
    void addDebugMarker(const NS::String* marker, NS::Range range);
    void removeAllDebugMarkers();
};

} // namespace MTL
