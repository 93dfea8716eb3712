// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Types.h"

namespace softmetal::shader {
namespace {

std::optional<ScalarType> scalarType(clang::QualType type)
{
    const auto* builtin = type->getAs<clang::BuiltinType>();
    if (!builtin) return std::nullopt;
    switch (builtin->getKind()) {
    case clang::BuiltinType::Float: return ScalarType::Float;
    case clang::BuiltinType::Float16: return ScalarType::Half;
    case clang::BuiltinType::Int: return ScalarType::Int;
    case clang::BuiltinType::UInt: return ScalarType::UInt;
    case clang::BuiltinType::Short: return ScalarType::Short;
    case clang::BuiltinType::UShort: return ScalarType::UShort;
    case clang::BuiltinType::Char_S:
    case clang::BuiltinType::Char_U:
    case clang::BuiltinType::SChar: return ScalarType::Char;
    case clang::BuiltinType::UChar: return ScalarType::UChar;
    case clang::BuiltinType::Bool: return ScalarType::Bool;
    default: return std::nullopt;
    }
}

/// The instance of a class template of the standard library, which stands in the given namespace.
const clang::ClassTemplateSpecializationDecl* specialization(clang::QualType type, llvm::StringRef space)
{
    const auto* record = llvm::dyn_cast_or_null<clang::ClassTemplateSpecializationDecl>(type->getAsCXXRecordDecl());
    const auto* parent = record ? llvm::dyn_cast<clang::NamespaceDecl>(record->getDeclContext()) : nullptr;
    return parent && parent->getName() == space ? record : nullptr;
}

constexpr TextureKind TextureKinds[] = {
    {"texture1d", 0, false},
    {"texture1d_array", 1, false},
    {"texture2d", 2, false},
    {"texture2d_array", 3, false},
    {"texture2d_ms", 4, false},
    {"texturecube", 5, false},
    {"texturecube_array", 6, false},
    {"texture3d", 7, false},
    {"depth2d", 2, true},
    {"depth2d_array", 3, true},
    {"depth2d_ms", 4, true},
    {"depthcube", 5, true},
    {"depthcube_array", 6, true},
};

} // namespace

std::optional<NumericType> numericType(const clang::ASTContext& context, clang::QualType type)
{
    if (auto scalar = scalarType(type)) return NumericType{*scalar, 1, static_cast<uint64_t>(context.getTypeSizeInChars(type).getQuantity())};
    const auto* vector = specialization(type, "softmetal_types");
    if (!vector || vector->getName() != "vec") return std::nullopt;
    clang::QualType component = vector->getTemplateArgs()[0].getAsType();
    auto scalar = scalarType(component);
    if (!scalar) return std::nullopt;
    return NumericType{*scalar, static_cast<uint32_t>(vector->getTemplateArgs()[1].getAsIntegral().getZExtValue()),
                       static_cast<uint64_t>(context.getTypeSizeInChars(component).getQuantity())};
}

uint32_t dataType(const NumericType& type)
{
    // The values for scalars, in the order of ScalarType; vectors of two to four follow each.
    static constexpr uint32_t First[] = {3, 16, 29, 33, 37, 41, 45, 49, 53};
    return First[static_cast<size_t>(type.scalar)] + type.components - 1;
}

const TextureKind* textureKind(clang::QualType type)
{
    const auto* texture = specialization(type, "metal");
    if (!texture) return nullptr;
    for (const TextureKind& kind : TextureKinds)
        if (texture->getName() == kind.name) return &kind;
    return nullptr;
}

uint32_t textureAccess(clang::QualType type)
{
    const auto* texture = specialization(type, "metal");
    return texture ? static_cast<uint32_t>(texture->getTemplateArgs()[1].getAsIntegral().getZExtValue()) : 0;
}

bool isSampler(clang::QualType type)
{
    const clang::CXXRecordDecl* record = type->getAsCXXRecordDecl();
    const auto* parent = record ? llvm::dyn_cast<clang::NamespaceDecl>(record->getDeclContext()) : nullptr;
    return parent && parent->getName() == "metal" && record->getName() == "sampler";
}

std::pair<clang::QualType, uint32_t> arrayParts(clang::QualType type)
{
    const auto* array = specialization(type, "metal");
    if (!array || array->getName() != "array") return {type, 1};
    return {array->getTemplateArgs()[0].getAsType(), static_cast<uint32_t>(array->getTemplateArgs()[1].getAsIntegral().getZExtValue())};
}

} // namespace softmetal::shader
