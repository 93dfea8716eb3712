// SPDX-License-Identifier: Apache-2.0
// Random assembly programs in the part of the dialect that every GL with the ARB extensions reads, kept as statements,
// so that they can be printed, computed and rewritten.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace differential
{

enum class Kind : uint8_t
{
    Vertex,
    Fragment,
};

enum class Opcode : uint8_t
{
    Abs,
    Add,
    Cmp,
    Cos,
    Dp3,
    Dp4,
    Ex2,
    Flr,
    Frc,
    Kil,
    Lg2,
    Lrp,
    Mad,
    Max,
    Min,
    Mov,
    Mul,
    Pow,
    Rcp,
    Rsq,
    Sge,
    Sin,
    Slt,
    Sub,
    Xpd
};

struct OpcodeFacts
{
    Opcode opcode;
    const char* name;
    int sources;
    bool scalar;       // sources of one component, one result in all components of the mask
    bool fragmentOnly; // not in vertex programs
};

const OpcodeFacts& factsOf(Opcode opcode);

enum class File : uint8_t
{
    Temporary,
    Input,    // vertex attributes 8 to 11, or the texture coordinates 0 to 3
    Local,    // program.local
    Constant, // a declared vector of constants
    Number,   // written out in the statement
};

struct Source
{
    File file = File::Temporary;
    uint8_t index = 0;
    std::array<uint8_t, 4> swizzle = {0, 1, 2, 3};
    bool negative = false;
    float number = 0;
};

struct Statement
{
    Opcode opcode = Opcode::Mov;
    bool saturates = false;
    uint8_t destination = 0; // a temporary
    uint8_t mask = 15;       // bit 0 is x
    std::array<Source, 3> sources;
};

struct RandomProgram
{
    static constexpr int Temporaries = 6, Inputs = 4, Locals = 4, Results = 4;

    Kind kind = Kind::Fragment;
    std::array<std::array<float, 4>, 2> constants{};
    std::vector<Statement> body; // results are what temporaries 0 to 3 hold at the end
};

/// 5 to 60 statements that define every temporary before it is read.
RandomProgram randomProgram(Kind kind, std::mt19937& random);

/// The statements, each on a line, without header, declarations, results and END. Temporaries are called name0, name1 …
std::string textOf(const RandomProgram& program, const Statement& statement, const char* name = "R");
std::string declarationsOf(const RandomProgram& program, const char* name = "R");

} // namespace differential
