/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header. */
#pragma once
#include <CoreFoundation/CoreFoundation.h>
typedef struct CGPoint
{
    CGFloat x, y;
} CGPoint;
typedef struct CGSize
{
    CGFloat width, height;
} CGSize;
typedef struct CGRect
{
    CGPoint origin;
    CGSize size;
} CGRect;
