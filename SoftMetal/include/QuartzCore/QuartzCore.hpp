// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CAMetalDrawable.hpp"
#include "CAMetalLayer.hpp"
