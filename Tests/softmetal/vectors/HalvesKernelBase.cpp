// SPDX-License-Identifier: Apache-2.0
#define SOFTMETAL_ISA base
#include "softmetal/vectors/HalvesKernel.inc"
