// SPDX-License-Identifier: Apache-2.0
// The opcodes of an assembly program and the Metal statements that stand for them, in the order in which a statement's
// opcode word is compared. In a template %1 is the destination with its mask, %2 to %4 are the sources, and the next
// number is the mask suffix.
#pragma once

#include <array>

namespace ZALMetal
{

// How a row's operands are read and which of its forms applies.
enum class OpcodeKind
{
    Infix,      // A without a mask suffix, B with one; saturated always B
    Move,       // A when destination and source are single components or numbers
    MoveSetsCC, // the same, then the destination is copied to the condition register
    Scalars,    // A when destination and sources are all single components or numbers
    Reducing,   // A when the destination is a number, which a sensible program never has
    Vector,     // always B
    FloorToInt, // always B; a single-letter source stays as it stands when there is no suffix
    Cross,      // always B, three components
    AsWritten,  // always B, sources not narrowed, no suffix
    Kill,       // A for a single component or a number, B otherwise; the operand is a source
    Sample,     // see kSampleRows
    Pack,       // see kPackSourceLine
    Unpack,     // see kUnpackSourceLine
    If,         // a condition in place of operands
    Else,
    EndIf,
    Repeat, // the operand is a source
    EndRepeat,
    Jump, // no operands
};

struct OpcodeRow
{
    const char* name;
    OpcodeKind kind;
    int sources;    // source operands that a statement must have
    int components; // width to which every source is narrowed, 0 for as written
    const char* saturatedA;
    const char* plainA;
    const char* saturatedB;
    const char* plainB;
};

// clang-format off
inline constexpr std::array kOpcodeRows = std::to_array<OpcodeRow>({
    {"ABS",     OpcodeKind::Vector,     1, 4,
           nullptr, nullptr, "%1 = metal::clamp( metal::abs( %2 ), 0.0, 1.0 )%3;", "%1 = metal::abs( %2 )%3;"},
    {"ADD",     OpcodeKind::Infix,      2, 4,
           nullptr, "%1 = %2 + %3;", "%1 = metal::clamp( %2 + %3, 0.0, 1.0 )%4;", "%1 = ( %2 + %3 )%4;"},
    {"AND.U",   OpcodeKind::AsWritten,  2, 0, nullptr, nullptr, nullptr, "%1 = %2 & uint( %3 );"},
    {"BRK",     OpcodeKind::Jump,       0, 0, nullptr, "break;", nullptr, nullptr},
    // Kept on purpose: [cmp-newline] the scalar forms end in a blank and their own newline, so an empty line follows.
    {"CMP",     OpcodeKind::Scalars,    3, 4,
           "%1 = metal::clamp( %2 < 0.0 ? %3 : %4, 0.0, 1.0 ); \n", "%1 = %2 < 0.0 ? %3 : %4; \n",
           "%1 = metal::clamp( metal::mix( %4, %3, float4( %2 < float4( 0.0 ) ) ), 0.0, 1.0 )%5;",
           "%1 = metal::mix( %4, %3, float4( %2 < float4( 0.0 ) ) )%5;"},
    {"CONT",    OpcodeKind::Jump,       0, 0, nullptr, "continue;", nullptr, nullptr},
    {"COS",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::cos( %2 ), 0.0, 1.0 );", "%1 = metal::cos( %2 );",
           "%1 = float4( metal::clamp( metal::cos( %2 ), 0.0, 1.0 ) )%3;", "%1 = float4( metal::cos( %2 ) )%3;"},
    {"DP2",     OpcodeKind::Reducing,   2, 2,
           "%1 = metal::clamp( metal::dot( %2, %3 ), 0.0, 1.0 );", "%1 = metal::dot( %2, %3 );",
           "%1 = float4( metal::clamp( metal::dot( %2, %3 ), 0.0, 1.0 ) )%4;",
           "%1 = float4( metal::dot( %2, %3 ) )%4;"},
    {"DP3",     OpcodeKind::Reducing,   2, 3,
           "%1 = metal::clamp( metal::dot( %2, %3 ), 0.0, 1.0 );", "%1 = metal::dot( %2, %3 );",
           "%1 = float4( metal::clamp( metal::dot( %2, %3 ), 0.0, 1.0 ) )%4;",
           "%1 = float4( metal::dot( %2, %3 ) )%4;"},
    {"DP4",     OpcodeKind::Reducing,   2, 4,
           "%1 = metal::clamp( metal::dot( %2, %3 ), 0.0, 1.0 );", "%1 = metal::dot( %2, %3 );",
           "%1 = float4( metal::clamp( metal::dot( %2, %3 ), 0.0, 1.0 ) )%4;",
           "%1 = float4( metal::dot( %2, %3 ) )%4;"},
    {"ELSE",    OpcodeKind::Else,       0, 0, nullptr, "}", nullptr, nullptr},
    {"ENDIF",   OpcodeKind::EndIf,      0, 0, nullptr, "}", nullptr, nullptr},
    {"ENDREP",  OpcodeKind::EndRepeat,  0, 0, nullptr, "}", nullptr, nullptr},
    {"EX2",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::exp2( %2 ), 0.0, 1.0 );", "%1 = metal::exp2( %2 );",
           "%1 = float4( metal::clamp( metal::exp2( %2 ), 0.0, 1.0 ) )%3;", "%1 = float4( metal::exp2( %2 ) )%3;"},
    // Kept on purpose: [exp-is-ex2] all results of EXP are the full exponential, where ARB gives its parts in x, y and z.
    {"EXP",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::exp2( %2 ), 0.0, 1.0 );", "%1 = metal::exp2( %2 );",
           "%1 = float4( metal::clamp( metal::exp2( %2 ), 0.0, 1.0 ) )%3;", "%1 = float4( metal::exp2( %2 ) )%3;"},
    {"FLR",     OpcodeKind::Vector,     1, 4,
           nullptr, nullptr, "%1 = metal::clamp( metal::floor( %2 ), 0.0, 1.0 )%3;", "%1 = metal::floor( %2 )%3;"},
    // Kept on purpose: [flr-u-scalar] the conversion is to one uint, so a source of four components does not compile.
    {"FLR.U",   OpcodeKind::FloorToInt, 1, 4,
           nullptr, nullptr, "%1 = uint( metal::clamp( metal::floor( %2 ), 0.0, 1.0 ) )%3;",
           "%1 = uint( metal::floor( %2 ) )%3;"},
    {"FRC",     OpcodeKind::Vector,     1, 4,
           nullptr, nullptr, "%1 = metal::clamp( metal::fract( %2 ), 0.0, 1.0 )%3;", "%1 = metal::fract( %2 )%3;"},
    {"I2F.U",   OpcodeKind::AsWritten,  1, 0, nullptr, nullptr, nullptr, "%1 = float( %2 );"},
    {"IF",      OpcodeKind::If,         1, 0, nullptr, "if( CC0%1 %2 0.0 )", nullptr, nullptr},
    {"KIL",     OpcodeKind::Kill,       1, 4,
           nullptr, "if( %1 < 0.0 ) metal::discard_fragment();", nullptr,
           "if( metal::any( %1 < float4( 0.0 ) ) ) metal::discard_fragment();"},
    {"LG2",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::log2( %2 ), 0.0, 1.0 );", "%1 = metal::log2( %2 );",
           "%1 = float4( metal::clamp( metal::log2( %2 ), 0.0, 1.0 ) )%3;", "%1 = float4( metal::log2( %2 ) )%3;"},
    // Kept on purpose: [lg2-twice] LG2 stands here a second time, where LOG would be expected; LOG is not an opcode.
    {"LG2",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::log2( %2 ), 0.0, 1.0 );", "%1 = metal::log2( %2 );",
           "%1 = float4( metal::clamp( metal::log2( %2 ), 0.0, 1.0 ) )%3;", "%1 = float4( metal::log2( %2 ) )%3;"},
    {"LRP",     OpcodeKind::Vector,     3, 4,
           nullptr, nullptr, "%1 = metal::clamp( metal::mix( %4, %3, %2 ), 0.0, 1.0 )%5;",
           "%1 = metal::mix( %4, %3, %2 )%5;"},
    {"MAD",     OpcodeKind::Infix,      3, 4,
           nullptr, "%1 = %2 * %3 + %4;", "%1 = metal::clamp( %2 * %3 + %4, 0.0, 1.0 )%5;",
           "%1 = ( %2 * %3 + %4 )%5;"},
    {"MAX",     OpcodeKind::Vector,     2, 4,
           nullptr, nullptr, "%1 = metal::clamp( metal::max( %2, %3 ), 0.0, 1.0 )%4;",
           "%1 = metal::max( %2, %3 )%4;"},
    {"MIN",     OpcodeKind::Vector,     2, 4,
           nullptr, nullptr, "%1 = metal::clamp( metal::min( %2, %3 ), 0.0, 1.0 )%4;",
           "%1 = metal::min( %2, %3 )%4;"},
    {"MOV",     OpcodeKind::Move,       1, 0,
           "%1 = metal::clamp( %2, 0.0, 1.0 );", "%1 = %2;", "%1 = metal::clamp( %2, 0.0, 1.0 )%3;", "%1 = %2%3;"},
    {"MOVC",    OpcodeKind::MoveSetsCC, 1, 4,
           "%1 = metal::clamp( %2, 0.0, 1.0 );", "%1 = %2;", "%1 = metal::clamp( %2, 0.0, 1.0 )%3;", "%1 = %2%3;"},
    {"MUL",     OpcodeKind::Infix,      2, 4,
           nullptr, "%1 = %2 * %3;", "%1 = metal::clamp( %2 * %3, 0.0, 1.0 )%4;", "%1 = ( %2 * %3 )%4;"},
    {"PK4UB.U", OpcodeKind::Pack,       1, 0, nullptr, nullptr, nullptr, nullptr},
    {"POW",     OpcodeKind::Reducing,   2, 1,
           "%1 = metal::clamp( metal::pow( %2, %3 ), 0.0, 1.0 );", "%1 = metal::pow( %2, %3 );",
           "%1 = float4( metal::clamp( metal::pow( %2, %3 ), 0.0, 1.0 ) )%4;",
           "%1 = float4( metal::pow( %2, %3 ) )%4;"},
    {"RCP",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( 1.0 / %2, 0.0, 1.0 );", "%1 = 1.0 / %2;",
           "%1 = float4( metal::clamp( 1.0 / %2, 0.0, 1.0 ) )%3;", "%1 = float4( 1.0 / %2 )%3;"},
    {"REP",     OpcodeKind::Repeat,     1, 1, nullptr, "for( int %1 = 0; %1 < %2; ++%1 )", nullptr, nullptr},
    {"RSQ",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::rsqrt( %2 ), 0.0, 1.0 );", "%1 = metal::rsqrt( %2 );",
           "%1 = float4( metal::clamp( metal::rsqrt( %2 ), 0.0, 1.0 ) )%3;",
           "%1 = float4( metal::rsqrt( %2 ) )%3;"},
    {"SEQ",     OpcodeKind::Scalars,    2, 4,
           nullptr, "%1 = float( %2 == %3 );", nullptr, "%1 = float4( %2 == %3 )%4;"},
    {"SGE",     OpcodeKind::Scalars,    2, 4,
           nullptr, "%1 = float( %2 >= %3 );", nullptr, "%1 = float4( %2 >= %3 )%4;"},
    {"SGT",     OpcodeKind::Scalars,    2, 4,
           nullptr, "%1 = float( %2 > %3 );", nullptr, "%1 = float4( %2 > %3 )%4;"},
    {"SHR.U",   OpcodeKind::AsWritten,  2, 0, nullptr, nullptr, nullptr, "%1 = %2 >> uint( %3 );"},
    // Kept on purpose: [sne-parenthesis] the vector form has one closing parenthesis too many and does not compile.
    {"SNE",     OpcodeKind::Scalars,    2, 4,
           nullptr, "%1 = float( %2 != %3 );", nullptr, "%1 = float4( %2 != %3 ) )%4;"},
    {"SIN",     OpcodeKind::Reducing,   1, 1,
           "%1 = metal::clamp( metal::sin( %2 ), 0.0, 1.0 );", "%1 = metal::sin( %2 );",
           "%1 = float4( metal::clamp( metal::sin( %2 ), 0.0, 1.0 ) )%3;", "%1 = float4( metal::sin( %2 ) )%3;"},
    {"SLT",     OpcodeKind::Scalars,    2, 4,
           nullptr, "%1 = float( %2 < %3 );", nullptr, "%1 = float4( %2 < %3 )%4;"},
    {"SUB",     OpcodeKind::Infix,      2, 4,
           nullptr, "%1 = %2 - %3;", "%1 = metal::clamp( %2 - %3, 0.0, 1.0 )%4;", "%1 = ( %2 - %3 )%4;"},
    {"TEX",     OpcodeKind::Sample,     3, 0, nullptr, nullptr, nullptr, nullptr},
    {"UP4UB",   OpcodeKind::Unpack,     1, 0, nullptr, nullptr, nullptr, nullptr},
    {"XPD",     OpcodeKind::Cross,      2, 3,
           nullptr, nullptr, "%1 = metal::clamp( metal::cross( %2, %3 ), 0.0, 1.0 )%4;",
           "%1 = metal::cross( %2, %3 )%4;"},
});

