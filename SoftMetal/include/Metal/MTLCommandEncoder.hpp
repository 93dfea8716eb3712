// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class Device;

using ResourceUsage = NS::UInteger; // any of:
enum : ResourceUsage
{
    ResourceUsageRead = 1,
    ResourceUsageWrite = 2,
    ResourceUsageSample = 4,
};

using BarrierScope = NS::UInteger; // any of:
enum : BarrierScope
{
    BarrierScopeBuffers = 1,
    BarrierScopeTextures = 2,
    BarrierScopeRenderTargets = 4,
};

class SOFTMETAL_API CommandEncoder : public NS::Referencing<CommandEncoder>
{
public:
    Device* device() const;
    NS::String* label() const;
    void setLabel(const NS::String* label);
    void endEncoding();
    void insertDebugSignpost(const NS::String* string);
    void pushDebugGroup(const NS::String* string);
    void popDebugGroup();
};

} // namespace MTL
