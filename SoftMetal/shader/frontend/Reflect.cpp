// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Reflect.h"

#include "shader/frontend/ClangHeaders.h"

#include <optional>

namespace softmetal::shader {
namespace {

struct NumericType
{
    ScalarType scalar = ScalarType::Float;
    uint32_t components = 1;
    uint64_t componentSize = 4;
};

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

const clang::ClassTemplateSpecializationDecl* specialization(clang::QualType type)
{
    const clang::CXXRecordDecl* record = type->getAsCXXRecordDecl();
    return llvm::dyn_cast_or_null<clang::ClassTemplateSpecializationDecl>(record);
}


std::optional<NumericType> numericType(clang::ASTContext& context, clang::QualType type)
{
    if (auto scalar = scalarType(type)) return NumericType{*scalar, 1, static_cast<uint64_t>(context.getTypeSizeInChars(type).getQuantity())};
    const auto* vector = specialization(type);
    if (!vector || vector->getName() != "vec") return std::nullopt;
    clang::QualType component = vector->getTemplateArgs()[0].getAsType();
    auto scalar = scalarType(component);
    if (!scalar) return std::nullopt;
    return NumericType{*scalar, static_cast<uint32_t>(vector->getTemplateArgs()[1].getAsIntegral().getZExtValue()),
                       static_cast<uint64_t>(context.getTypeSizeInChars(component).getQuantity())};
}

struct TextureKind
{
    const char* name;
    uint32_t type; // MTL::TextureType
    bool depth;
};

constexpr TextureKind TextureKinds[] = {
    {"texture1d", 0, false},   {"texture2d", 2, false},      {"texture2d_array", 3, false}, {"texture3d", 7, false},
    {"texturecube", 5, false}, {"depth2d", 2, true},         {"depth2d_array", 3, true},    {"depthcube", 5, true},
};

const TextureKind* textureKind(clang::QualType type)
{
    const auto* texture = specialization(type);
    if (!texture) return nullptr;
    for (const TextureKind& kind : TextureKinds)
        if (texture->getName() == kind.name) return &kind;
    return nullptr;
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
        visit(context_.getTranslationUnitDecl());
    }

private:
    void visit(const clang::DeclContext* scope)
    {
        for (const clang::Decl* declaration : scope->noload_decls()) {
            if (const auto* space = llvm::dyn_cast<clang::NamespaceDecl>(declaration)) visit(space);
            const auto* function = llvm::dyn_cast<clang::FunctionDecl>(declaration);
            if (!function || !function->isThisDeclarationADefinition()) continue;
            for (const auto* mark : function->specific_attrs<clang::AnnotateAttr>()) {
                if (mark->getAnnotation() == "softmetal.vertex") addEntry(function, Stage::Vertex);
                if (mark->getAnnotation() == "softmetal.fragment") addEntry(function, Stage::Fragment);
                if (mark->getAnnotation() == "softmetal.kernel") error(function, "compute kernels are not supported by this device");
            }
        }
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

    static uint32_t dataType(const NumericType& type)
    {
        // Values of MTL::DataType for the scalar; vectors of two to four follow it.
        static constexpr uint32_t First[] = {3, 16, 29, 33, 37, 41, 45, 49, 53};
        return First[static_cast<size_t>(type.scalar)] + type.components - 1;
    }

    void addEntry(const clang::FunctionDecl* function, Stage stage)
    {
        Entry entry;
        entry.name = function->getName().str();
        entry.symbol = symbol(function);
        entry.stage = stage;
        entry.earlyFragmentTests = attribute(function, "early_fragment_tests") != nullptr;
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
            addMembers(type->getAsCXXRecordDecl(), 0, stage, true, parameter.values);
            return parameter;
        }
        Value value = resource(declaration, type);
        if (value.role == Role::None) value = builtin(declaration, type, stage);
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

    Value resource(const clang::ParmVarDecl* declaration, clang::QualType type)
    {
        Value value = named(declaration);
        auto indexOf = [&](const char* name, Role role) {
            const Attribute* mark = attribute(declaration, name);
            if (!mark || mark->numbers.empty()) return false;
            value.role = role;
            value.index = static_cast<uint32_t>(mark->numbers[0]);
            return true;
        };
        if (indexOf("buffer", Role::Buffer)) {
            if (!type->isReferenceType() && !type->isPointerType()) error(declaration, "a buffer parameter must be a pointer or a reference");
            else if (clang::QualType target = type->getPointeeType(); !target->isIncompleteType())
                value.minimumSize = static_cast<uint64_t>(context_.getTypeSizeInChars(target).getQuantity());
        } else if (indexOf("texture", Role::Texture)) {
            clang::QualType element = type;
            if (const auto* array = specialization(type); array && array->getName() == "array") {
                element = array->getTemplateArgs()[0].getAsType();
                value.count = static_cast<uint32_t>(array->getTemplateArgs()[1].getAsIntegral().getZExtValue());
            }
            const TextureKind* kind = textureKind(element);
            if (!kind) error(declaration, "a texture parameter must have a texture type that this device supports");
            value.textureType = kind ? kind->type : 0;
            value.depthTexture = kind && kind->depth;
        } else if (indexOf("sampler", Role::Sampler)) {
            value.count = 1;
        }
        return value;
    }

    Value builtin(const clang::NamedDecl* declaration, clang::QualType type, Stage stage)
    {
        static constexpr std::pair<const char*, Role> Roles[] = {
            {"vertex_id", Role::VertexId},       {"instance_id", Role::InstanceId},   {"base_vertex", Role::BaseVertex},
            {"base_instance", Role::BaseInstance}, {"front_facing", Role::FrontFacing}, {"point_coord", Role::PointCoord},
            {"primitive_id", Role::PrimitiveId}, {"sample_mask", Role::SampleMask},   {"position", Role::Position},
            {"point_size", Role::PointSize},     {"color", Role::Color},              {"depth", Role::Depth},
            {"stencil", Role::Stencil},          {"attribute", Role::Attribute},
        };
        Value value = named(declaration);
        for (const auto& [name, role] : Roles) {
            const Attribute* mark = attribute(declaration, name);
            if (!mark) continue;
            value.role = role;
            if (!mark->numbers.empty()) value.index = static_cast<uint32_t>(mark->numbers[0]);
        }
        setType(declaration, type, value);
        value.interpolation = interpolation(declaration, value);
        (void)stage;
        return value;
    }

    void setType(const clang::NamedDecl* declaration, clang::QualType type, Value& value)
    {
        auto numeric = numericType(context_, type);
        if (!numeric) return error(declaration, "'%0' must be a scalar or a vector", declaration->getName());
        value.type = numeric->scalar;
        value.components = numeric->components;
        value.componentSize = numeric->componentSize;
    }

    Interpolation interpolation(const clang::NamedDecl* declaration, const Value& value) const
    {
        for (const char* name : {"center_no_perspective", "centroid_no_perspective", "sample_no_perspective"})
            if (attribute(declaration, name)) return Interpolation::NoPerspective;
        bool real = value.type == ScalarType::Float || value.type == ScalarType::Half;
        return attribute(declaration, "flat") || !real ? Interpolation::Flat : Interpolation::Perspective;
    }

    void addMembers(const clang::CXXRecordDecl* record, uint64_t base, Stage stage, bool input, std::vector<Value>& values)
    {
        if (!record || !record->hasDefinition()) return;
        const clang::ASTRecordLayout& layout = context_.getASTRecordLayout(record->getDefinition());
        for (const clang::FieldDecl* field : record->getDefinition()->fields()) {
            Value value = builtin(field, field->getType(), stage);
            value.offset = base + layout.getFieldOffset(field->getFieldIndex()) / 8;
            if (value.role == Role::None) value.role = plainRole(field, stage, input);
            values.push_back(value);
        }
    }

    /// A member without a role of its own travels between the stages.
    Role plainRole(const clang::FieldDecl* field, Stage stage, bool input)
    {
        bool between = (stage == Stage::Vertex) != input;
        if (between) return Role::Varying;
        if (input) error(field, "member '%0' of the stage input has no attribute index", field->getName());
        else error(field, "member '%0' of the fragment output has no attribute", field->getName());
        return Role::None;
    }

    void describeResult(const clang::FunctionDecl* function, Entry& entry)
    {
        clang::QualType type = function->getReturnType();
        if (type->isVoidType()) return;
        entry.resultSize = static_cast<uint64_t>(context_.getTypeSizeInChars(type).getQuantity());
        if (!numericType(context_, type)) return addMembers(type->getAsCXXRecordDecl(), 0, entry.stage, false, entry.results);
        Value value = builtin(function, type, entry.stage);
        if (value.role == Role::None) value.role = entry.stage == Stage::Vertex ? Role::Position : Role::Color;
        entry.results.push_back(value);
    }

    clang::ASTContext& context_;
    const AttributeTable& attributes_;
    Program& program_;
    std::unique_ptr<clang::MangleContext> mangler_;
};

} // namespace

void describeProgram(clang::ASTContext& context, const AttributeTable& attributes, Program& program)
{
    Describer(context, attributes, program).run();
}

} // namespace softmetal::shader
