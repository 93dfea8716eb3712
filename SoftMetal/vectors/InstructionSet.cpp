// SPDX-License-Identifier: Apache-2.0
#include "vectors/InstructionSet.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace softmetal::vectors {
namespace {

InstructionSet best()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl"))
        return InstructionSet::Avx512;
    if (__builtin_cpu_supports("avx2")) return InstructionSet::Avx2;
#endif
    return InstructionSet::Base;
}

InstructionSet choose()
{
    const char* wanted = std::getenv("SOFTMETAL_ISA");
    if (!wanted) return best();
    if (std::strcmp(wanted, "base") == 0) return InstructionSet::Base;
    return std::strcmp(wanted, "avx2") == 0 ? std::min(best(), InstructionSet::Avx2) : best();
}

} // namespace

InstructionSet instructionSet()
{
    static const InstructionSet chosen = choose();
    return chosen;
}

} // namespace softmetal::vectors