static_assert(kOpcodeRows.size() == 46); // 45 opcodes, one of them twice

// Texture sampling by target word: %2 the coordinate, %3 the texture, %4 its sampler, %5 the mask suffix, %6 the
// texture's swizzle mode.
struct SampleRow
{
    const char* target;
    int components; // of the coordinate
    const char* saturated;
    const char* plain;
};

// Kept on purpose: [sample-spacing] the blanks around the arguments differ from row to row.
inline constexpr std::array kSampleRows = std::to_array<SampleRow>({
    {"2D",   2, "%1 = metal::clamp( texSample(%3, %4, %2, %6), 0.0, 1.0 )%5;",
                "%1 = texSample( %3, %4, %2, %6 )%5;"},
    {"3D",   3, "%1 = metal::clamp( texSample(%3, %4, %2, %6 ), 0.0, 1.0 )%5;",
                "%1 = texSample( %3,  %4, %2, %6 )%5;"},
    {"RECT", 2, "%1 = metal::clamp( texSample(%3, %4, float2(%2.x, %2.y), %6 ), 0.0, 1.0 )%5;",
                "%1 = texSample( %3, %4, float2(%2.x, %2.y), %6 )%5;"},
    {"CUBE", 3, "%1 = metal::clamp( texSample( %3, %4, %2, %6 ), 0.0, 1.0 )%5;",
                "%1 = texSample( %3, %4, %2, %6 )%5;"},
});

