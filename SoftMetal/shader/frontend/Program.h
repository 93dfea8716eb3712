// SPDX-License-Identifier: Apache-2.0
// What the front end keeps of a parsed source: the scalar module, and for each entry function a description of its
// parameters and results by byte offsets. Nothing here refers to clang's tree, which is gone by then.
#pragma once

#include "shader/Compiler.h"

#include <llvm/IR/LLVMContext.h>
#include <llvm/IR/Module.h>

#include <memory>
#include <string>
#include <vector>

namespace softmetal::shader
{

enum class Role : uint8_t
{
    None,
    Attribute, // [[attribute(n)]]
    Varying,   // goes between the stages
    Position,  // output of the vertex stage, input of the fragment stage
    PointSize,
    Color, // [[color(n)]]
    Depth,
    Stencil,
    SampleMask,
    VertexId,
    InstanceId,
    BaseVertex,
    BaseInstance,
    FrontFacing,
    PointCoord,
    PrimitiveId,
    SampleId,     // always 0: pipelines have one sample
    ClipDistance, // behind the plane where it is below zero
    Buffer,
    Texture,
    Sampler,
};

/// One scalar or vector value that the stage exchanges with its surroundings.
struct Value
{
    std::string name;
    Role role = Role::None;
    uint32_t index = 0;  // of the attribute, colour or resource
    uint64_t offset = 0; // bytes, within the record that holds it
    uint32_t components = 1;
    uint64_t componentSize = 4;
    ScalarType type = ScalarType::Float;
    Interpolation interpolation = Interpolation::Perspective;
    std::string condition; // name of the function constant that switches it, empty: always there
    // resources only
    uint32_t count = 1;
    uint32_t textureType = 0;
    uint64_t minimumSize = 0;
    bool depthTexture = false;
    bool reads = false, writes = false;
};

struct Parameter
{
    uint64_t size = 0;         // bytes, when passed in memory
    bool record = false;       // [[stage_in]]: values are its members
    std::vector<Value> values; // one, unless it is a record
};

struct Entry
{
    std::string name, symbol; // as written; as the module calls it
    Stage stage = Stage::Vertex;
    std::vector<Parameter> parameters;
    uint64_t resultSize = 0; // 0: void
    std::vector<Value> results;
    bool earlyFragmentTests = false;
};

struct Constant
{
    std::string name, symbol;
    uint32_t index = 0;
    uint32_t dataType = 0; // MTL::DataType
    uint32_t components = 1;
    ScalarType type = ScalarType::Int;
};

struct Program
{
    std::unique_ptr<llvm::LLVMContext> context;
    std::unique_ptr<llvm::Module> module;
    std::vector<Entry> entries;
    std::vector<Constant> constants;
};

/// The precompiled standard header with the name of the clang that made it; empty before the first program.
std::span<const uint8_t> preparation();
/// Takes a precompiled header of this clang; ignored after the first program.
void prepare(std::vector<uint8_t> preparation);

/// Parses a source text. Null on error; messages holds clang's diagnostics either way.
std::unique_ptr<Program> parse(std::string_view source, const CompileOptions& options, std::string& messages);

/// Adds the function "softmetal_entry" to a module (a copy of the program's): it fetches inputs, calls the entry and
/// hands on results through the intrinsics. Values whose function constant is false are left out.
class SpecialisedConstants;
void addEntryWrapper(llvm::Module& module, const Entry& entry, const SpecialisedConstants& constants);

/// What the function looks like from outside, with the given constants (null: before specialisation).
FunctionReflection reflect(const Program& program, const Entry& entry, const SpecialisedConstants* constants);

/// Values of function constants, by the constant's name.
class SpecialisedConstants
{
public:
    SpecialisedConstants(const Program& program, const std::vector<ConstantValue>& values);
    /// Null when no value was given.
    const ConstantValue* find(const std::string& name) const;
    /// A value under a condition that is false, or has no value, is not there.
    bool absent(const Value& value) const;
    /// The first value whose type is not the constant's, as a sentence; empty when all fit.
    std::string mismatch() const;
    /// Gives the module's constants their values.
    void apply(llvm::Module& module) const;

private:
    const Program& program_;
    std::vector<std::pair<std::string, ConstantValue>> values_;
};

} // namespace softmetal::shader
