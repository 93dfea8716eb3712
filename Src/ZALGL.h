// SPDX-License-Identifier: Apache-2.0
// GL's declarations with default visibility, so that the definitions in this folder are exported although everything else
// is hidden.
#pragma once

#pragma GCC visibility push(default)
#include <ZALMetal/ZALMetalGL.h>
#pragma GCC visibility pop

#include <ZALMetal/ZALMetal.h>
