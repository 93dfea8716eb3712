/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header. */
#pragma once
#include <CoreFoundation/CoreFoundation.h>
typedef struct __IOSurface* IOSurfaceRef;
