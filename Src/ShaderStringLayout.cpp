// SPDX-License-Identifier: Apache-2.0
// The source around a translated body. Its text is the contract with the draw path: buffer slots, texture and sampler
// indices, function constants.
#include "ShaderTranslation.h"

namespace ZALMetal
{
namespace
{

constexpr unsigned kUnits = 32;
constexpr unsigned kSamplerSlots = 16;
constexpr unsigned kAttributes = 16;
constexpr unsigned kColorOutputs = 8;
constexpr unsigned kSamplerSlotConstant = 1000; // function constants of the units' sampler slots begin here
constexpr unsigned kSwizzleConstant = 1100;     // and those of their swizzle modes here

constexpr std::string_view kIncludes = "#include <simd/simd.h>\n"
                                       "#include <metal_stdlib>\n";

constexpr std::string_view kPrelude = "#define ZALMETAL_STATEMATRIXDATA_IDX 16\n"
                                      "#define ZALMETAL_PROGRAMLOCALDATA_IDX 17\n"
                                      "#define ZALMETAL_SAMPLER_TABLE_CST_IDX 1000\n"
                                      "#define ZALMETAL_TEXSWIZZLE_TABLE_CST_IDX 1100\n"
                                      "#define ZALMETAL_MAX_PROGRAM_ENV_PARAMETERS 256\n"
                                      "\n"
                                      "typedef struct StateMatrixData\n"
                                      "{\n"
                                      "  metal::float4x4 modelview;\n"
                                      "  metal::float4x4 projection;\n"
                                      "  metal::float4x4 mvp;\n"
                                      "  metal::float4x4 texture[4];\n"
                                      "  \n"
                                      "  metal::float4x4 modelview_inv;\n"
                                      "  metal::float4x4 projection_inv;\n"
                                      "  metal::float4x4 mvp_inv;\n"
                                      "  metal::float4x4 texture_inv[4];\n"
                                      "  \n"
                                      "  metal::float4x4 modelview_trans;\n"
                                      "  metal::float4x4 projection_trans;\n"
                                      "  metal::float4x4 mvp_trans;\n"
                                      "  metal::float4x4 texture_trans[4];\n"
                                      "  \n"
                                      "  metal::float4x4 modelview_invtrans;\n"
                                      "  metal::float4x4 projection_invtrans;\n"
                                      "  metal::float4x4 mvp_invtrans;\n"
                                      "  metal::float4x4 texture_invtrans[4];\n"
                                      "}\n"
                                      "StateMatrixData;\n"
                                      "\n"
                                      "typedef struct ProgramLocalsData\n"
                                      "{\n"
                                      "  float4 value[ZALMETAL_MAX_PROGRAM_ENV_PARAMETERS];\n"
                                      "}\n"
                                      "ProgramLocalsData;\n"
                                      "\n"
                                      "struct Varyings {\n"
                                      "  float4 position [[position]];\n"
                                      "  float4 color;\n"
                                      "  float4 texcoord0;\n"
                                      "  float4 texcoord1;\n"
                                      "  float4 texcoord2;\n"
                                      "  float4 texcoord3;\n"
                                      "  float4 texcoord4;\n"
                                      "  float4 texcoord5;\n"
                                      "  float4 texcoord6;\n"
                                      "  float4 texcoord7;\n"
                                      "};\n"
                                      "\n";

constexpr std::string_view kSampleFunction =
    "template <typename TEX, typename COORD>\n"
    "float4 texSample(TEX tex, metal::sampler s, COORD c, uint32_t texSwizzle)\n"
    "{\n"
    "  if (texSwizzle == 1)\n"
    "  {\n"
    "    return tex.sample(s, c).xxxx;\n"
    "  }\n"
    "  else\n"
    "  {\n"
    "    return tex.sample(s, c);\n"
    "  }\n"
    "}\n"
    "\n";

constexpr std::string_view kVertexSignature = "vertex Varyings ShaderFunc(Attributes in [[stage_in]]";
constexpr std::string_view kFragmentSignature = "fragment FragmentOutput ShaderFunc(Varyings varying [[stage_in]]";
constexpr std::string_view kBufferParameters =
    ",\n  constant StateMatrixData &state_matrix [[buffer(ZALMETAL_STATEMATRIXDATA_IDX)]]"
    ",\n  constant ProgramLocalsData &program_local [[buffer(ZALMETAL_PROGRAMLOCALDATA_IDX)]]";

struct TextureParameterRow
{
    const char* target;
    const char* parameter;
    uint32_t glTarget;
};

// clang-format off
constexpr std::array kTextureParameterRows = std::to_array<TextureParameterRow>({
    {"2D",   ",\n  metal::texture2d<float> %1 [[texture(%2)]]",          kTarget2D},
    {"3D",   ",\n  metal::texture3d<float> %1 [[texture(%2)]]",          kTarget3D},
    {"RECT", ",\n  metal::texture2d<float> %1 [[texture(%2)]] /*RECT*/", kTargetRectangle},
    {"CUBE", ",\n  metal::texturecube<float> %1 [[texture(%2)]]",        kTargetCubeMap},
});
// clang-format on

bool HasBit(uint32_t mask, unsigned bit)
{
    return (mask >> bit & 1) != 0;
}

void AddNumbered(TextBuffer& out, std::string_view pattern, unsigned first, unsigned second)
{
    out.AddFilled(pattern, {NumberText(first), NumberText(second)});
}

} // namespace

void ShaderTranslation::WriteSource(TextBuffer& out)
{
    out.Add(kIncludes);
    WriteNamedParameters(out);
    out.Add(kPrelude);
    for (unsigned unit = 0; unit < kUnits; ++unit)
        AddNumbered(out, "constant int samplerSlotIndexForUnit%1 [[function_constant(%2)]];\n", unit,
                    kSamplerSlotConstant + unit);
    for (unsigned unit = 0; unit < kUnits; ++unit)
        AddNumbered(out, "constant uint32_t texSwizzleForUnit%1 [[function_constant(%2)]];\n", unit,
                    kSwizzleConstant + unit);
    out.Add("\n");

    if (kind == VERTEX_PROGRAM)
        WriteAttributes(out);
    else
        WriteColorOutputs(out);

    out.Add(kSampleFunction);
    WriteSignature(out);
    WriteLocals(out);
    FillReport(out);
    WriteBody(out);

    // Kept on purpose: [depth-from-z] the depth is the third component of the program's depth result.
    if (depthWritten) out.Add("  result.depth = glfragdepth.z;\n");
    out.Add("  return result;\n}\n");
}

void ShaderTranslation::WriteNamedParameters(TextBuffer& out) const
{
    constexpr int kMatrixType = 4;

    out.Add("\n");
    auto& parameters = program.namedParameters;
    for (auto* entry = parameters.begin(); entry; entry = parameters.next())
        out.AddFilled(entry->value.type == kMatrixType ? "uniform mat4 %1;\n" : "uniform float4 %1;\n",
                      {View(entry->key)});
    out.Add("\n");
}

// ---- The stage's input and output ------------------------------------------------------------------------------

void ShaderTranslation::WriteAttributes(TextBuffer& out) const
{
    for (unsigned i = 0; i < kAttributes; ++i)
        if (HasBit(bindings.attributeMask, i))
            out.AddFilled("constant bool array_enabled_%1 [[function_constant(%2)]];\n",
                          {ShaderBindings::GetAttributeName(static_cast<int>(i)), NumberText(i)});

    out.Add("\nstruct Attributes {\n");
    for (unsigned i = 0; i < kAttributes; ++i)
        if (HasBit(bindings.attributeMask, i))
            out.AddFilled("  float4 %1 [[attribute(%2), function_constant(array_enabled_%1)]];\n",
                          {ShaderBindings::GetAttributeName(static_cast<int>(i)), NumberText(i)});
    out.Add("};\n\n");
}

void ShaderTranslation::WriteColorOutputs(TextBuffer& out) const
{
    out.Add("struct FragmentOutput {\n");
    for (unsigned n = 0; n < kColorOutputs; ++n)
        if (HasBit(bindings.colorMask, n)) out.AddFilled("  float4 color%1 [[color(%1)]];\n", {NumberText(n)});
    if (depthWritten) out.Add("  float depth [[depth(any)]];\n");
    out.Add("};\n\n");
}

// ---- The entry function ----------------------------------------------------------------------------------------

void ShaderTranslation::WriteSignature(TextBuffer& out)
{
    out.Add(kind == VERTEX_PROGRAM ? kVertexSignature : kFragmentSignature);
    out.Add(kBufferParameters);
    for (auto* texture = textures.begin(); texture; texture = textures.next())
        for (const TextureParameterRow& row : kTextureParameterRows) {
            if (View(texture->value.target) != row.target) continue;

            const unsigned unit = static_cast<unsigned>(texture->value.unit);
            out.AddFilled(row.parameter, {View(texture->key), NumberText(unit)});
            bindings.textureUnitMask |= uint32_t{1} << unit;
            bindings.textureTargets[unit] = row.glTarget;
        }
    for (unsigned slot = 0; slot < kSamplerSlots; ++slot)
        AddNumbered(out, ",\n  metal::sampler samplerSlot%1 [[sampler(%2)]]", slot, slot);
    out.Add("\n) {\n");
}

void ShaderTranslation::WriteLocals(TextBuffer& out)
{
    if (kind == VERTEX_PROGRAM) {
        out.Add("  Varyings result;\n");

        // Kept on purpose: [disabled-attribute-zero] a disabled array reads as 0 in all four components, not as the
        // current attribute value.
        for (unsigned i = 0; i < kAttributes; ++i)
            if (HasBit(bindings.attributeMask, i))
                out.AddFilled("  float4 a_%1 = array_enabled_%1 ? in.%1 : float4(0.0);\n",
                              {ShaderBindings::GetAttributeName(static_cast<int>(i))});
    } else
        out.Add("  FragmentOutput result;\n  float4 glfragcoord = varying.position;\n");
    if (depthWritten) out.Add("  float4 glfragdepth;\n");
    out.Add("  float4 CC0;\n  float4 CC1;\n");

    out.Add("  metal::sampler allSamplerSlots[] = {\n");
    for (unsigned slot = 0; slot < kSamplerSlots; ++slot)
        out.AddFilled("    samplerSlot%1,\n", {NumberText(slot)});
    out.Add("  };\n");

    for (auto* texture = textures.begin(); texture; texture = textures.next())
        out.AddFilled("  metal::sampler %1Sampler = allSamplerSlots[samplerSlotIndexForUnit%2];\n"
                      "  const uint32_t %1Swizzle = texSwizzleForUnit%2;\n",
                      {View(texture->key), NumberText(static_cast<unsigned>(texture->value.unit))});
}

void ShaderTranslation::WriteBody(TextBuffer& out)
{
    out.Add("  //\n");
    out.Add(body.All().substr(0, scratchStart));
    // Kept on purpose: [scratch-blanks] two blanks, however far the statements around it are indented.
    if (scratchDeclared) out.Add("  uint4 uitmp;\n");
    out.Add(body.All().substr(scratchStart));
    out.Add("  //\n");
}

// Where the body begins in the source, and which line of the program each of its lines comes from.
void ShaderTranslation::FillReport(const TextBuffer& out) const
{
    if (!report) return;

    constexpr int kFirstLineAfterMark = 2;
    report->firstBodyLine = kFirstLineAfterMark;
    for (char c : out.All())
        if (c == '\n') ++report->firstBodyLine;

    report->bodySource.clear();
    for (size_t i = 0; i <= lines.size(); ++i) {
        if (scratchDeclared && i == scratchLine) report->bodySource.push_back(scratchSource);
        if (i < lines.size()) report->bodySource.push_back(lines[i]);
    }
}

} // namespace ZALMetal
