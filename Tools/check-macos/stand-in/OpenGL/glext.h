/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header: Khronos's, which declares GLhandleARB as a pointer here. */
#pragma once
#include <GL/glext.h>
