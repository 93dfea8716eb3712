// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLDepthStencil.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Device;
class SamplerDescriptor;

enum SamplerMinMagFilter : NS::UInteger
{
    SamplerMinMagFilterNearest = 0,
    SamplerMinMagFilterLinear = 1,
};

enum SamplerMipFilter : NS::UInteger
{
    SamplerMipFilterNotMipmapped = 0,
    SamplerMipFilterNearest = 1,
    SamplerMipFilterLinear = 2,
};

enum SamplerAddressMode : NS::UInteger
{
    SamplerAddressModeClampToEdge = 0,
    SamplerAddressModeMirrorClampToEdge = 1,
    SamplerAddressModeRepeat = 2,
    SamplerAddressModeMirrorRepeat = 3,
    SamplerAddressModeClampToZero = 4,
    SamplerAddressModeClampToBorderColor = 5,
};

enum SamplerBorderColor : NS::UInteger
{
    SamplerBorderColorTransparentBlack = 0,
    SamplerBorderColorOpaqueBlack = 1,
    SamplerBorderColorOpaqueWhite = 2,
};

class SOFTMETAL_API SamplerDescriptor : public NS::Copying<SamplerDescriptor>
{
public:
    static SamplerDescriptor* alloc();
    SamplerDescriptor* init();
    SamplerMinMagFilter minFilter() const;
    void setMinFilter(SamplerMinMagFilter minFilter);
    SamplerMinMagFilter magFilter() const;
    void setMagFilter(SamplerMinMagFilter magFilter);
    SamplerMipFilter mipFilter() const;
    void setMipFilter(SamplerMipFilter mipFilter);
    NS::UInteger maxAnisotropy() const;
    void setMaxAnisotropy(NS::UInteger maxAnisotropy);
    SamplerAddressMode sAddressMode() const;
    void setSAddressMode(SamplerAddressMode sAddressMode);
    SamplerAddressMode tAddressMode() const;
    void setTAddressMode(SamplerAddressMode tAddressMode);
    SamplerAddressMode rAddressMode() const;
    void setRAddressMode(SamplerAddressMode rAddressMode);
    SamplerBorderColor borderColor() const;
    void setBorderColor(SamplerBorderColor borderColor);
    bool normalizedCoordinates() const;
    void setNormalizedCoordinates(bool normalizedCoordinates);
    float lodMinClamp() const;
    void setLodMinClamp(float lodMinClamp);
    float lodMaxClamp() const;
    void setLodMaxClamp(float lodMaxClamp);
    CompareFunction compareFunction() const;
    void setCompareFunction(CompareFunction compareFunction);
    NS::String* label() const;
    void setLabel(const NS::String* label);
};

class SOFTMETAL_API SamplerState : public NS::Referencing<SamplerState>
{
public:
    NS::String* label() const;
    Device* device() const;
};

} // namespace MTL
