// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class DepthStencilDescriptor;
class Device;
class StencilDescriptor;

enum CompareFunction : NS::UInteger
{
    CompareFunctionNever = 0,
    CompareFunctionLess = 1,
    CompareFunctionEqual = 2,
    CompareFunctionLessEqual = 3,
    CompareFunctionGreater = 4,
    CompareFunctionNotEqual = 5,
    CompareFunctionGreaterEqual = 6,
    CompareFunctionAlways = 7,
};

enum StencilOperation : NS::UInteger
{
    StencilOperationKeep = 0,
    StencilOperationZero = 1,
    StencilOperationReplace = 2,
    StencilOperationIncrementClamp = 3,
    StencilOperationDecrementClamp = 4,
    StencilOperationInvert = 5,
    StencilOperationIncrementWrap = 6,
    StencilOperationDecrementWrap = 7,
};

class SOFTMETAL_API StencilDescriptor : public NS::Copying<StencilDescriptor>
{
public:
    static StencilDescriptor* alloc();
    StencilDescriptor* init();
    CompareFunction stencilCompareFunction() const;
    void setStencilCompareFunction(CompareFunction stencilCompareFunction);
    StencilOperation stencilFailureOperation() const;
    void setStencilFailureOperation(StencilOperation stencilFailureOperation);
    StencilOperation depthFailureOperation() const;
    void setDepthFailureOperation(StencilOperation depthFailureOperation);
    StencilOperation depthStencilPassOperation() const;
    void setDepthStencilPassOperation(StencilOperation depthStencilPassOperation);
    uint32_t readMask() const;
    void setReadMask(uint32_t readMask);
    uint32_t writeMask() const;
    void setWriteMask(uint32_t writeMask);
};

class SOFTMETAL_API DepthStencilDescriptor : public NS::Copying<DepthStencilDescriptor>
{
public:
    static DepthStencilDescriptor* alloc();
    DepthStencilDescriptor* init();
    CompareFunction depthCompareFunction() const;
    void setDepthCompareFunction(CompareFunction depthCompareFunction);
    bool depthWriteEnabled() const;
    void setDepthWriteEnabled(bool depthWriteEnabled);
    StencilDescriptor* frontFaceStencil() const;
    void setFrontFaceStencil(const StencilDescriptor* frontFaceStencil);
    StencilDescriptor* backFaceStencil() const;
    void setBackFaceStencil(const StencilDescriptor* backFaceStencil);
    NS::String* label() const;
    void setLabel(const NS::String* label);
};

class SOFTMETAL_API DepthStencilState : public NS::Referencing<DepthStencilState>
{
public:
    NS::String* label() const;
    Device* device() const;
};

} // namespace MTL
