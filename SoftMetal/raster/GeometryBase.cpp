// SPDX-License-Identifier: Apache-2.0
#define SOFTMETAL_ISA base
#include "raster/Geometry.inc"
