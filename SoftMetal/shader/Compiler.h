// SPDX-License-Identifier: Apache-2.0
// The door to the shader compiler. The compiler lives in a shared object of its own (libSoftMetalCompiler), opened
// with local symbol visibility when something is compiled that the disk does not know (cache/). This header and what it
// includes are all that both sides share, and they name nothing of clang or LLVM. Both sides are built from one tree by
// one compiler, so standard types may cross.
#pragma once

#include "shader/MachineCode.h"
#include "shader/abi.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace softmetal::shader
{

enum class Stage : uint8_t
{
    Vertex,
    Fragment,
    Kernel // a name in its library; none can be made
};
enum class ScalarType : uint8_t
{
    Float,
    Half,
    Int,
    UInt,
    Short,
    UShort,
    Char,
    UChar,
    Bool
};
enum class Interpolation : uint8_t
{
    Perspective,
    NoPerspective,
    Flat
};

/// A vertex attribute as the function declares it.
struct AttributeReflection
{
    std::string name;
    uint32_t index;      // [[attribute(n)]]
    uint32_t components; // 1 to 4
    ScalarType type;
    bool active; // false when its function constant switched it off
};

/// A value that goes from the vertex to the fragment stage. Stages are matched by [[user(name)]], else by member name.
struct VaryingReflection
{
    std::string name;
    uint32_t components;
    ScalarType type;
    Interpolation interpolation;
    uint32_t firstComponent; // vertex: index into VertexOutput::component; fragment: index into FragmentInput::planes
};

enum class BindingKind : uint8_t
{
    Buffer,
    Texture,
    Sampler
};

struct BindingReflection
{
    BindingKind kind;
    std::string name;
    uint32_t index;
    uint32_t count;       // array length, 1 for a single resource
    uint32_t textureType; // MTL::TextureType, textures only
    uint64_t minimumSize; // buffers: size of the pointed-to type in bytes
    bool depth;           // textures: declared as a depth texture
    bool reads, writes;   // textures: what the declared access allows
    bool used;            // still referenced after optimisation with the given constants
};

struct ConstantReflection
{
    std::string name;
    uint32_t index;
    uint32_t dataType; // MTL::DataType
    bool required;     // no default: the function cannot be used without a value unless the constant is unused
};

struct FunctionReflection
{
    std::string name;
    Stage stage = Stage::Vertex;
    std::vector<AttributeReflection> attributes;
    std::vector<VaryingReflection> varyings; // vertex: outputs besides position; fragment: inputs
    std::vector<BindingReflection> bindings;
    std::vector<ConstantReflection> constants;
    bool hasPosition = false;
    int32_t pointSizeComponent = -1;               // vertex: index into VertexOutput::component
    uint32_t clipComponent = 0, clipDistances = 0; // vertex: the first of them, and how many there are
    uint32_t colorOutputs = 0;                     // bit n: [[color(n)]] is written
    ScalarType colorTypes[abi::MaxColorOutputs] = {};
    uint32_t colorComponents[abi::MaxColorOutputs] = {};
    bool writesDepth = false;
    bool writesStencil = false;  // [[stencil]]
    bool writesCoverage = false; // [[sample_mask]]
    bool discards = false;
    bool usesPointCoord = false;
    bool earlyFragmentTests = false;
    bool readsDepth = false, readsInverseW = false, readsW = false; // fragment: FragmentInput's z, invW and w
    int32_t copiedTexture = -1;    // fragment: the texture of which it does nothing but copy texels to colour 0, or -1
    uint32_t copiedPlanes[2] = {}; // the inputs that give their places, in pixels
    bool writesMemory = false; // buffers or textures, or may
    uint32_t inputComponents = 0; // fragment: length of FragmentInput::planes; vertex: number of output components
};

/// Value of one function constant, from MTL::FunctionConstantValues.
struct ConstantValue
{
    uint32_t index;
    std::string name;  // set instead of the index when the value was given by name
    uint32_t dataType; // MTL::DataType
    uint8_t bytes[16];
};

/// Times of one compilation in milliseconds, for the benchmarks.
struct CompileTimes
{
    double parse = 0, specialise = 0, optimise = 0, widen = 0, generate = 0;
};

/// An entry function with its constants fixed. Thread-safe; kept alive by whoever holds it.
class Function
{
public:
    virtual ~Function() = default;
    virtual const FunctionReflection& reflection() const = 0;
    /// Machine code for the process's lane count, made on the first call. Null with a message in error on failure.
    virtual abi::VertexFunction vertexCode(std::string& error) = 0;
    virtual abi::FragmentFunction fragmentCode(std::string& error) = 0;
    /// The code as data, null until it has been made.
    virtual const MachineCode* machineCode() const = 0;
    virtual CompileTimes times() const = 0;
};

/// One compiled source text.
class Library
{
public:
    virtual ~Library() = default;
    virtual std::vector<std::string> functionNames() const = 0;
    /// Reflection before specialisation, null for an unknown name.
    virtual const FunctionReflection* describe(std::string_view name) const = 0;
    /// Null with a message in error: unknown name, or a needed constant without a value.
    virtual std::shared_ptr<Function> specialise(std::string_view name, const std::vector<ConstantValue>& values,
                                                 std::string& error) = 0;
    virtual CompileTimes times() const = 0;
};

struct CompileOptions
{
    std::vector<std::pair<std::string, std::string>> macros;
    bool fastMath = false; // accepted; arithmetic is always exact, so that a frame has the same bits everywhere
};

/// The compiler itself: one per process, thread-safe.
class Compiler
{
public:
    virtual ~Compiler() = default;
    /// Null on error. messages holds clang's diagnostics (errors and warnings), one per line, as
    /// "program_source:line:column: error: …".
    virtual std::shared_ptr<Library> compile(std::string_view source, const CompileOptions& options,
                                             std::string& messages) = 0;
    virtual uint32_t lanes() const = 0; // 4, 8 or 16
    /// What the compiler makes for itself before its first program, to be given to the same compiler in another
    /// process; empty before. It stays the compiler's.
    virtual std::span<const uint8_t> preparation() const = 0;
    /// Takes what another process prepared; of no effect when it does not fit, or after the first program.
    virtual void prepare(std::vector<uint8_t> preparation) = 0;
};

/// The only symbol that libSoftMetalCompiler exports: "softmetal_open_compiler". Null when the version differs.
using OpenCompiler = Compiler* (*)(const abi::RuntimeTable* runtime, uint32_t lanes);

} // namespace softmetal::shader
