// SPDX-License-Identifier: Apache-2.0
// GL as the platform's headers declare it, with prototypes; scenes include nothing else of GL, so that the same source
// is compiled for this library and for any other.
#pragma once

#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif

#include <GL/gl.h>

#include <GL/glext.h>
