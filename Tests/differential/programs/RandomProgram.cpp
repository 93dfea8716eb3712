// SPDX-License-Identifier: Apache-2.0
#include "differential/programs/RandomProgram.h"

#include <algorithm>
#include <cstdio>

namespace differential
{
namespace
{

// clang-format off
constexpr OpcodeFacts Facts[] = {
    {Opcode::Abs, "ABS", 1, false, false}, {Opcode::Add, "ADD", 2, false, false}, {Opcode::Cmp, "CMP", 3, false, true},  {Opcode::Cos, "COS", 1, true,  true},
    {Opcode::Dp3, "DP3", 2, false, false}, {Opcode::Dp4, "DP4", 2, false, false}, {Opcode::Ex2, "EX2", 1, true,  false}, {Opcode::Flr, "FLR", 1, false, false},
    {Opcode::Frc, "FRC", 1, false, false}, {Opcode::Kil, "KIL", 1, false, true},  {Opcode::Lg2, "LG2", 1, true,  false}, {Opcode::Lrp, "LRP", 3, false, true},
    {Opcode::Mad, "MAD", 3, false, false}, {Opcode::Max, "MAX", 2, false, false}, {Opcode::Min, "MIN", 2, false, false}, {Opcode::Mov, "MOV", 1, false, false},
    {Opcode::Mul, "MUL", 2, false, false}, {Opcode::Pow, "POW", 2, true,  false}, {Opcode::Rcp, "RCP", 1, true,  false}, {Opcode::Rsq, "RSQ", 1, true,  false},
    {Opcode::Sge, "SGE", 2, false, false}, {Opcode::Sin, "SIN", 1, true,  true},  {Opcode::Slt, "SLT", 2, false, false}, {Opcode::Sub, "SUB", 2, false, false},
    {Opcode::Xpd, "XPD", 2, false, false},
};
// clang-format on

constexpr const char* Letters = "xyzw";

/// What is drawn more often stands more often.
constexpr Opcode Choices[] = {Opcode::Abs, Opcode::Add, Opcode::Add, Opcode::Cmp, Opcode::Cos, Opcode::Dp3,
                              Opcode::Dp4, Opcode::Ex2, Opcode::Flr, Opcode::Frc, Opcode::Frc, Opcode::Lg2,
                              Opcode::Lrp, Opcode::Lrp, Opcode::Mad, Opcode::Mad, Opcode::Max, Opcode::Min,
                              Opcode::Mov, Opcode::Mul, Opcode::Mul, Opcode::Pow, Opcode::Rcp, Opcode::Rsq,
                              Opcode::Sge, Opcode::Sin, Opcode::Slt, Opcode::Sub, Opcode::Xpd};

class Generator
{
public:
    Generator(Kind kind, std::mt19937& random) : random_(random) { program_.kind = kind; }

    RandomProgram go()
    {
        for (auto& constant : program_.constants)
            for (float& value : constant)
                value = between(-2, 2);
        size_t wanted = 5 + random_() % 56;
        for (uint8_t i = 0; i < RandomProgram::Temporaries; ++i)
            define(i);
        wanted = std::max(wanted, program_.body.size());
        while (program_.body.size() < wanted)
            step();
        return program_;
    }

private:
    float between(float low, float high) { return low + (high - low) * static_cast<float>(random_() % 513) / 512; }
    bool chance(unsigned one) { return random_() % one == 0; }

    /// A temporary's first value. Only as many as the shortest program has statements for.
    void define(uint8_t temporary)
    {
        Statement s;
        s.opcode = chance(3) ? Opcode::Mul : Opcode::Mov;
        s.destination = temporary;
        for (Source& source : s.sources)
            source = {
                chance(3) ? File::Local : File::Input, static_cast<uint8_t>(random_() % 4), {0, 1, 2, 3}, false, 0};
        program_.body.push_back(s);
    }

    Source source(bool scalar, bool mayBeNumber)
    {
        Source s;
        unsigned file = random_() % 12;
        s.file = file < 7      ? File::Temporary
                 : file < 9    ? File::Input
                 : file < 10   ? File::Local
                 : file < 11   ? File::Constant
                 : mayBeNumber ? File::Number
                               : File::Temporary;
        s.index = static_cast<uint8_t>(random_() % (s.file == File::Temporary  ? RandomProgram::Temporaries
                                                    : s.file == File::Constant ? 2
                                                                               : 4));
        s.negative = chance(4);
        s.number = std::array{0.5f, 2.0f, 0.25f, 1.0f, 3.0f, 0.125f}[random_() % 6];
        bool one = scalar || chance(4), mixed = chance(2);
        auto letter = static_cast<uint8_t>(random_() % 4);
        for (uint8_t i = 0; i < 4; ++i)
            s.swizzle[i] = one ? letter : mixed ? static_cast<uint8_t>(random_() % 4) : i;
        return s;
    }

