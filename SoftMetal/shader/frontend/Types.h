// SPDX-License-Identifier: Apache-2.0
// What clang's types mean in the shading language.
#pragma once

#include "shader/Compiler.h"
#include "shader/frontend/ClangHeaders.h"

#include <optional>

namespace softmetal::shader {

struct NumericType
{
    ScalarType scalar = ScalarType::Float;
    uint32_t components = 1;
    uint64_t componentSize = 4;
};

/// A scalar or a vector; nothing else has one.
std::optional<NumericType> numericType(const clang::ASTContext& context, clang::QualType type);

/// MTL::DataType of a scalar or vector.
uint32_t dataType(const NumericType& type);

struct TextureKind
{
    const char* name;
    uint32_t type; // MTL::TextureType
    bool depth;
};

/// Null for what is not a texture.
const TextureKind* textureKind(clang::QualType type);

/// What a texture type says that functions do with it, as metal::access has it.
inline constexpr uint32_t AccessWrite = 2;
uint32_t textureAccess(clang::QualType type);

bool isSampler(clang::QualType type);

/// Element and length of metal::array, or the type itself and 1.
std::pair<clang::QualType, uint32_t> arrayParts(clang::QualType type);

} // namespace softmetal::shader