inline constexpr const char* kPackSourceLine = "uitmp = uint4( 255.0 * metal::clamp( %1, 0.0, 1.0 ) );";
inline constexpr const char* kPackResultLine =
    "%1 = ( uitmp.x ) + ( uitmp.y << 8 ) + ( uitmp.z << 16 ) + ( uitmp.w << 24 );";

inline constexpr const char* kUnpackSourceLine = "uitmp.x = as_type<uint>( %1 );";
inline constexpr std::array kUnpackResultLines = std::to_array<const char*>({
    "%1.x = float( ( uitmp.x >> 0 )  & uint( 0xFF ) ) / 255.0;",
    "%1.y = float( ( uitmp.x >> 8 )  & uint( 0xFF ) ) / 255.0;",
    "%1.z = float( ( uitmp.x >> 16 ) & uint( 0xFF ) ) / 255.0;",
    "%1.w = float( ( uitmp.x >> 24 ) & uint( 0xFF ) ) / 255.0;",
});

// The conditions of IF, in the order in which they are compared.
struct ConditionRow
{
    const char* name;
    const char* comparison;
};

inline constexpr std::array kConditionRows = std::to_array<ConditionRow>({
    {"EQ", "=="}, {"GE", ">="}, {"GT", ">"}, {"LE", "<="}, {"LT", "<"}, {"NE", "!="},
});
// clang-format on

// Opcode words that produce nothing.
inline constexpr std::array kDroppedWords =
    std::to_array<const char*>({"!!ARBfp1.0", "!!ARBvp1.0", "!!NVvp4.0", "!!NVfp4.0", "OPTION", "END"});

} // namespace ZALMetal
