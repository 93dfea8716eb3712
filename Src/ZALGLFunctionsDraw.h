// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "VertexDescriptorCache.h"

/// Installs all GL state on the encoder; non-zero means that nothing must be drawn.
int internal_InstallMetalState(MTL::RenderCommandEncoder* encoder, MTL::VertexDescriptor* vertexDescriptor,
                               ZALMetal::VertexProgramSpecializationKey& vertexKey);
