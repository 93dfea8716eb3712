// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class CommandBuffer;
class Device;

class SOFTMETAL_API CommandQueue : public NS::Referencing<CommandQueue>
{
public:
    NS::String* label() const;
    void setLabel(const NS::String* label);
    Device* device() const;
    CommandBuffer* commandBuffer();
    CommandBuffer* commandBufferWithUnretainedReferences();
};

} // namespace MTL
