#include <simd/simd.h>
#include <metal_stdlib>


#define ZALMETAL_STATEMATRIXDATA_IDX 16
#define ZALMETAL_PROGRAMLOCALDATA_IDX 17
#define ZALMETAL_SAMPLER_TABLE_CST_IDX 1000
#define ZALMETAL_TEXSWIZZLE_TABLE_CST_IDX 1100
#define ZALMETAL_MAX_PROGRAM_ENV_PARAMETERS 256

typedef struct StateMatrixData
{
  metal::float4x4 modelview;
  metal::float4x4 projection;
  metal::float4x4 mvp;
  metal::float4x4 texture[4];
  
  metal::float4x4 modelview_inv;
  metal::float4x4 projection_inv;
  metal::float4x4 mvp_inv;
  metal::float4x4 texture_inv[4];
  
  metal::float4x4 modelview_trans;
  metal::float4x4 projection_trans;
  metal::float4x4 mvp_trans;
  metal::float4x4 texture_trans[4];
  
  metal::float4x4 modelview_invtrans;
  metal::float4x4 projection_invtrans;
  metal::float4x4 mvp_invtrans;
  metal::float4x4 texture_invtrans[4];
}
StateMatrixData;

typedef struct ProgramLocalsData
{
  float4 value[ZALMETAL_MAX_PROGRAM_ENV_PARAMETERS];
}
ProgramLocalsData;

struct Varyings {
  float4 position [[position]];
  float4 color;
  float4 texcoord0;
  float4 texcoord1;
  float4 texcoord2;
  float4 texcoord3;
  float4 texcoord4;
  float4 texcoord5;
  float4 texcoord6;
  float4 texcoord7;
};

constant int samplerSlotIndexForUnit0 [[function_constant(1000)]];
constant int samplerSlotIndexForUnit1 [[function_constant(1001)]];
constant int samplerSlotIndexForUnit2 [[function_constant(1002)]];
constant int samplerSlotIndexForUnit3 [[function_constant(1003)]];
constant int samplerSlotIndexForUnit4 [[function_constant(1004)]];
constant int samplerSlotIndexForUnit5 [[function_constant(1005)]];
constant int samplerSlotIndexForUnit6 [[function_constant(1006)]];
constant int samplerSlotIndexForUnit7 [[function_constant(1007)]];
constant int samplerSlotIndexForUnit8 [[function_constant(1008)]];
constant int samplerSlotIndexForUnit9 [[function_constant(1009)]];
constant int samplerSlotIndexForUnit10 [[function_constant(1010)]];
constant int samplerSlotIndexForUnit11 [[function_constant(1011)]];
constant int samplerSlotIndexForUnit12 [[function_constant(1012)]];
constant int samplerSlotIndexForUnit13 [[function_constant(1013)]];
constant int samplerSlotIndexForUnit14 [[function_constant(1014)]];
constant int samplerSlotIndexForUnit15 [[function_constant(1015)]];
constant int samplerSlotIndexForUnit16 [[function_constant(1016)]];
constant int samplerSlotIndexForUnit17 [[function_constant(1017)]];
constant int samplerSlotIndexForUnit18 [[function_constant(1018)]];
constant int samplerSlotIndexForUnit19 [[function_constant(1019)]];
constant int samplerSlotIndexForUnit20 [[function_constant(1020)]];
constant int samplerSlotIndexForUnit21 [[function_constant(1021)]];
constant int samplerSlotIndexForUnit22 [[function_constant(1022)]];
constant int samplerSlotIndexForUnit23 [[function_constant(1023)]];
constant int samplerSlotIndexForUnit24 [[function_constant(1024)]];
constant int samplerSlotIndexForUnit25 [[function_constant(1025)]];
constant int samplerSlotIndexForUnit26 [[function_constant(1026)]];
constant int samplerSlotIndexForUnit27 [[function_constant(1027)]];
constant int samplerSlotIndexForUnit28 [[function_constant(1028)]];
constant int samplerSlotIndexForUnit29 [[function_constant(1029)]];
constant int samplerSlotIndexForUnit30 [[function_constant(1030)]];
constant int samplerSlotIndexForUnit31 [[function_constant(1031)]];
constant uint32_t texSwizzleForUnit0 [[function_constant(1100)]];
constant uint32_t texSwizzleForUnit1 [[function_constant(1101)]];
constant uint32_t texSwizzleForUnit2 [[function_constant(1102)]];
constant uint32_t texSwizzleForUnit3 [[function_constant(1103)]];
constant uint32_t texSwizzleForUnit4 [[function_constant(1104)]];
constant uint32_t texSwizzleForUnit5 [[function_constant(1105)]];
constant uint32_t texSwizzleForUnit6 [[function_constant(1106)]];
constant uint32_t texSwizzleForUnit7 [[function_constant(1107)]];
constant uint32_t texSwizzleForUnit8 [[function_constant(1108)]];
constant uint32_t texSwizzleForUnit9 [[function_constant(1109)]];
constant uint32_t texSwizzleForUnit10 [[function_constant(1110)]];
constant uint32_t texSwizzleForUnit11 [[function_constant(1111)]];
constant uint32_t texSwizzleForUnit12 [[function_constant(1112)]];
constant uint32_t texSwizzleForUnit13 [[function_constant(1113)]];
constant uint32_t texSwizzleForUnit14 [[function_constant(1114)]];
constant uint32_t texSwizzleForUnit15 [[function_constant(1115)]];
constant uint32_t texSwizzleForUnit16 [[function_constant(1116)]];
constant uint32_t texSwizzleForUnit17 [[function_constant(1117)]];
constant uint32_t texSwizzleForUnit18 [[function_constant(1118)]];
constant uint32_t texSwizzleForUnit19 [[function_constant(1119)]];
constant uint32_t texSwizzleForUnit20 [[function_constant(1120)]];
constant uint32_t texSwizzleForUnit21 [[function_constant(1121)]];
constant uint32_t texSwizzleForUnit22 [[function_constant(1122)]];
constant uint32_t texSwizzleForUnit23 [[function_constant(1123)]];
constant uint32_t texSwizzleForUnit24 [[function_constant(1124)]];
constant uint32_t texSwizzleForUnit25 [[function_constant(1125)]];
constant uint32_t texSwizzleForUnit26 [[function_constant(1126)]];
constant uint32_t texSwizzleForUnit27 [[function_constant(1127)]];
constant uint32_t texSwizzleForUnit28 [[function_constant(1128)]];
constant uint32_t texSwizzleForUnit29 [[function_constant(1129)]];
constant uint32_t texSwizzleForUnit30 [[function_constant(1130)]];
constant uint32_t texSwizzleForUnit31 [[function_constant(1131)]];

