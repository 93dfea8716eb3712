// SPDX-License-Identifier: Apache-2.0
// Which vector instructions the inner loops use. Such a loop is written once in terms of Vectors.h, compiled for each set
// under a namespace of the set's name, and picked here at run time. All sets give the same bits.
#pragma once

#include <cstdint>

namespace softmetal::vectors {

enum class InstructionSet : uint8_t { Base, Avx2, Avx512 };

/// The best that this processor has; SOFTMETAL_ISA (base, avx2, avx512) asks for less.
InstructionSet instructionSet();

/// The one of a loop's three compilations that fits.
template <typename Function> Function pick(Function base, Function avx2, Function avx512)
{
    switch (instructionSet()) {
    case InstructionSet::Avx512: return avx512;
    case InstructionSet::Avx2: return avx2;
    default: return base;
    }
}

} // namespace softmetal::vectors
