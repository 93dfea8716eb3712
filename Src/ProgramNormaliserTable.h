// SPDX-License-Identifier: Apache-2.0
// What the normaliser knows of the standard languages: opcodes, bindings, options, and the names that generated source
// needs for itself.
#pragma once

#include <array>

namespace ZALMetal
{

// ---- Opcodes -------------------------------------------------------------------------------------------------------

// How an instruction comes out.
enum class Writing
{
    AsIs,
    Flow,            // as it is, without a destination
    Sample,          // TEX
    SampleProjected, // TXP
    Kill,
    Condition,      // IF
    ReciprocalRoot, // of the absolute value
    Homogeneous,    // DPH
    Distance,       // DST
    Lighting,       // LIT
    Logarithm,      // LOG
    Exponential,    // EXP
    SineCosine,     // SCS
    Swizzle,        // SWZ
    Cross,          // XPD without w
    Unequal,        // SNE of vectors
    LessOrEqual,    // SLE
    Constant,       // SFL, STR
    Ceiling,        // CEIL
    Quotient,       // DIV
    Unit,           // NRM
    Refused,
};

// Which components of a source an instruction reads.
enum class Reads
{
    Masked, // those that are written
    First,
    Two,
    Three,
    All,
};

struct StandardOpcode
{
    const char* name;
    Writing writing;
    int sources;
    Reads reads;
    const char* note; // the constant that is moved, or why the instruction is refused
};

// clang-format off
inline constexpr const char* kAddressRegisters = "address registers cannot be expressed";
inline constexpr const char* kBiasedSampling = "sampling with a bias or a level of detail cannot be expressed";
inline constexpr const char* kDerivatives = "derivatives cannot be expressed";
inline constexpr const char* kSubroutines = "subroutines and branches cannot be expressed";

inline constexpr std::array kStandardOpcodes = std::to_array<StandardOpcode>({
    {"ABS",     Writing::AsIs,            1, Reads::Masked, ""},
    {"ADD",     Writing::AsIs,            2, Reads::Masked, ""},
    {"AND.U",   Writing::AsIs,            2, Reads::All,    ""},
    {"BRK",     Writing::Flow,            0, Reads::All,    ""},
    {"CEIL",    Writing::Ceiling,         1, Reads::Masked, ""},
    {"CMP",     Writing::AsIs,            3, Reads::Masked, ""},
    {"CONT",    Writing::Flow,            0, Reads::All,    ""},
    {"COS",     Writing::AsIs,            1, Reads::First,  ""},
    {"DIV",     Writing::Quotient,        2, Reads::All,    ""},
    {"DP2",     Writing::AsIs,            2, Reads::Two,    ""},
    {"DP3",     Writing::AsIs,            2, Reads::Three,  ""},
    {"DP4",     Writing::AsIs,            2, Reads::All,    ""},
    {"DPH",     Writing::Homogeneous,     2, Reads::All,    ""},
    {"DST",     Writing::Distance,        2, Reads::All,    ""},
    {"ELSE",    Writing::Flow,            0, Reads::All,    ""},
    {"ENDIF",   Writing::Flow,            0, Reads::All,    ""},
    {"ENDREP",  Writing::Flow,            0, Reads::All,    ""},
    {"EX2",     Writing::AsIs,            1, Reads::First,  ""},
    {"EXP",     Writing::Exponential,     1, Reads::First,  ""},
    {"FLR",     Writing::AsIs,            1, Reads::Masked, ""},
    {"FLR.U",   Writing::AsIs,            1, Reads::Masked, ""},
    {"FRC",     Writing::AsIs,            1, Reads::Masked, ""},
    {"I2F.U",   Writing::AsIs,            1, Reads::All,    ""},
    {"IF",      Writing::Condition,       0, Reads::All,    ""},
    {"KIL",     Writing::Kill,            1, Reads::All,    ""},
    {"LG2",     Writing::AsIs,            1, Reads::First,  ""},
    {"LIT",     Writing::Lighting,        1, Reads::All,    ""},
    {"LOG",     Writing::Logarithm,       1, Reads::First,  ""},
    {"LRP",     Writing::AsIs,            3, Reads::Masked, ""},
    {"MAD",     Writing::AsIs,            3, Reads::Masked, ""},
    {"MAX",     Writing::AsIs,            2, Reads::Masked, ""},
    {"MIN",     Writing::AsIs,            2, Reads::Masked, ""},
    {"MOV",     Writing::AsIs,            1, Reads::Masked, ""},
    {"MOVC",    Writing::AsIs,            1, Reads::Masked, ""},
    {"MUL",     Writing::AsIs,            2, Reads::Masked, ""},
    {"NRM",     Writing::Unit,            1, Reads::Three,  ""},
    {"PK4UB.U", Writing::AsIs,            1, Reads::All,    ""},
    {"POW",     Writing::AsIs,            2, Reads::First,  ""},
    {"RCP",     Writing::AsIs,            1, Reads::First,  ""},
    {"REP",     Writing::Flow,            1, Reads::First,  ""},
    {"RSQ",     Writing::ReciprocalRoot,  1, Reads::First,  ""},
    {"SCS",     Writing::SineCosine,      1, Reads::First,  ""},
    {"SEQ",     Writing::AsIs,            2, Reads::Masked, ""},
    {"SFL",     Writing::Constant,        0, Reads::All,    "0.0"},
    {"SGE",     Writing::AsIs,            2, Reads::Masked, ""},
    {"SGT",     Writing::AsIs,            2, Reads::Masked, ""},
    {"SHR.U",   Writing::AsIs,            2, Reads::All,    ""},
    {"SIN",     Writing::AsIs,            1, Reads::First,  ""},
    {"SLE",     Writing::LessOrEqual,     2, Reads::Masked, ""},
    {"SLT",     Writing::AsIs,            2, Reads::Masked, ""},
    {"SNE",     Writing::Unequal,         2, Reads::Masked, ""},
    {"STR",     Writing::Constant,        0, Reads::All,    "1.0"},
    {"SUB",     Writing::AsIs,            2, Reads::Masked, ""},
    {"SWZ",     Writing::Swizzle,         1, Reads::All,    ""},
    {"TEX",     Writing::Sample,          1, Reads::Three,  ""},
    {"TXP",     Writing::SampleProjected, 1, Reads::All,    ""},
    {"UP4UB",   Writing::AsIs,            1, Reads::All,    ""},
    {"XPD",     Writing::Cross,           2, Reads::Three,  ""},

    {"ARA",     Writing::Refused,         0, Reads::All,    kAddressRegisters},
    {"ARL",     Writing::Refused,         0, Reads::All,    kAddressRegisters},
    {"ARR",     Writing::Refused,         0, Reads::All,    kAddressRegisters},
    {"TXB",     Writing::Refused,         0, Reads::All,    kBiasedSampling},
    {"TXL",     Writing::Refused,         0, Reads::All,    kBiasedSampling},
    {"TXD",     Writing::Refused,         0, Reads::All,    kDerivatives},
    {"DDX",     Writing::Refused,         0, Reads::All,    kDerivatives},
    {"DDY",     Writing::Refused,         0, Reads::All,    kDerivatives},
    {"BRA",     Writing::Refused,         0, Reads::All,    kSubroutines},
    {"CAL",     Writing::Refused,         0, Reads::All,    kSubroutines},
    {"RET",     Writing::Refused,         0, Reads::All,    kSubroutines},
});

// ---- Bindings ------------------------------------------------------------------------------------------------------

enum class BindingStage { Vertex, Fragment, Both };

enum class BindingUse
{
    Value,
    Normal,    // the dialect has no fourth component for it
    Local,     // a program parameter
    Global,    // a parameter of all programs, which lies behind the program's own
    Unread,    // a result that no fragment program can read
    Refused,
};

struct BindingRow
{
    BindingStage stage;
    const char* binding;     // "[#]" where an index may stand
    BindingUse use;
    const char* replacement; // "#" for the index; or why the binding is refused
    int most;                // the largest index
    int offset;              // added to the index
};

inline constexpr const char* kNoAttribute = "this attribute does not reach a program";
inline constexpr const char* kLightState = "light and material state cannot be expressed";
inline constexpr const char* kFogState = "fog cannot be expressed";
inline constexpr const char* kOtherState = "this state cannot be expressed";
inline constexpr const char* kNoInput = "this input does not reach a program";
inline constexpr const char* kNoResult = "this result cannot be expressed";

inline constexpr int kGlobalsAt = 128; // the local that the first global parameter becomes
inline constexpr int kMostLocal = 255;
inline constexpr int kMostGlobal = kMostLocal - kGlobalsAt;

inline constexpr std::array kBindingRows = std::to_array<BindingRow>({
    {BindingStage::Vertex,   "vertex.position",              BindingUse::Value,   "vertex.attrib[0]", 0, 0},
    {BindingStage::Vertex,   "vertex.normal",                BindingUse::Normal,  "vertex.attrib[2]", 0, 0},
    {BindingStage::Vertex,   "vertex.color",                 BindingUse::Value,   "vertex.attrib[3]", 0, 0},
    {BindingStage::Vertex,   "vertex.color.primary",         BindingUse::Value,   "vertex.attrib[3]", 0, 0},
    {BindingStage::Vertex,   "vertex.texcoord[#]",           BindingUse::Value,   "vertex.attrib[#]", 7, 8},
    {BindingStage::Vertex,   "vertex.attrib[#]",             BindingUse::Value,   "vertex.attrib[#]", 15, 0},
    {BindingStage::Vertex,   "vertex.color.secondary",       BindingUse::Refused, kNoAttribute, 0, 0},
    {BindingStage::Vertex,   "vertex.weight[#]",             BindingUse::Refused, kNoAttribute, 15, 0},
    {BindingStage::Vertex,   "vertex.fogcoord",              BindingUse::Refused, kNoAttribute, 0, 0},
    {BindingStage::Vertex,   "vertex.matrixindex[#]",        BindingUse::Refused, kNoAttribute, 15, 0},
    {BindingStage::Vertex,   "vertex",                       BindingUse::Refused, kNoAttribute, 0, 0},

    {BindingStage::Vertex,   "result.position",              BindingUse::Value,   "result.position", 0, 0},
    {BindingStage::Vertex,   "result.color",                 BindingUse::Value,   "result.color", 0, 0},
    {BindingStage::Vertex,   "result.color.primary",         BindingUse::Value,   "result.color", 0, 0},
    {BindingStage::Vertex,   "result.color.front",           BindingUse::Value,   "result.color", 0, 0},
    {BindingStage::Vertex,   "result.color.front.primary",   BindingUse::Value,   "result.color", 0, 0},
    {BindingStage::Vertex,   "result.color.secondary",       BindingUse::Unread,  "", 0, 0},
    {BindingStage::Vertex,   "result.color.front.secondary", BindingUse::Unread,  "", 0, 0},
    {BindingStage::Vertex,   "result.color.back",            BindingUse::Refused, kNoResult, 0, 0},
    {BindingStage::Vertex,   "result.color.back.primary",    BindingUse::Refused, kNoResult, 0, 0},
    {BindingStage::Vertex,   "result.color.back.secondary",  BindingUse::Refused, kNoResult, 0, 0},
    {BindingStage::Vertex,   "result.fogcoord",              BindingUse::Unread,  "", 0, 0},
    {BindingStage::Vertex,   "result.texcoord[#]",           BindingUse::Value,   "result.texcoord[#]", 7, 0},
    {BindingStage::Vertex,   "result",                       BindingUse::Refused, kNoResult, 0, 0},

    {BindingStage::Fragment, "fragment.color",               BindingUse::Value,   "fragment.color", 0, 0},
    {BindingStage::Fragment, "fragment.color.primary",       BindingUse::Value,   "fragment.color", 0, 0},
    {BindingStage::Fragment, "fragment.texcoord[#]",         BindingUse::Value,   "fragment.texcoord[#]", 7, 0},
    {BindingStage::Fragment, "fragment.position",            BindingUse::Value,   "fragment.position", 0, 0},
    {BindingStage::Fragment, "fragment.color.secondary",     BindingUse::Refused, kNoInput, 0, 0},
    {BindingStage::Fragment, "fragment.fogcoord",            BindingUse::Refused, kFogState, 0, 0},
    {BindingStage::Fragment, "fragment",                     BindingUse::Refused, kNoInput, 0, 0},
    {BindingStage::Fragment, "result.color",                 BindingUse::Value,   "result.color", 0, 0},
    {BindingStage::Fragment, "result.color[#]",              BindingUse::Value,   "result.color[#]", 7, 0},
    {BindingStage::Fragment, "result.depth",                 BindingUse::Value,   "result.depth", 0, 0},
    {BindingStage::Fragment, "result",                       BindingUse::Refused, kNoResult, 0, 0},

    {BindingStage::Both,     "program.local[#]",             BindingUse::Local,   "program.local[#]", kMostLocal, 0},
    {BindingStage::Both,     "program.env[#]",               BindingUse::Global,  "program.local[#]", kMostGlobal, kGlobalsAt},
    {BindingStage::Both,     "program",                      BindingUse::Refused, "there is no such program parameter", 0, 0},

    {BindingStage::Both,     "state.light",                  BindingUse::Refused, kLightState, 0, 0},
    {BindingStage::Both,     "state.lightmodel",             BindingUse::Refused, kLightState, 0, 0},
    {BindingStage::Both,     "state.lightprod",              BindingUse::Refused, kLightState, 0, 0},
    {BindingStage::Both,     "state.material",               BindingUse::Refused, kLightState, 0, 0},
    {BindingStage::Both,     "state.fog",                    BindingUse::Refused, kFogState, 0, 0},
    {BindingStage::Both,     "state",                        BindingUse::Refused, kOtherState, 0, 0},
});

// The generic attributes that reach a program.
inline constexpr unsigned kReachableAttributes = 0xFF0D;

struct MatrixRow
{
    const char* name;
    int most; // the largest index
};

inline constexpr std::array kMatrixRows = std::to_array<MatrixRow>({
    {"modelview", 0}, {"projection", 0}, {"mvp", 0}, {"texture", 3},
});

inline constexpr std::array kMatrixForms = std::to_array<const char*>({"inverse", "transpose", "invtrans"});

// ---- Options -------------------------------------------------------------------------------------------------------

enum class OptionEffect { None, PositionInvariant, Refused };

struct OptionRow
{
    const char* name;
    OptionEffect effect;
    const char* why;
};

inline constexpr std::array kOptionRows = std::to_array<OptionRow>({
    {"ARB_precision_hint_fastest",  OptionEffect::None,              ""},
    {"ARB_precision_hint_nicest",   OptionEffect::None,              ""},
    {"ARB_draw_buffers",            OptionEffect::None,              ""},
    {"ATI_draw_buffers",            OptionEffect::None,              ""},
    {"ARB_fragment_program_shadow", OptionEffect::None,              ""}, // the targets that it brings are refused
    {"NV_fragment_program",         OptionEffect::None,              ""}, // and so are the new instructions
    {"NV_fragment_program2",        OptionEffect::None,              ""},
    {"NV_vertex_program2",          OptionEffect::None,              ""},
    {"NV_vertex_program3",          OptionEffect::None,              ""},
    {"ARB_position_invariant",      OptionEffect::PositionInvariant, ""},
    {"ARB_fog_exp",                 OptionEffect::Refused,           kFogState},
    {"ARB_fog_exp2",                OptionEffect::Refused,           kFogState},
    {"ARB_fog_linear",              OptionEffect::Refused,           kFogState},
});

// ---- Names ---------------------------------------------------------------------------------------------------------

// Words that a program may use as names and that mean something in the generated source.
inline constexpr std::array kTakenNames = std::to_array<const char*>({
    // the generated source's own
    "CC0", "CC1", "allSamplerSlots", "glfragcoord", "glfragdepth", "in", "metal", "program_local", "result",
    "simd", "state_matrix", "texSample", "uitmp", "varying", "ShaderFunc", "as_type",
    "Attributes", "FragmentOutput", "ProgramLocalsData", "StateMatrixData", "Varyings",
    // the shading language's
    "access", "array", "constant", "depth2d", "device", "fragment", "half", "half2", "half3", "half4", "kernel", "mesh",
    "object", "patch", "ray_data", "sampler", "texture", "thread", "threadgroup", "threadgroup_imageblock", "vertex",
    "visible", "packed_float3", "packed_float4",
    "float2", "float3", "float4", "float2x2", "float3x3", "float4x4", "int2", "int3", "int4", "uint", "uint2", "uint3",
    "uint4", "uchar", "ushort", "ulong", "bool2", "bool3", "bool4", "int8_t", "int16_t", "int32_t", "uint8_t",
    "uint16_t", "uint32_t", "size_t", "ptrdiff_t", "INFINITY", "NAN", "HUGE_VALF", "MAXFLOAT",
    // C++'s
    "alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "case", "catch", "char",
    "char16_t", "char32_t", "class", "compl", "const", "const_cast", "constexpr", "continue", "decltype", "default",
    "delete", "do", "double", "dynamic_cast", "else", "enum", "explicit", "export", "extern", "false", "float", "for",
    "friend", "goto", "if", "inline", "int", "long", "mutable", "namespace", "new", "noexcept", "not", "not_eq",
    "nullptr", "operator", "or", "or_eq", "private", "protected", "public", "register", "reinterpret_cast", "return",
    "short", "signed", "sizeof", "static", "static_assert", "static_cast", "struct", "switch", "template", "this",
    "thread_local", "throw", "true", "try", "typedef", "typeid", "typename", "union", "unsigned", "using", "virtual",
    "void", "volatile", "wchar_t", "while", "xor", "xor_eq",
});

// Beginnings of names that the generated source makes up.
inline constexpr std::array kTakenBeginnings = std::to_array<const char*>({
    "a_", "array_enabled_", "samplerSlot", "texSwizzleForUnit", "texture0", "texture1", "texture2", "texture3", "texture4",
    "texture5", "texture6", "texture7", "texture8", "texture9", "ZALMETAL_", "M_", "FLT_", "HALF_", "INT_", "__",
});
// clang-format on

} // namespace ZALMetal