    void step()
    {
        const OpcodeFacts& facts = factsOf(Choices[random_() % std::size(Choices)]);
        bool fragment = program_.kind == Kind::Fragment;
        if (facts.fragmentOnly && !fragment) return;
        Statement s;
        s.opcode = facts.opcode;
        s.saturates = fragment && chance(6) && facts.opcode != Opcode::Sge && facts.opcode != Opcode::Slt;
        s.destination = static_cast<uint8_t>(random_() % RandomProgram::Temporaries);
        s.mask = chance(2) ? 15 : static_cast<uint8_t>(1 + random_() % 15);
        if (facts.opcode == Opcode::Xpd) s.mask = 7; // an XPD without this mask is kept behaviour
        bool numbers = true;
        for (int i = 0; i < facts.sources; ++i) {
            s.sources[static_cast<size_t>(i)] = source(facts.scalar, numbers && !facts.scalar && facts.sources > 1);
            numbers = numbers && s.sources[static_cast<size_t>(i)].file != File::Number;
        }
        if (needsPositive(facts.opcode)) guard(s.sources[0]);
        program_.body.push_back(s);
        if (fragment && chance(60)) kill();
    }

    static bool needsPositive(Opcode opcode)
    {
        return opcode == Opcode::Lg2 || opcode == Opcode::Pow || opcode == Opcode::Rcp || opcode == Opcode::Rsq;
    }

    /// Makes the source a positive number, through a temporary.
    void guard(Source& source)
    {
        Statement absolute;
        absolute.opcode = Opcode::Abs;
        absolute.destination = static_cast<uint8_t>(random_() % RandomProgram::Temporaries);
        auto letter = static_cast<uint8_t>(random_() % 4);
        absolute.mask = static_cast<uint8_t>(1 << letter);
        absolute.sources[0] = source;
        if (source.file == File::Number)
            absolute.sources[0] = {File::Temporary, 0, {letter, letter, letter, letter}, false, 0};
        program_.body.push_back(absolute);
        Statement raised = absolute;
        raised.opcode = chance(2) ? Opcode::Max : Opcode::Add;
        raised.sources[0] = {File::Temporary, absolute.destination, {letter, letter, letter, letter}, false, 0};
        raised.sources[1] = {File::Number, 0, {0, 1, 2, 3}, false, 0.125f};
        program_.body.push_back(raised);
        source = raised.sources[0];
    }

    /// Most pixels stay: few values of the last input are below zero.
    void kill()
    {
        Statement s;
        s.opcode = Opcode::Kil;
        s.mask = 0;
        s.sources[0] = source(chance(2), false);
        s.sources[0].file = File::Input;
        s.sources[0].index = RandomProgram::Inputs - 1;
        s.sources[0].negative = false;
        program_.body.push_back(s);
    }

    std::mt19937& random_;
    RandomProgram program_;
};

std::string numberText(float value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

std::string sourceText(const RandomProgram& program, const Source& s, bool scalar, const char* name)
{
    std::string index = std::to_string(s.index), text = s.negative ? "-" : "";
    switch (s.file) {
    case File::Temporary:
        text += name + index;
        break;
    case File::Input:
        text += program.kind == Kind::Vertex ? "vertex.attrib[" + std::to_string(8 + s.index) + "]"
                                             : "fragment.texcoord[" + index + "]";
        break;
    case File::Local:
        text += "program.local[" + index + "]";
        break;
    case File::Constant:
        text += "c" + index;
        break;
    case File::Number:
        return text + numberText(s.number);
    }
    const auto& z = s.swizzle;
    bool one = z[0] == z[1] && z[1] == z[2] && z[2] == z[3], plain = z[0] == 0 && z[1] == 1 && z[2] == 2 && z[3] == 3;
    if (one || scalar) return text + "." + Letters[z[0]];
    if (plain) return text;
    text += ".";
    for (uint8_t letter : z)
        text += Letters[letter];
    return text;
}

} // namespace

const OpcodeFacts& factsOf(Opcode opcode)
{
    for (const OpcodeFacts& facts : Facts)
        if (facts.opcode == opcode) return facts;
    return Facts[0];
}

RandomProgram randomProgram(Kind kind, std::mt19937& random)
{
    return Generator(kind, random).go();
}

std::string textOf(const RandomProgram& program, const Statement& s, const char* name)
{
    const OpcodeFacts& facts = factsOf(s.opcode);
    std::string text = facts.name;
    if (s.saturates) text += "_SAT";
    text += " ";
    if (s.opcode != Opcode::Kil) {
        text += name + std::to_string(s.destination);
        if (s.mask != 15) text += ".";
        for (int i = 0; i < 4 && s.mask != 15; ++i)
            if (s.mask >> i & 1) text += Letters[i];
        text += ", ";
    }
    for (int i = 0; i < facts.sources; ++i)
        text += (i ? ", " : "") + sourceText(program, s.sources[static_cast<size_t>(i)], facts.scalar, name);
    return text + ";\n";
}

std::string declarationsOf(const RandomProgram& program, const char* name)
{
    std::string text = "TEMP ";
    for (int i = 0; i < RandomProgram::Temporaries; ++i)
        text += (i ? ", " : "") + (name + std::to_string(i));
    text += ";\n";
    for (size_t i = 0; i < program.constants.size(); ++i) {
        text += "PARAM c" + std::to_string(i) + " = { ";
        for (size_t c = 0; c < 4; ++c)
            text += (c ? ", " : "") + numberText(program.constants[i][c]);
        text += " };\n";
    }
    return text;
}

} // namespace differential
