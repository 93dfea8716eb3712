// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class Device;

class SOFTMETAL_API Fence : public NS::Referencing<Fence>
{
public:
    Device* device() const;
    NS::String* label() const;
    void setLabel(const NS::String* label);
};

} // namespace MTL
