// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLArgument.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class FunctionConstantValues;

class SOFTMETAL_API FunctionConstantValues : public NS::Copying<FunctionConstantValues>
{
public:
    static FunctionConstantValues* alloc();
    FunctionConstantValues* init();
    void setConstantValue(const void* value, DataType type, NS::UInteger index);
    void setConstantValues(const void* values, DataType type, NS::Range range);
    void setConstantValue(const void* value, DataType type, const NS::String* name);
    void reset();
};

} // namespace MTL
