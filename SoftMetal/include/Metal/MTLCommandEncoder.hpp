// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class Device;

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
