// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Reflect.h"

#include "shader/frontend/ClangHeaders.h"
#include "shader/frontend/Types.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>

namespace softmetal::shader {
namespace {

constexpr uint64_t MostBufferBytes = uint64_t{1} << 28;

enum Place : uint8_t { VertexIn = 1, VertexOut = 2, FragmentIn = 4, FragmentOut = 8 };
enum class Needs : uint8_t { Real, Integer, Bool, Anything };

/// An attribute that gives a value its role: where it may stand and the type it asks for.
struct RoleRow
{
    const char* name;
    Role role;
    uint8_t places;
    Needs scalar;
    uint32_t components; // 0: any
    uint32_t indices;    // 0: takes none
};

constexpr RoleRow RoleRows[] = {
    {"vertex_id", Role::VertexId, VertexIn, Needs::Integer, 1, 0},
    {"instance_id", Role::InstanceId, VertexIn, Needs::Integer, 1, 0},
    {"base_vertex", Role::BaseVertex, VertexIn, Needs::Integer, 1, 0},
    {"base_instance", Role::BaseInstance, VertexIn, Needs::Integer, 1, 0},
    {"front_facing", Role::FrontFacing, FragmentIn, Needs::Bool, 1, 0},
    {"point_coord", Role::PointCoord, FragmentIn, Needs::Real, 2, 0},
    {"primitive_id", Role::PrimitiveId, FragmentIn, Needs::Integer, 1, 0},
    {"sample_id", Role::SampleId, FragmentIn, Needs::Integer, 1, 0},
    {"clip_distance", Role::ClipDistance, VertexOut, Needs::Real, 0, 0},
    {"sample_mask", Role::SampleMask, FragmentIn | FragmentOut, Needs::Integer, 1, 0},
    {"position", Role::Position, VertexOut | FragmentIn, Needs::Real, 4, 0},
    {"point_size", Role::PointSize, VertexOut | FragmentIn, Needs::Real, 1, 0},
    {"color", Role::Color, FragmentOut, Needs::Anything, 0, abi::MaxColorOutputs},
    {"depth", Role::Depth, FragmentOut, Needs::Real, 1, 0},
    {"stencil", Role::Stencil, FragmentOut, Needs::Integer, 1, 0},
    {"attribute", Role::Attribute, VertexIn, Needs::Anything, 0, abi::MaxVertexAttributes},
};

Place placeOf(Stage stage, bool input)
{
    if (stage == Stage::Vertex) return input ? VertexIn : VertexOut;
    return input ? FragmentIn : FragmentOut;
}

bool satisfies(ScalarType type, Needs needs)
{
    bool real = type == ScalarType::Float || type == ScalarType::Half, boolean = type == ScalarType::Bool;
    return needs == Needs::Anything || (needs == Needs::Real && real) || (needs == Needs::Bool && boolean) ||
           (needs == Needs::Integer && !real && !boolean);
}

class Describer
{
public:
    Describer(clang::ASTContext& context, const AttributeTable& attributes, Program& program)
        : context_(context), attributes_(attributes), program_(program), mangler_(context.createMangleContext())
    {
    }

    void run()
    {
        for (const auto& [declaration, list] : attributes_)
            if (const auto* variable = llvm::dyn_cast<clang::VarDecl>(declaration)) addConstant(variable);
        std::sort(program_.constants.begin(), program_.constants.end(), [](const Constant& a, const Constant& b) { return std::tie(a.index, a.name) < std::tie(b.index, b.name); });
        visit(context_.getTranslationUnitDecl());
    }

private:
    void visit(const clang::DeclContext* scope)
    {
        for (const clang::Decl* declaration : scope->noload_decls()) {
            if (const auto* space = llvm::dyn_cast<clang::NamespaceDecl>(declaration)) visit(space);
            if (const auto* variable = llvm::dyn_cast<clang::VarDecl>(declaration)) checkVariable(variable);
            const auto* function = llvm::dyn_cast<clang::FunctionDecl>(declaration);
            if (!function || !function->isThisDeclarationADefinition()) continue;
            for (const char* name : {"softmetal_stage", "attribute"})
                if (const Attribute* mark = attribute(function, name)) addStage(function, *mark);
        }
    }

    void addStage(const clang::FunctionDecl* function, const Attribute& mark)
    {
        constexpr int64_t First = 1001; // as the standard header numbers them
        static constexpr std::array Stages = {Stage::Vertex, Stage::Fragment, Stage::Kernel};
        const int64_t at = mark.numbers.empty() ? -1 : mark.numbers[0] - First;
        if (at < 0 || at >= static_cast<int64_t>(Stages.size()))
            return error(function, "attribute '%0' has no meaning here", "attribute");
        addEntry(function, Stages[static_cast<size_t>(at)]);
    }

