// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class CommandQueue;
class Device;

class SOFTMETAL_API CaptureScope : public NS::Referencing<CaptureScope>
{
public:
    Device* device() const;
    NS::String* label() const;
    void setLabel(const NS::String* pLabel);
    CommandQueue* commandQueue() const;
    void beginScope();
    void endScope();
};

} // namespace MTL
