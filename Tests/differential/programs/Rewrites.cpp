// SPDX-License-Identifier: Apache-2.0
#include "differential/programs/Rewrites.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace differential
{
namespace
{

const char* headerOf(const RandomProgram& program)
{
    return program.kind == Kind::Vertex ? "!!ARBvp1.0" : "!!ARBfp1.0";
}
const char* laterHeaderOf(const RandomProgram& program)
{
    return program.kind == Kind::Vertex ? "!!NVvp4.0" : "!!NVfp4.0";
}

/// Every statement as it comes out of a function; `S` may be used as a further temporary.
Writing eachStatement(const RandomProgram& program, const std::function<std::string(const Statement&)>& text)
{
    Writing writing{headerOf(program), declarationsOf(program) + "TEMP S;\n", ""};
    for (const Statement& s : program.body)
        writing.body += text(s);
    return writing;
}

std::string maskText(uint8_t mask)
{
    std::string text = mask == 15 ? "" : ".";
    for (int i = 0; i < 4 && mask != 15; ++i)
        if (mask >> i & 1) text += "xyzw"[i];
    return text;
}

/// The operands of a statement as they are printed.
std::vector<std::string> operandsOf(const RandomProgram& program, const Statement& s)
{
    std::string text = textOf(program, s);
    std::vector<std::string> operands;
    size_t start = text.find(' ') + 1, end = text.find(';');
    for (size_t comma = text.find(", ", start); comma != std::string::npos;
         start = comma + 2, comma = text.find(", ", start))
        operands.push_back(text.substr(start, comma - start));
    operands.push_back(text.substr(start, end - start));
    return operands;
}

Writing deadCode(const RandomProgram& program, std::mt19937& random)
{
    return eachStatement(program, [&](const Statement& s) {
        constexpr const char* Dead[] = {"MUL S, R0, R1;\n", "ADD S.xz, R2.wzyx, R3;\n", "MAD S, R4, R5, S;\n",
                                        "MOV S.w, R3.x;\n", "DP4 S.y, R1, R1;\n"};
        bool defined = &s - program.body.data() >= RandomProgram::Temporaries;
        std::string before = !defined ? "" : Dead[random() % std::size(Dead)];
        return (&s == &program.body[RandomProgram::Temporaries - 1] ? textOf(program, s) + "MOV S, R0;\n"
                                                                    : before + textOf(program, s));
    });
}

Writing splitMad(const RandomProgram& program, std::mt19937&)
{
    return eachStatement(program, [&](const Statement& s) {
        if (s.opcode != Opcode::Mad) return textOf(program, s);
        auto o = operandsOf(program, s);
        return "MUL S" + maskText(s.mask) + ", " + o[1] + ", " + o[2] + ";\n" + (s.saturates ? "ADD_SAT " : "ADD ") +
               o[0] + ", S, " + o[3] + ";\n";
    });
}

Writing swappedOperands(const RandomProgram& program, std::mt19937&)
{
    return eachStatement(program, [&](Statement s) {
        constexpr Opcode Commutative[] = {Opcode::Add, Opcode::Mul, Opcode::Mad, Opcode::Dp3, Opcode::Dp4};
        if (std::find(std::begin(Commutative), std::end(Commutative), s.opcode) != std::end(Commutative))
            std::swap(s.sources[0], s.sources[1]);
        return textOf(program, s);
    });
}

Writing laterProfile(const RandomProgram& program, std::mt19937&)
{
    Writing writing = eachStatement(program, [&](const Statement& s) { return textOf(program, s); });
    writing.header = laterHeaderOf(program);
    return writing;
}

Writing onceRepeated(const RandomProgram& program, std::mt19937& random)
{
    Writing writing = laterProfile(program, random);
    writing.body = "REP 1;\n" + writing.body + "ENDREP;\n";
    return writing;
}

/// Each half of the components by itself, where the destination is not read.
Writing splitMasks(const RandomProgram& program, std::mt19937&)
{
    return eachStatement(program, [&](Statement s) {
        bool read = false;
        for (const Source& source : s.sources)
            read = read || (source.file == File::Temporary && source.index == s.destination);
        if (read || s.opcode == Opcode::Xpd || s.opcode == Opcode::Kil || std::popcount(s.mask) < 2)
            return textOf(program, s);
        uint8_t whole = s.mask, first = static_cast<uint8_t>(1 << std::countr_zero(whole));
        s.mask = static_cast<uint8_t>(whole & ~first);
        std::string text = textOf(program, s);
        s.mask = first;
        return text + textOf(program, s);
    });
}

/// Through a temporary, and from there to where it belongs.
Writing copies(const RandomProgram& program, std::mt19937&)
{
    return eachStatement(program, [&](const Statement& s) {
        if (s.opcode == Opcode::Kil) return textOf(program, s);
        std::string text = textOf(program, s), mask = maskText(s.mask),
                    destination = "R" + std::to_string(s.destination) + mask;
        size_t at = text.find(destination);
        return text.substr(0, at) + "S" + mask + text.substr(at + destination.size()) + "MOV " + destination + ", S;\n";
    });
}

Writing renamed(const RandomProgram& program, std::mt19937&)
{
    constexpr const char* Name = "someOtherName_";
    Writing writing{headerOf(program), declarationsOf(program, Name), "", Name};
    for (const Statement& s : program.body)
        writing.body += textOf(program, s, Name);
    return writing;
}

Writing spaced(const RandomProgram& program, std::mt19937& random)
{
    return eachStatement(program, [&](const Statement& s) {
        std::string text = textOf(program, s), spread;
        for (char c : text) {
            spread += c;
            if (c == ',' && random() % 2) spread += "  ";
        }
        return (random() % 2 ? "  " : "") + spread + (random() % 3 ? "" : "# a remark; with a stop\n");
    });
}

constexpr Rewrite Rewrites[] = {
    {"DeadCode", deadCode},         {"MadAsMulAndAdd", splitMad},    {"SwappedOperands", swappedOperands},
    {"LaterProfile", laterProfile}, {"OnceRepeated", onceRepeated},  {"HalvesOfMasks", splitMasks},
    {"CopiedResults", copies},      {"RenamedTemporaries", renamed}, {"BlanksAndRemarks", spaced},
};

} // namespace

std::span<const Rewrite> rewrites()
{
    return Rewrites;
}

} // namespace differential