    void checkVariable(const clang::VarDecl* variable)
    {
        if (!variable->getType().isConstant(context_))
            error(variable, "program scope variable '%0' must reside in constant address space", variable->getName());
    }

    template <unsigned N>
    void error(const clang::Decl* where, const char (&text)[N], llvm::StringRef detail = {})
    {
        auto& diagnostics = context_.getDiagnostics();
        diagnostics.Report(where->getLocation(), diagnostics.getCustomDiagID(clang::DiagnosticsEngine::Error, text)) << detail;
    }

    const Attribute* attribute(const clang::Decl* declaration, const char* name) const { return findAttribute(attributes_, declaration, name); }

    std::string symbol(const clang::NamedDecl* declaration)
    {
        if (!mangler_->shouldMangleDeclName(declaration)) return declaration->getName().str();
        std::string text;
        llvm::raw_string_ostream stream(text);
        if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(declaration)) mangler_->mangleName(clang::GlobalDecl(function), stream);
        else mangler_->mangleName(clang::GlobalDecl(llvm::cast<clang::VarDecl>(declaration)), stream);
        return text;
    }

    void addConstant(const clang::VarDecl* variable)
    {
        const Attribute* mark = attribute(variable, "function_constant");
        if (!mark || mark->numbers.empty()) return;
        auto type = numericType(context_, variable->getType());
        if (!type) return error(variable, "a function constant must be a scalar or a vector");
        Constant constant;
        constant.name = variable->getName().str();
        constant.symbol = symbol(variable);
        constant.index = static_cast<uint32_t>(mark->numbers[0]);
        constant.components = type->components;
        constant.type = type->scalar;
        constant.dataType = dataType(*type);
        program_.constants.push_back(constant);
    }

    void addEntry(const clang::FunctionDecl* function, Stage stage)
    {
        Entry entry;
        entry.name = function->getName().str();
        entry.symbol = symbol(function);
        entry.stage = stage;
        entry.earlyFragmentTests = attribute(function, "early_fragment_tests") != nullptr;
        if (stage == Stage::Kernel) return program_.entries.push_back(std::move(entry)); // no more than its name
        for (std::set<int64_t>& indices : taken_) indices.clear();
        for (const clang::ParmVarDecl* parameter : function->parameters()) entry.parameters.push_back(describe(parameter, stage));
        describeResult(function, entry);
        program_.entries.push_back(std::move(entry));
    }

    Parameter describe(const clang::ParmVarDecl* declaration, Stage stage)
    {
        Parameter parameter;
        clang::QualType type = declaration->getType();
        if (!type->isReferenceType()) parameter.size = static_cast<uint64_t>(context_.getTypeSizeInChars(type).getQuantity());
        if (attribute(declaration, "stage_in")) {
            parameter.record = true;
            addMembers(declaration, type, placeOf(stage, true), parameter.values);
            return parameter;
        }
        Value value = resource(declaration, type);
        if (value.role == Role::None && hasRole(declaration)) value = builtin(declaration, type, placeOf(stage, true));
        if (value.role == Role::None) error(declaration, "parameter '%0' has no attribute that says where it comes from", declaration->getName());
        parameter.values.push_back(value);
        return parameter;
    }

    Value named(const clang::NamedDecl* declaration)
    {
        Value value;
        value.name = declaration->getName().str();
        if (const Attribute* user = attribute(declaration, "user"); user && !user->words.empty()) value.name = user->words[0];
        if (const Attribute* condition = attribute(declaration, "function_constant"); condition && !condition->words.empty())
            value.condition = condition->words[0];
        return value;
    }

    /// A parameter that is bound by index. Without an index it takes the lowest that is free.
    Value resource(const clang::ParmVarDecl* declaration, clang::QualType type)
    {
        Value value = named(declaration);
        auto [element, count] = arrayParts(type);
        bool reference = type->isReferenceType() || type->isPointerType();
        if (attribute(declaration, "buffer") || (reference && !hasRole(declaration))) {
            value.role = Role::Buffer;
            if (!reference) error(declaration, "a buffer parameter must be a pointer or a reference");
            else if (clang::QualType target = type->getPointeeType(); !target->isIncompleteType())
                value.minimumSize = static_cast<uint64_t>(context_.getTypeSizeInChars(target).getQuantity());
            if (value.minimumSize > MostBufferBytes) error(declaration, "buffer parameter '%0' is larger than a buffer can be", declaration->getName());
        } else if (const TextureKind* kind = textureKind(element)) {
            value.role = Role::Texture;
            value.textureType = kind->type;
            value.depthTexture = kind->depth;
            const uint32_t access = textureAccess(element);
            value.reads = access != AccessWrite;
            value.writes = access >= AccessWrite;
        } else if (isSampler(element)) {
            value.role = Role::Sampler;
        } else {
            for (const char* name : {"texture", "sampler"})
                if (attribute(declaration, name)) error(declaration, "parameter with attribute '%0' has a type that this device does not support", name);
            return value;
        }
        value.count = value.role == Role::Buffer ? 1 : count;
        setIndex(declaration, value);
        return value;
    }

