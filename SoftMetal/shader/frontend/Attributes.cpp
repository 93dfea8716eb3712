// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Attributes.h"

#include "shader/frontend/ClangHeaders.h"

#include <optional>
#include <array>
#include <utility>

namespace softmetal::shader {
namespace {

constexpr std::array Names = {
    "position", "point_size", "color", "depth", "stencil", "sample_mask", "stage_in", "buffer", "texture", "sampler",
    "attribute", "function_constant", "user", "vertex_id", "instance_id", "base_vertex", "base_instance", "front_facing",
    "point_coord", "primitive_id", "flat", "center_perspective", "center_no_perspective", "centroid_perspective",
    "centroid_no_perspective", "sample_perspective", "sample_no_perspective", "early_fragment_tests", "raster_order_group",
    "index", "invariant",
};

thread_local AttributeTable* collecting = nullptr;

const clang::ValueDecl* lookUp(clang::Sema& sema, const clang::IdentifierInfo* name)
{
    clang::LookupResult found(sema, clang::DeclarationName(name), clang::SourceLocation(), clang::Sema::LookupOrdinaryName);
    found.suppressDiagnostics();
    sema.LookupName(found, sema.TUScope);
    return found.isSingleResult() ? llvm::dyn_cast<clang::ValueDecl>(found.getFoundDecl()) : nullptr;
}

/// The value of an enumerator or a constant variable of integer type.
std::optional<int64_t> constantValue(const clang::ValueDecl* named)
{
    if (auto* enumerator = llvm::dyn_cast_or_null<clang::EnumConstantDecl>(named)) return enumerator->getInitVal().getSExtValue();
    auto* variable = llvm::dyn_cast_or_null<clang::VarDecl>(named);
    const clang::APValue* value = variable && variable->hasInit() && variable->getType().isConstQualified() ? variable->evaluateValue() : nullptr;
    if (value && value->isInt()) return value->getInt().getSExtValue();
    return std::nullopt;
}

bool readArgument(clang::Sema& sema, const clang::ParsedAttr& parsed, unsigned at, Attribute& attribute)
{
    if (parsed.isArgIdent(at)) {
        const clang::IdentifierInfo* word = parsed.getArgAsIdent(at)->Ident;
        attribute.words.push_back(word->getName().str());
        const clang::ValueDecl* named = lookUp(sema, word);
        if (attribute.name == "function_constant") attribute.constant = named;
        else if (auto number = constantValue(named)) attribute.numbers.push_back(*number);
        return true;
    }
    const clang::Expr* expression = parsed.getArgAsExpr(at)->IgnoreParenImpCasts();
    if (auto* reference = llvm::dyn_cast<clang::DeclRefExpr>(expression)) {
        attribute.words.push_back(reference->getDecl()->getName().str());
        attribute.constant = reference->getDecl();
        if (attribute.name == "function_constant") return true;
    }
    if (auto value = expression->getIntegerConstantExpr(sema.Context)) {
        attribute.numbers.push_back(value->getSExtValue());
        return true;
    }
    return attribute.constant != nullptr;
}

struct StageAttribute : clang::ParsedAttrInfo
{
    explicit StageAttribute(const char* name) : spelling{clang::ParsedAttr::AS_CXX11, name}
    {
        Spellings = llvm::ArrayRef<Spelling>(&spelling, 1);
        OptArgs = 3;
    }

    AttrHandling handleDeclAttribute(clang::Sema& sema, clang::Decl* declaration, const clang::ParsedAttr& parsed) const override
    {
        Attribute attribute;
        attribute.name = spelling.NormalizedFullName;
        for (unsigned i = 0; i < parsed.getNumArgs(); ++i) {
            if (readArgument(sema, parsed, i, attribute)) continue;
            unsigned id = sema.getDiagnostics().getCustomDiagID(clang::DiagnosticsEngine::Error,
                                                                "argument of attribute '%0' is not an integer constant");
            sema.Diag(parsed.getLoc(), id) << attribute.name;
            return AttributeNotApplied;
        }
        if (auto* variable = llvm::dyn_cast<clang::VarDecl>(declaration); variable && attribute.name == "function_constant")
            variable->setStorageClass(clang::SC_Extern); // its value comes with the specialisation, not from an initialiser
        if (collecting) (*collecting)[declaration->getCanonicalDecl()].push_back(std::move(attribute));
        return AttributeApplied;
    }

    Spelling spelling;
};

template <size_t I>
struct NamedAttribute final : StageAttribute
{
    NamedAttribute() : StageAttribute(Names[I]) {}
};

template <size_t I>
void registerOne()
{
    static clang::ParsedAttrInfoRegistry::Add<NamedAttribute<I>> registration(Names[I], "");
}

template <size_t... I>
void registerAll(std::index_sequence<I...>)
{
    (registerOne<I>(), ...);
}

} // namespace

void registerAttributes() { registerAll(std::make_index_sequence<Names.size()>()); }

void collectAttributes(AttributeTable* table) { collecting = table; }

const Attribute* findAttribute(const AttributeTable& table, const clang::Decl* declaration, const char* name)
{
    auto place = table.find(declaration->getCanonicalDecl());
    if (place == table.end()) return nullptr;
    for (const Attribute& attribute : place->second)
        if (attribute.name == name) return &attribute;
    return nullptr;
}

} // namespace softmetal::shader
