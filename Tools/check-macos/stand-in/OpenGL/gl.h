/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header: Khronos's, with the handle type as Apple declares it. */
#pragma once
#ifndef __APPLE__
#error the stand-in headers are for the check of the macOS build
#endif
#include <GL/gl.h>