    bool hasRole(const clang::Decl* declaration) const
    {
        return std::any_of(std::begin(RoleRows), std::end(RoleRows), [&](const RoleRow& row) { return attribute(declaration, row.name) != nullptr; });
    }

    void setIndex(const clang::ParmVarDecl* declaration, Value& value)
    {
        struct Space
        {
            const char* name;
            uint32_t limit;
        };
        static constexpr Space Spaces[] = {{"buffer", abi::MaxBuffers}, {"texture", abi::MaxTextures}, {"sampler", abi::MaxSamplers}};
        size_t which = value.role == Role::Buffer ? 0 : value.role == Role::Texture ? 1 : 2;
        std::set<int64_t>& taken = taken_[which];
        const Attribute* mark = attribute(declaration, Spaces[which].name);
        int64_t index = mark && !mark->numbers.empty() ? mark->numbers[0] : 0;
        while (!mark && taken.count(index)) ++index;
        if (index < 0 || index + value.count > Spaces[which].limit) return error(declaration, "'%0' index is out of range", Spaces[which].name);
        value.index = static_cast<uint32_t>(index);
        for (uint32_t i = 0; i < value.count; ++i)
            if (!taken.insert(index + i).second && value.condition.empty()) error(declaration, "'%0' index is used by two parameters", Spaces[which].name);
    }

    Value builtin(const clang::NamedDecl* declaration, clang::QualType type, Place place)
    {
        Value value = named(declaration);
        setType(declaration, type, value);
        value.interpolation = interpolation(declaration, value);
        checkSource(declaration, place);
        for (const RoleRow& row : RoleRows)
            if (const Attribute* mark = roleMark(declaration, row)) setRole(declaration, row, *mark, place, value);
        return value;
    }

    /// On a function [[attribute]] is what [[vertex]] and [[fragment]] look like, and no role of its result.
    const Attribute* roleMark(const clang::NamedDecl* declaration, const RoleRow& row) const
    {
        bool stage = row.role == Role::Attribute && llvm::isa<clang::FunctionDecl>(declaration);
        return stage ? nullptr : attribute(declaration, row.name);
    }

    /// Blending may take a second colour from the function; this device's does not.
    void checkSource(const clang::NamedDecl* declaration, Place place)
    {
        const Attribute* source = attribute(declaration, "index");
        if (!source) return;
        if (place != FragmentOut) return error(declaration, "attribute '%0' has no meaning here", "index");
        if (!source->numbers.empty() && source->numbers[0] != 0)
            error(declaration, "a second source for blending is not supported by this device");
    }

    void setRole(const clang::NamedDecl* declaration, const RoleRow& row, const Attribute& mark, Place place, Value& value)
    {
        value.role = row.role;
        if (!(row.places & place)) return error(declaration, "attribute '%0' has no meaning here", row.name);
        if (!satisfies(value.type, row.scalar) || (row.components && row.components != value.components))
            return error(declaration, "attribute '%0' does not go with this type", row.name);
        if (row.role == Role::Depth) checkDepth(declaration, mark);
        if (row.indices == 0 || mark.numbers.empty()) return;
        if (mark.numbers[0] < 0 || mark.numbers[0] >= row.indices) return error(declaration, "'%0' index is out of range", row.name);
        value.index = static_cast<uint32_t>(mark.numbers[0]);
    }

    /// What the function promises of its depth needs no care here: depth is tested after the function, whatever it is.
    void checkDepth(const clang::NamedDecl* declaration, const Attribute& mark)
    {
        static constexpr std::array Promises = {"any", "greater", "less"};
        bool known =
            !mark.words.empty() && std::find(Promises.begin(), Promises.end(), mark.words[0]) != Promises.end();
        if (!known) error(declaration, "attribute 'depth' takes one of the words any, greater and less");
    }

