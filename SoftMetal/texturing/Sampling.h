// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/abi.h"

namespace softmetal::texturing {

/// Fills in what sampling needs to know of a texture's type and format. Called once its other fields are set.
void prepareTexture(abi::Texture& texture);

/// What generated code calls; what is not about textures is left for the caller to fill.
abi::RuntimeTable runtimeTable();

/// What generated code calls for texture.write(); what is outside the texture is passed over.
void write(const abi::Texture* texture, const abi::WriteCall* call);

/// Told when texture.read() was asked for a texel that its texture does not have. Set once, before the first read.
void setOutsideTexelHandler(void (*handler)());

} // namespace softmetal::texturing
