// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{

enum IndexType : NS::UInteger
{
    IndexTypeUInt16 = 0,
    IndexTypeUInt32 = 1,
};

}
