// SPDX-License-Identifier: Apache-2.0
// Metal's calls on states, libraries, functions and function constants.
#include "foundation/Strings.h"
#include "inspect/Counters.h"
#include "inspect/Inspect.h"
#include "objects/Resources.h"

#include <algorithm>

using namespace softmetal;

namespace {

NS::String* labelOf(const ObjectRef& label) { return reinterpret_cast<NS::String*>(label.get()); }

} // namespace

// ---- states --------------------------------------------------------------------------------------------------------------

NS::String* MTL::SamplerState::label() const { return labelOf(cast<SamplerStateObject>(this)->label); }
MTL::Device* MTL::SamplerState::device() const { return api(cast<SamplerStateObject>(this)->device.get()); }
NS::String* MTL::DepthStencilState::label() const { return labelOf(cast<DepthStencilStateObject>(this)->label); }
MTL::Device* MTL::DepthStencilState::device() const { return api(cast<DepthStencilStateObject>(this)->device.get()); }
NS::String* MTL::RenderPipelineState::label() const { return labelOf(cast<RenderPipelineStateObject>(this)->label); }
MTL::Device* MTL::RenderPipelineState::device() const { return api(cast<RenderPipelineStateObject>(this)->device.get()); }
NS::String* MTL::Fence::label() const { return labelOf(cast<FenceObject>(this)->label); }
void MTL::Fence::setLabel(const NS::String* label) { cast<FenceObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::Fence::device() const { return api(cast<FenceObject>(this)->device.get()); }

// ---- Library, Function ------------------------------------------------------------------------------------------------------

namespace {

constexpr const char* LibraryDomain = "MTLLibraryErrorDomain";

MTL::Function* makeFunction(LibraryObject& library, const NS::String* name, const std::vector<shader::ConstantValue>& values, NS::Error** error)
{
    std::string why;
    inspect::BuildTime time("function");
    std::shared_ptr<shader::Function> function;
    if (inspect::fails("newFunction")) why = "the function could not be made (injected fault)";
    else function = library.library->specialise(textOf(name), values, why);
    FunctionObject* result = function ? new FunctionObject(library.device.get(), std::move(function)) : nullptr;
    inspect::note(api(&library), "newFunction", inspect::arg("name", textOf(name)), inspect::arg("result", static_cast<const void*>(api(result))));
    if (!result) report(error, LibraryDomain, MTL::LibraryErrorFunctionNotFound, why);
    return api(result);
}

/// Bytes of one value of a data type, and of one element where an array of them is packed.
size_t sizeOf(MTL::DataType type)
{
    struct Row
    {
        uint32_t first;
        size_t bytes;
    };
    static constexpr Row Rows[] = {{3, 4}, {16, 2}, {29, 4}, {33, 4}, {37, 2}, {41, 2}, {45, 1}, {49, 1}, {53, 1}};
    for (const Row& row : Rows)
        if (type >= row.first && type < row.first + 4) {
            size_t components = type - row.first + 1;
            return row.bytes * (components == 3 ? 4 : components);
        }
    return 0;
}

void addValue(ConstantValuesObject& all, const uint8_t* from, MTL::DataType type, NS::UInteger index, std::string name)
{
    if (!from) return;
    shader::ConstantValue value{};
    value.index = static_cast<uint32_t>(index);
    value.name = std::move(name);
    value.dataType = static_cast<uint32_t>(type);
    std::copy(from, from + std::min(sizeOf(type), sizeof value.bytes), value.bytes);
    // Setting a value again replaces it.
    std::erase_if(all.values, [&](const shader::ConstantValue& v) { return v.name == value.name && (!v.name.empty() || v.index == value.index); });
    all.values.push_back(std::move(value));
}

} // namespace

NS::String* MTL::Library::label() const { return labelOf(cast<LibraryObject>(this)->label); }
void MTL::Library::setLabel(const NS::String* label) { cast<LibraryObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::Library::device() const { return api(cast<LibraryObject>(this)->device.get()); }
MTL::Function* MTL::Library::newFunction(const NS::String* name) { return makeFunction(*cast<LibraryObject>(this), name, {}, nullptr); }

MTL::Function* MTL::Library::newFunction(const NS::String* name, const FunctionConstantValues* values, NS::Error** error)
{
    static const std::vector<shader::ConstantValue> None;
    return makeFunction(*cast<LibraryObject>(this), name, values ? cast<ConstantValuesObject>(values)->values : None, error);
}

void MTL::Library::newFunction(const NS::String* name, const FunctionConstantValues* values,
                               const std::function<void(Function*, NS::Error*)>& completionHandler)
{
    NS::Error* error = nullptr;
    Function* function = newFunction(name, values, &error);
    completionHandler(function, error);
    if (function) function->release(); // the handler keeps it by a reference of its own
}

NS::Array* MTL::Library::functionNames() const
{
    std::vector<NS::Object*> names;
    for (const std::string& name : cast<LibraryObject>(this)->library->functionNames()) names.push_back(newString(name));
    NS::Array* result = NS::Array::array(names.data(), names.size());
    for (NS::Object* name : names) name->release();
    return result;
}

NS::String* MTL::Function::label() const { return labelOf(cast<FunctionObject>(this)->label); }
void MTL::Function::setLabel(const NS::String* label) { cast<FunctionObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::Function::device() const { return api(cast<FunctionObject>(this)->device.get()); }
NS::String* MTL::Function::name() const { return autoreleasedString(cast<FunctionObject>(this)->function->reflection().name); }

MTL::FunctionType MTL::Function::functionType() const
{
    return cast<FunctionObject>(this)->function->reflection().stage == shader::Stage::Vertex ? FunctionTypeVertex : FunctionTypeFragment;
}

MTL::FunctionConstantValues* MTL::FunctionConstantValues::alloc() { return api(new ConstantValuesObject); }
MTL::FunctionConstantValues* MTL::FunctionConstantValues::init() { return this; }
void MTL::FunctionConstantValues::reset() { cast<ConstantValuesObject>(this)->values.clear(); }

void MTL::FunctionConstantValues::setConstantValue(const void* value, DataType type, NS::UInteger index)
{
    addValue(*cast<ConstantValuesObject>(this), static_cast<const uint8_t*>(value), type, index, {});
}

void MTL::FunctionConstantValues::setConstantValues(const void* values, DataType type, NS::Range range)
{
    auto* from = static_cast<const uint8_t*>(values);
    for (NS::UInteger i = 0; from && i < range.length; ++i, from += sizeOf(type)) addValue(*cast<ConstantValuesObject>(this), from, type, range.location + i, {});
}

void MTL::FunctionConstantValues::setConstantValue(const void* value, DataType type, const NS::String* name)
{
    addValue(*cast<ConstantValuesObject>(this), static_cast<const uint8_t*>(value), type, 0, textOf(name));
}
