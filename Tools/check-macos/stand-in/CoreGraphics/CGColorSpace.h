/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header. */
#pragma once
typedef struct CGColorSpace* CGColorSpaceRef;
