// SPDX-License-Identifier: Apache-2.0
// What a function says of itself: its vertex attributes and its constants.
#include "foundation/Collections.h"
#include "foundation/Strings.h"
#include "objects/Resources.h"

#include <array>

using namespace softmetal;

namespace {

class VertexAttributeObject final : public ObjectOf<MTL::VertexAttribute>
{
public:
    const char* className() const override { return "MTLVertexAttribute"; }
    Ref<StringObject> name = Ref<StringObject>::adopt(new StringObject);
    uint32_t index = 0;
    MTL::DataType type = MTL::DataTypeNone;
    bool active = false;
};

class FunctionConstantObject final : public ObjectOf<MTL::FunctionConstant>
{
public:
    const char* className() const override { return "MTLFunctionConstant"; }
    Ref<StringObject> name = Ref<StringObject>::adopt(new StringObject);
    uint32_t index = 0;
    MTL::DataType type = MTL::DataTypeNone;
    bool required = false;
};

struct ScalarRow
{
    shader::ScalarType scalar;
    MTL::DataType first; // of one component; those of two to four follow
};

constexpr std::array ScalarTable = {
    ScalarRow{shader::ScalarType::Float, MTL::DataTypeFloat}, ScalarRow{shader::ScalarType::Half, MTL::DataTypeHalf},
    ScalarRow{shader::ScalarType::Int, MTL::DataTypeInt},     ScalarRow{shader::ScalarType::UInt, MTL::DataTypeUInt},
    ScalarRow{shader::ScalarType::Short, MTL::DataTypeShort}, ScalarRow{shader::ScalarType::UShort, MTL::DataTypeUShort},
    ScalarRow{shader::ScalarType::Char, MTL::DataTypeChar},   ScalarRow{shader::ScalarType::UChar, MTL::DataTypeUChar},
    ScalarRow{shader::ScalarType::Bool, MTL::DataTypeBool},
};

MTL::DataType dataType(shader::ScalarType scalar, uint32_t components)
{
    for (const ScalarRow& row : ScalarTable)
        if (row.scalar == scalar) return static_cast<MTL::DataType>(row.first + components - 1);
    return MTL::DataTypeNone;
}

const shader::FunctionReflection& reflectionOf(const MTL::Function* function)
{
    return cast<FunctionObject>(function)->function->reflection();
}

} // namespace

// ---- Function --------------------------------------------------------------------------------------------------------

NS::Array* MTL::Function::vertexAttributes() const
{
    const auto& reflection = reflectionOf(this);
    if (reflection.stage != shader::Stage::Vertex || reflection.attributes.empty()) return nullptr;

    auto* result = new ArrayObject;
    for (const auto& attribute : reflection.attributes) {
        auto* object = new VertexAttributeObject;
        object->name = Ref<StringObject>::adopt(new StringObject(attribute.name));
        object->index = attribute.index;
        object->type = dataType(attribute.type, attribute.components);
        object->active = attribute.active;
        result->items.push_back(ObjectRef::adopt(object));
    }
    return autoreleased(result);
}

NS::Dictionary* MTL::Function::functionConstantsDictionary() const
{
    auto* result = new DictionaryObject;
    for (const auto& constant : reflectionOf(this).constants) {
        auto object = Ref<FunctionConstantObject>::adopt(new FunctionConstantObject);
        object->name = Ref<StringObject>::adopt(new StringObject(constant.name));
        object->index = constant.index;
        object->type = static_cast<DataType>(constant.dataType);
        object->required = constant.required;
        result->set(object->name.get(), object.get());
    }
    return autoreleased(result);
}

// ---- VertexAttribute -------------------------------------------------------------------------------------------------

MTL::VertexAttribute* MTL::VertexAttribute::alloc() { return api(new VertexAttributeObject); }
MTL::VertexAttribute* MTL::VertexAttribute::init() { return this; }
NS::String* MTL::VertexAttribute::name() const { return api(cast<VertexAttributeObject>(this)->name.get()); }
NS::UInteger MTL::VertexAttribute::attributeIndex() const { return cast<VertexAttributeObject>(this)->index; }
MTL::DataType MTL::VertexAttribute::attributeType() const { return cast<VertexAttributeObject>(this)->type; }
bool MTL::VertexAttribute::active() const { return cast<VertexAttributeObject>(this)->active; }
bool MTL::VertexAttribute::patchData() const { return false; }
bool MTL::VertexAttribute::patchControlPointData() const { return false; }

// ---- FunctionConstant ------------------------------------------------------------------------------------------------

MTL::FunctionConstant* MTL::FunctionConstant::alloc() { return api(new FunctionConstantObject); }
MTL::FunctionConstant* MTL::FunctionConstant::init() { return this; }
NS::String* MTL::FunctionConstant::name() const { return api(cast<FunctionConstantObject>(this)->name.get()); }
MTL::DataType MTL::FunctionConstant::type() const { return cast<FunctionConstantObject>(this)->type; }
NS::UInteger MTL::FunctionConstant::index() const { return cast<FunctionConstantObject>(this)->index; }
bool MTL::FunctionConstant::required() const { return cast<FunctionConstantObject>(this)->required; }
