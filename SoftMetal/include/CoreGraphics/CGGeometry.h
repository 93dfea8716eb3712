/* SPDX-License-Identifier: Apache-2.0
 * Points, sizes and rectangles. The types stand in Core Foundation's header, as they do in Apple's. Usable from C. */
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <stdbool.h>

static inline CGPoint CGPointMake(CGFloat x, CGFloat y)
{
    CGPoint point = {x, y};
    return point;
}

static inline CGSize CGSizeMake(CGFloat width, CGFloat height)
{
    CGSize size = {width, height};
    return size;
}

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height)
{
    CGRect rect = {{x, y}, {width, height}};
    return rect;
}

static inline bool CGPointEqualToPoint(CGPoint a, CGPoint b)
{
    return a.x == b.x && a.y == b.y;
}

static inline bool CGSizeEqualToSize(CGSize a, CGSize b)
{
    return a.width == b.width && a.height == b.height;
}

static inline bool CGRectEqualToRect(CGRect a, CGRect b)
{
    return CGPointEqualToPoint(a.origin, b.origin) && CGSizeEqualToSize(a.size, b.size);
}
