// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace softmetal::shader {

/// The whole standard library of the shading language as one C++ text: types, vectors and matrices, mathematics, textures.
std::string standardHeader();

/// Parts of it that are regular enough to be written by loops.
std::string vectorText();
std::string matrixText();
std::string functionText();

} // namespace softmetal::shader