    void setType(const clang::NamedDecl* declaration, clang::QualType type, Value& value)
    {
        const clang::ConstantArrayType* array = attribute(declaration, "clip_distance") ? context_.getAsConstantArrayType(type) : nullptr;
        auto numeric = numericType(context_, array ? array->getElementType() : type);
        if (!numeric) return error(declaration, "'%0' must be a scalar or a vector", declaration->getName());
        value.type = numeric->scalar;
        value.components = array ? static_cast<uint32_t>(std::min<uint64_t>(array->getSize().getZExtValue(), abi::MaxClipDistances + 1)) : numeric->components;
        value.componentSize = numeric->componentSize;
    }

    Interpolation interpolation(const clang::NamedDecl* declaration, const Value& value) const
    {
        for (const char* name : {"center_no_perspective", "centroid_no_perspective", "sample_no_perspective"})
            if (attribute(declaration, name)) return Interpolation::NoPerspective;
        bool real = value.type == ScalarType::Float || value.type == ScalarType::Half;
        return attribute(declaration, "flat") || !real ? Interpolation::Flat : Interpolation::Perspective;
    }

    void addMembers(const clang::NamedDecl* holder, clang::QualType type, Place place, std::vector<Value>& values)
    {
        const clang::CXXRecordDecl* record = type->getAsCXXRecordDecl();
        if (!record || !record->hasDefinition()) return error(holder, "'%0' must be a structure", holder->getName());
        const clang::ASTRecordLayout& layout = context_.getASTRecordLayout(record->getDefinition());
        for (const clang::FieldDecl* field : record->getDefinition()->fields()) {
            Value value = builtin(field, field->getType(), place);
            value.offset = layout.getFieldOffset(field->getFieldIndex()) / 8;
            if (value.role == Role::None) value.role = plainRole(field, place);
            values.push_back(value);
        }
    }

    /// A member without a role of its own travels between the stages.
    Role plainRole(const clang::FieldDecl* field, Place place)
    {
        if (place == VertexOut || place == FragmentIn) return Role::Varying;
        if (place == VertexIn) error(field, "member '%0' of the stage input has no attribute index", field->getName());
        else error(field, "member '%0' of the fragment output has no attribute", field->getName());
        return Role::None;
    }

    void describeResult(const clang::FunctionDecl* function, Entry& entry)
    {
        clang::QualType type = function->getReturnType();
        if (type->isVoidType()) return;
        Place place = placeOf(entry.stage, false);
        entry.resultSize = static_cast<uint64_t>(context_.getTypeSizeInChars(type).getQuantity());
        if (!numericType(context_, type)) addMembers(function, type, place, entry.results);
        else entry.results.push_back(builtin(function, type, place));
        for (Value& value : entry.results)
            if (value.role == Role::None) value.role = entry.stage == Stage::Vertex ? Role::Position : Role::Color;
        checkOutputs(function, entry);
        checkClipDistances(function, entry);
    }

    void checkClipDistances(const clang::FunctionDecl* function, const Entry& entry)
    {
        uint32_t count = 0, members = 0;
        for (const Value& value : entry.results) {
            if (value.role != Role::ClipDistance) continue;
            ++members;
            count += value.components;
        }
        if (members > 1) error(function, "vertex function '%0' has two results with attribute 'clip_distance'", function->getName());
        if (count > abi::MaxClipDistances) error(function, "vertex function '%0' has more clip distances than this device supports", function->getName());
    }

    void checkOutputs(const clang::FunctionDecl* function, const Entry& entry)
    {
        uint32_t components = 0;
        for (const Value& value : entry.results) components += value.components;
        if (entry.stage == Stage::Vertex && components > abi::MaxVertexOutputComponents)
            error(function, "vertex function '%0' has more outputs than this device supports", function->getName());
        uint32_t colors = 0;
        for (const Value& value : entry.results) {
            bool tested = value.role == Role::Depth || value.role == Role::Stencil;
            if (tested && entry.earlyFragmentTests)
                error(function, "fragment function '%0' writes what early fragment tests have already looked at",
                      function->getName());
            if (value.role != Role::Color) continue;
            if ((colors >> value.index & 1) != 0 && value.condition.empty())
                error(function, "fragment function '%0' writes a colour twice", function->getName());
            colors |= 1u << value.index;
        }
    }

    clang::ASTContext& context_;
    const AttributeTable& attributes_;
    Program& program_;
    std::unique_ptr<clang::MangleContext> mangler_;
    std::set<int64_t> taken_[3]; // indices of buffers, textures and samplers of the function being described
};

} // namespace

void describeProgram(clang::ASTContext& context, const AttributeTable& attributes, Program& program)
{
    Describer(context, attributes, program).run();
}

} // namespace softmetal::shader
