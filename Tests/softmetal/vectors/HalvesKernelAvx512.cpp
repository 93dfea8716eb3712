// SPDX-License-Identifier: Apache-2.0
#define SOFTMETAL_ISA avx512
#include "softmetal/vectors/HalvesKernel.inc"
