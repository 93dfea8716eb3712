// SPDX-License-Identifier: Apache-2.0
// What a layer needs of the place where its frames appear.
#pragma once

#include "shader/abi.h"

namespace softmetal
{

class Screen
{
public:
    virtual ~Screen() = default;
    /// Any thread; the picture stays as it is until this returns.
    virtual void show(const abi::Texture& picture) = 0;
};

} // namespace softmetal
