// SPDX-License-Identifier: Apache-2.0
#include "StateMatrices.h"

#include <cstring>

namespace {

constexpr size_t Stacks = 6; // modelview, projection, textures 0 to 3

constexpr int Plain[Stacks] = {0, 1, 3, 4, 5, 6}; // where each stack's matrix stands in a group

/// From GL's clip space to Metal's: depth from 0 to 1, and y turned where the viewport does not do it.
simd_float4x4 clipCorrection(bool turnsY)
{
    float y = turnsY ? -1.0f : 1.0f;
    return simd_matrix(simd_float4{1, 0, 0, 0}, simd_float4{0, y, 0, 0}, simd_float4{0, 0, 0.5f, 0}, simd_float4{0, 0, 0.5f, 1});
}

/// The last block made, and what it was made of: most draws change no matrix, and others one.
struct Memo
{
    float tops[Stacks][16] = {};
    bool known[Stacks] = {};
    bool turnsY = false;
    StateMatrixData block;
};

void derive(StateMatrixData& m, int i)
{
    m.transpose[i] = simd_transpose(m.plain[i]);
    m.inverseTranspose[i] = simd_transpose(m.inverse[i]);
}

void fill(Memo& memo, size_t stack)
{
    StateMatrixData& m = memo.block;
    const int i = Plain[stack];
    std::memcpy(&m.plain[i], memo.tops[stack], sizeof m.plain[i]);
    // Kept on purpose: [texture-matrix-2] the texture matrix of unit 2, and only that one, is multiplied by the correction.
    if (i == 1 || i == 5) m.plain[i] = simd_mul(clipCorrection(memo.turnsY), m.plain[i]);
    m.inverse[i] = simd_inverse(m.plain[i]);
    derive(m, i);
}

} // namespace

const StateMatrixData& StateMatricesOf(const ZALGLState& gl)
{
    static Memo memo;
    const bool sameKind = memo.turnsY == (gl.isIntelDevice != 0);
    memo.turnsY = gl.isIntelDevice != 0;
    bool combined = false;
    for (size_t i = 0; i < Stacks; ++i) {
        const float* top = gl.matrixStacks[i].entries[gl.matrixStacks[i].depth];
        // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): equal bits, so that a NaN equals itself
        if (sameKind && memo.known[i] && std::memcmp(memo.tops[i], top, sizeof memo.tops[i]) == 0) continue;
        std::memcpy(memo.tops[i], top, sizeof memo.tops[i]);
        memo.known[i] = true;
        fill(memo, i);
        combined |= i < 2;
    }
    if (combined) {
        StateMatrixData& m = memo.block;
        m.plain[2] = simd_mul(m.plain[1], m.plain[0]);
        m.inverse[2] = simd_mul(m.inverse[0], m.inverse[1]);
        derive(m, 2);
    }
    return memo.block;
}