struct FragmentOutput {
  float4 color0 [[color(0)]];
};

template <typename TEX, typename COORD>
float4 texSample(TEX tex, metal::sampler s, COORD c, uint32_t texSwizzle)
{
  if (texSwizzle == 1)
  {
    return tex.sample(s, c).xxxx;
  }
  else
  {
    return tex.sample(s, c);
  }
}

fragment FragmentOutput ShaderFunc(Varyings varying [[stage_in]],
  constant StateMatrixData &state_matrix [[buffer(ZALMETAL_STATEMATRIXDATA_IDX)]],
  constant ProgramLocalsData &program_local [[buffer(ZALMETAL_PROGRAMLOCALDATA_IDX)]],
  metal::texture2d<float> texture0 [[texture(0)]] /*RECT*/,
  metal::sampler samplerSlot0 [[sampler(0)]],
  metal::sampler samplerSlot1 [[sampler(1)]],
  metal::sampler samplerSlot2 [[sampler(2)]],
  metal::sampler samplerSlot3 [[sampler(3)]],
  metal::sampler samplerSlot4 [[sampler(4)]],
  metal::sampler samplerSlot5 [[sampler(5)]],
  metal::sampler samplerSlot6 [[sampler(6)]],
  metal::sampler samplerSlot7 [[sampler(7)]],
  metal::sampler samplerSlot8 [[sampler(8)]],
  metal::sampler samplerSlot9 [[sampler(9)]],
  metal::sampler samplerSlot10 [[sampler(10)]],
  metal::sampler samplerSlot11 [[sampler(11)]],
  metal::sampler samplerSlot12 [[sampler(12)]],
  metal::sampler samplerSlot13 [[sampler(13)]],
  metal::sampler samplerSlot14 [[sampler(14)]],
  metal::sampler samplerSlot15 [[sampler(15)]]
) {
  FragmentOutput result;
  float4 glfragcoord = varying.position;
  float4 CC0;
  float4 CC1;
  metal::sampler allSamplerSlots[] = {
    samplerSlot0,
    samplerSlot1,
    samplerSlot2,
    samplerSlot3,
    samplerSlot4,
    samplerSlot5,
    samplerSlot6,
    samplerSlot7,
    samplerSlot8,
    samplerSlot9,
    samplerSlot10,
    samplerSlot11,
    samplerSlot12,
    samplerSlot13,
    samplerSlot14,
    samplerSlot15,
  };
  metal::sampler texture0Sampler = allSamplerSlots[samplerSlotIndexForUnit0];
  const uint32_t texture0Swizzle = texSwizzleForUnit0;
  //
  float4 edge = float4( 0.0001, 0, 0, 0 );
  float4 nearest;
  float4 gap;
  float4 shade;
  shade = varying.texcoord0 * float4( 4.0 );
  nearest = texSample( texture0, texture0Sampler, float2(shade.xy.x, shade.xy.y), texture0Swizzle );
  nearest.x = ( nearest.x * float4( 0.1 ) ).x;
  gap.x = ( glfragcoord.zzzz - nearest.xxxx ).x;
  gap.x = ( gap.xxxx - edge.xxxx ).x;
  if( gap.x < 0.0 ) metal::discard_fragment();
  shade.x = float4( 1.0 / glfragcoord.w ).x;
  shade.x = metal::clamp( shade.xxxx * glfragcoord.zzzz, 0.0, 1.0 ).x;
  result.color0.xyz = metal::mix( program_local.value[2], varying.color, shade.xxxx ).xyz;
  result.color0.w = ( float4( 1.0 ) - shade.x ).w;
  //
  return result;
}
