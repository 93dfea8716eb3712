// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Attributes.h"

#include "shader/frontend/ClangHeaders.h"

#include <array>
#include <optional>
#include <utility>

namespace softmetal::shader {
namespace {

enum class Takes : uint8_t
{
    Nothing,
    Number,   // an integer constant
    Word,     // a word with a meaning of its own
    Constant, // a number where it declares a function constant, the constant's name where it is a condition
    Refused,  // the language's, and this device has not got what it is about
};

struct Row
{
    const char* name;
    Takes takes;
};

constexpr std::array Rows = {
    Row{"position", Takes::Nothing},
    Row{"point_size", Takes::Nothing},
    Row{"color", Takes::Number},
    Row{"depth", Takes::Word},
    Row{"stencil", Takes::Nothing},
    Row{"sample_mask", Takes::Nothing},
    Row{"stage_in", Takes::Nothing},
    Row{"buffer", Takes::Number},
    Row{"texture", Takes::Number},
    Row{"sampler", Takes::Number},
    Row{"attribute", Takes::Number},
    Row{"softmetal_stage", Takes::Number}, // what the words for stages stand for
    Row{"function_constant", Takes::Constant},
    Row{"user", Takes::Word},
    Row{"vertex_id", Takes::Nothing},
    Row{"instance_id", Takes::Nothing},
    Row{"base_vertex", Takes::Nothing},
    Row{"base_instance", Takes::Nothing},
    Row{"front_facing", Takes::Nothing},
    Row{"point_coord", Takes::Nothing},
    Row{"primitive_id", Takes::Nothing},
    Row{"sample_id", Takes::Nothing},
    Row{"clip_distance", Takes::Nothing},
    Row{"flat", Takes::Nothing},
    Row{"center_perspective", Takes::Nothing},
    Row{"center_no_perspective", Takes::Nothing},
    Row{"centroid_perspective", Takes::Nothing},
    Row{"centroid_no_perspective", Takes::Nothing},
    Row{"sample_perspective", Takes::Nothing},
    Row{"sample_no_perspective", Takes::Nothing},
    Row{"early_fragment_tests", Takes::Nothing},
    Row{"raster_order_group", Takes::Number},
    Row{"index", Takes::Number},
    Row{"invariant", Takes::Nothing},
    Row{"id", Takes::Number}, // of argument buffers, which a structure of numbers may be
    Row{"post_depth_coverage", Takes::Refused},
    Row{"barycentric_coord", Takes::Refused},
    Row{"viewport_array_index", Takes::Refused},
    Row{"render_target_array_index", Takes::Refused},
    Row{"amplification_id", Takes::Refused},
    Row{"amplification_count", Takes::Refused},
    Row{"patch", Takes::Refused},
    Row{"patch_id", Takes::Refused},
    Row{"position_in_patch", Takes::Refused},
    Row{"visible", Takes::Refused},
    Row{"stitchable", Takes::Refused},
    Row{"object", Takes::Refused},
    Row{"mesh", Takes::Refused},
    Row{"payload", Takes::Refused},
    Row{"imageblock_data", Takes::Refused},
    // of compute kernels: known, so that the message is about the kernel
    Row{"threads_per_simdgroup", Takes::Nothing},
    Row{"thread_index_in_simdgroup", Takes::Nothing},
    Row{"thread_index_in_quadgroup", Takes::Nothing},
    Row{"simdgroup_index_in_threadgroup", Takes::Nothing},
    Row{"simdgroups_per_threadgroup", Takes::Nothing},
    Row{"thread_execution_width", Takes::Nothing},
    Row{"dispatch_threads_per_threadgroup", Takes::Nothing},
    Row{"max_total_threads_per_threadgroup", Takes::Number},
    Row{"thread_position_in_grid", Takes::Nothing},
    Row{"thread_position_in_threadgroup", Takes::Nothing},
    Row{"thread_index_in_threadgroup", Takes::Nothing},
    Row{"threads_per_grid", Takes::Nothing},
    Row{"threads_per_threadgroup", Takes::Nothing},
    Row{"threadgroup_position_in_grid", Takes::Nothing},
    Row{"threadgroups_per_grid", Takes::Nothing},
};

thread_local AttributeTable* collecting = nullptr;

const clang::ValueDecl* lookUp(clang::Sema& sema, const clang::IdentifierInfo* name)
{
    clang::LookupResult found(sema, clang::DeclarationName(name), clang::SourceLocation(), clang::Sema::LookupOrdinaryName);
    found.suppressDiagnostics();
    clang::Scope* scope = sema.getCurScope();
    sema.LookupName(found, scope ? scope : sema.TUScope);
    return found.isSingleResult() ? llvm::dyn_cast<clang::ValueDecl>(found.getFoundDecl()) : nullptr;
}

/// The value of an enumerator, or of an integer constant with an initialiser.
std::optional<int64_t> valueOf(const clang::ValueDecl* declaration)
{
    if (const auto* enumerator = llvm::dyn_cast_or_null<clang::EnumConstantDecl>(declaration)) return enumerator->getInitVal().getExtValue();
    const auto* variable = llvm::dyn_cast_or_null<clang::VarDecl>(declaration);
    if (!variable || !variable->getType().isConstQualified() || !variable->hasInit() || variable->getInit()->isValueDependent()) return std::nullopt;
    const clang::APValue* value = variable->evaluateValue();
    return value && value->isInt() ? std::optional(value->getInt().getExtValue()) : std::nullopt;
}

/// A lone name arrives as an identifier, anything longer as an expression.
bool readArgument(clang::Sema& sema, const clang::ParsedAttr& parsed, unsigned at, Takes takes, Attribute& attribute)
{
    if (parsed.isArgIdent(at)) {
        const clang::IdentifierInfo* word = parsed.getArgAsIdent(at)->Ident;
        attribute.words.push_back(word->getName().str());
        if (takes == Takes::Word) return true;
        attribute.constant = lookUp(sema, word);
        std::optional<int64_t> value = valueOf(attribute.constant);
        if (value) attribute.numbers.push_back(*value);
        return value || (takes == Takes::Constant && attribute.constant);
    }
    const clang::Expr* expression = parsed.getArgAsExpr(at)->IgnoreParenImpCasts();
    auto value = expression->isValueDependent() ? std::nullopt : expression->getIntegerConstantExpr(sema.Context);
    if (value) attribute.numbers.push_back(value->getExtValue());
    return value.has_value();
}

struct StageAttribute : clang::ParsedAttrInfo
{
    explicit StageAttribute(const Row& row)
        : spelling{clang::ParsedAttr::AS_CXX11, row.name}, other{clang::ParsedAttr::AS_GNU, row.name}, takes(row.takes)
    {
        const bool both = spelling.NormalizedFullName == std::string_view("softmetal_stage");
        Spellings = both ? llvm::ArrayRef<Spelling>(&other, 1) : llvm::ArrayRef<Spelling>(&spelling, 1);
        OptArgs = takes == Takes::Nothing ? 0 : takes == Takes::Refused ? 2 : 1;
    }

