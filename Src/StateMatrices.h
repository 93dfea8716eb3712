// SPDX-License-Identifier: Apache-2.0
// The block of matrices that programs read.
#pragma once

#include "ZALGLState.h"

#include <simd/simd.h>

/// Layout of the matrix block in generated source: modelview, projection, mvp, four texture matrices; then the inverses,
/// the transposes, and the transposed inverses of the same.
struct StateMatrixData
{
    simd_float4x4 plain[7], inverse[7], transpose[7], inverseTranspose[7];
};
static_assert(sizeof(StateMatrixData) == 1792);

/// Made from the tops of the six stacks. Valid until the next call: draws with the same tops share a block.
const StateMatrixData& StateMatricesOf(const ZALGLState& gl);