    AttrHandling handleDeclAttribute(clang::Sema& sema, clang::Decl* declaration, const clang::ParsedAttr& parsed) const override
    {
        Attribute attribute;
        attribute.name = spelling.NormalizedFullName;
        if (takes == Takes::Refused)
            return refuse(sema, parsed, attribute, "attribute '%0' is not supported by this device");
        bool fits = takes == Takes::Nothing || parsed.getNumArgs() > 0;
        for (unsigned i = 0; i < parsed.getNumArgs(); ++i) fits &= readArgument(sema, parsed, i, takes, attribute);
        if (!fits) return refuse(sema, parsed, attribute, "attribute '%0' needs an integer constant as its argument");
        if (auto* variable = llvm::dyn_cast<clang::VarDecl>(declaration); variable && attribute.name == "function_constant" && !llvm::isa<clang::ParmVarDecl>(variable))
            variable->setStorageClass(clang::SC_Extern); // its value comes with the specialisation, not from an initialiser
        if (collecting) (*collecting)[declaration->getCanonicalDecl()].push_back(std::move(attribute));
        return AttributeApplied;
    }

    template <unsigned N>
    static AttrHandling refuse(clang::Sema& sema, const clang::ParsedAttr& parsed, const Attribute& attribute,
                               const char (&words)[N])
    {
        unsigned id = sema.getDiagnostics().getCustomDiagID(clang::DiagnosticsEngine::Error, words);
        sema.Diag(parsed.getLoc(), id) << attribute.name;
        return AttributeNotApplied;
    }

    Spelling spelling, other;
    Takes takes;
};

template <size_t I>
struct NamedAttribute final : StageAttribute
{
    NamedAttribute() : StageAttribute(Rows[I]) {}
};

template <size_t I>
void registerOne()
{
    static clang::ParsedAttrInfoRegistry::Add<NamedAttribute<I>> registration(Rows[I].name, "");
}

template <size_t... I>
void registerAll(std::index_sequence<I...>)
{
    (registerOne<I>(), ...);
}

} // namespace

void registerAttributes() { registerAll(std::make_index_sequence<Rows.size()>()); }

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
