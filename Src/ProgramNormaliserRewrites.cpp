// SPDX-License-Identifier: Apache-2.0
// Instructions that the dialect lacks, written out in those that it has. A source is never read after the destination
// has been written where the two could be one register.
#include "ProgramNormaliserRun.h"

namespace ZALMetal
{
namespace
{

bool IsSingle(const Source& source)
{
    return source.number || source.swizzle.size() == 1;
}

} // namespace

// ---- Vectors -------------------------------------------------------------------------------------------------------

void NormaliserRun::WriteHomogeneous(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const std::vector<Source>& sources = instruction.sources;
    Write("DP3", false, scratch.With("x"), sources);
    Write("ADD", instruction.saturated, instruction.destination.Written(),
          {scratch.Part("x"), sources[1].Component(3)});
}

void NormaliserRun::WriteDistance(const Instruction& instruction)
{
    Instruction part = instruction;
    const bool overlaps = instruction.destination.IsReadBy(instruction.sources);
    if (overlaps) {
        part.destination = Scratch();
        part.destination.mask = instruction.destination.mask;
    }

    const std::vector<Source>& sources = instruction.sources;
    WriteMove(part, 'x', Source::Number("1.0"));
    if (part.destination.Has('y'))
        Write("MUL", part.saturated, part.destination.With("y"), {sources[0].Component(1), sources[1].Component(1)});
    WriteMove(part, 'z', sources[0].Component(2));
    WriteMove(part, 'w', sources[1].Component(3));
    if (overlaps) Write("MOV", false, instruction.destination.Written(), {Scratch().Part("")});
}

// The fourth component of the cross product is not defined; without it the result has the width that Metal gives it.
void NormaliserRun::WriteCross(const Instruction& instruction)
{
    std::string mask = instruction.destination.mask.empty() ? "xyzw" : instruction.destination.mask;
    if (mask.back() == 'w') mask.pop_back();
    if (!mask.empty()) Write("XPD", instruction.saturated, instruction.destination.With(mask), instruction.sources);
}

// The translator can compare for inequality in one component only.
void NormaliserRun::WriteUnequal(const Instruction& instruction)
{
    const std::vector<Source>& sources = instruction.sources;
    const Destination& destination = instruction.destination;
    if (destination.mask.size() == 1) {
        const int which = static_cast<int>(std::string_view("xyzw").find(destination.mask[0]));
        const bool single = IsSingle(sources[0]) && IsSingle(sources[1]);
        return Write("SNE", false, destination.Written(),
                     single ? sources : std::vector<Source>{sources[0].Component(which), sources[1].Component(which)});
    }
    Write("SEQ", false, Scratch().With(destination.mask), sources);
    Write("SUB", false, destination.Written(), {Source::Number("1.0"), Scratch().Part("")});
}

void NormaliserRun::WriteQuotient(const Instruction& instruction)
{
    Write("RCP", false, Scratch().With("w"), {instruction.sources[1].Component(0)});
    Write("MUL", instruction.saturated, instruction.destination.Written(),
          {instruction.sources[0], Scratch().Part("w")});
}

void NormaliserRun::WriteUnit(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const Source& source = instruction.sources[0];
    Write("DP3", false, scratch.With("w"), {source, source});
    Source square = scratch.Part("w");
    square.absolute = true;
    Write("RSQ", false, scratch.With("w"), {square});
    Write("MUL", instruction.saturated, instruction.destination.Written(), {source, scratch.Part("w")});
}

// ---- Components that differ ----------------------------------------------------------------------------------------

// x: 1; y: the diffuse factor; z: the specular one, 0 where no light falls; w: 1.
void NormaliserRun::WriteLighting(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const Source& source = instruction.sources[0];
    const Source zero = Source::Number("0.0");
    if (instruction.destination.Has('z')) {
        Source least = Source::Number("127.9961");
        least.negative = true;
        Write("MAX", false, scratch.With("y"), {source.Component(1), zero});
        Write("MAX", false, scratch.With("w"), {source.Component(3), least});
        Write("MIN", false, scratch.With("w"), {scratch.Part("w"), Source::Number("127.9961")});
        Write("POW", false, scratch.With("z"), {scratch.Part("y"), scratch.Part("w")});
        Write("CMP", false, scratch.With("z"), {source.Component(0).Negated(), scratch.Part("z"), zero});
    }
    if (instruction.destination.Has('y')) Write("MAX", false, scratch.With("y"), {source.Component(0), zero});
    WriteMove(instruction, 'x', Source::Number("1.0"));
    WriteMove(instruction, 'y', scratch.Part("y"));
    WriteMove(instruction, 'z', scratch.Part("z"));
    WriteMove(instruction, 'w', Source::Number("1.0"));
}

// x: the exponent; y: the mantissa, from 1 to 2; z: the logarithm; w: 1; all of the absolute value.
void NormaliserRun::WriteLogarithm(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    Write("ABS", false, scratch.With("x"), {instruction.sources[0].Component(0)});
    Write("LG2", false, scratch.With("z"), {scratch.Part("x")});
    Write("FLR", false, scratch.With("y"), {scratch.Part("z")});
    if (instruction.destination.Has('y')) {
        Write("EX2", false, scratch.With("w"), {scratch.Part("y").Negated()});
        Write("MUL", false, scratch.With("w"), {scratch.Part("x"), scratch.Part("w")});
    }
    WriteMove(instruction, 'x', scratch.Part("y"));
    WriteMove(instruction, 'y', scratch.Part("w"));
    WriteMove(instruction, 'z', scratch.Part("z"));
    WriteMove(instruction, 'w', Source::Number("1.0"));
}

// x: 2 to the whole part; y: the rest; z: 2 to the source; w: 1.
void NormaliserRun::WriteExponential(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const Destination& destination = instruction.destination;
    Write("MOV", false, scratch.With("x"), {instruction.sources[0].Component(0)});
    Write("FLR", false, scratch.With("y"), {scratch.Part("x")});
    if (destination.Has('x')) Write("EX2", instruction.saturated, destination.With("x"), {scratch.Part("y")});
    if (destination.Has('y')) Write("FRC", instruction.saturated, destination.With("y"), {scratch.Part("x")});
    if (destination.Has('z')) Write("EX2", instruction.saturated, destination.With("z"), {scratch.Part("x")});
    WriteMove(instruction, 'w', Source::Number("1.0"));
}

// The third and fourth components are not defined.
void NormaliserRun::WriteSineCosine(const Instruction& instruction)
{
    const Destination& destination = instruction.destination;
    Source angle = instruction.sources[0].Component(0);
    if (destination.Has('x') && destination.Has('y') && destination.IsReadBy(instruction.sources)) {
        Write("MOV", false, Scratch().With("x"), {angle});
        angle = Scratch().Part("x");
    }
    if (destination.Has('x')) Write("COS", instruction.saturated, destination.With("x"), {angle});
    if (destination.Has('y')) Write("SIN", instruction.saturated, destination.With("y"), {angle});
}

// ---- Extended swizzles ---------------------------------------------------------------------------------------------

namespace
{

struct SwizzlePart
{
    bool negative = false;
    char value = 'x'; // a letter, '0' or '1'
};

// The letters of a group of components, the others filled with one of them so that the swizzle is whole.
std::string GroupSwizzle(const std::array<SwizzlePart, 4>& parts, const std::string& mask, const Source& source)
{
    std::string letters;
    for (size_t i = 0; i < parts.size(); ++i) {
        const bool wanted = mask.find("xyzw"[i]) != std::string::npos;
        const size_t from = wanted ? i : std::string_view("xyzw").find(mask[0]);
        const int which = static_cast<int>(std::string_view("xyzw").find(parts[from].value));
        letters += source.Component(which).swizzle;
    }
    if (mask.size() == 1) return letters.substr(std::string_view("xyzw").find(mask[0]), 1);
    return letters == "xyzw" ? std::string() : letters;
}

} // namespace

// Components that come from the source with one sign are moved together, those with the other next, then 0 and 1.
void NormaliserRun::WriteSwizzle(const Instruction& instruction)
{
    std::array<SwizzlePart, 4> parts;
    for (SwizzlePart& part : parts) {
        ExpectMark(",");
        part.negative = TakeMark("-");
        if (!part.negative) TakeMark("+");
        const Token at = Take();
        const size_t letter =
            at.text.size() == 1 ? std::string_view("xyzwrgba01").find(at.text[0]) : std::string_view::npos;
        if (letter == std::string_view::npos) Fail(at, "an extended swizzle has letters, 0 and 1");
        part.value = "xyzwxyzw01"[letter];
    }

    std::map<std::string, std::string> groups; // by sign and kind, the components
    for (size_t i = 0; i < parts.size(); ++i)
        if (instruction.destination.Has("xyzw"[i])) {
            const bool constant = parts[i].value == '0' || parts[i].value == '1';
            groups[std::string(parts[i].negative ? "-" : "+") + (constant ? parts[i].value : 'x')] += "xyzw"[i];
        }

    const bool overlaps = groups.size() > 1 && instruction.destination.IsReadBy(instruction.sources);
    const Destination target = overlaps ? Scratch() : instruction.destination;
    for (const auto& [kind, mask] : groups) {
        Source source = kind[1] == 'x' ? instruction.sources[0] : Source::Number(kind[1] == '1' ? "1.0" : "0.0");
        if (!source.number) source.swizzle = GroupSwizzle(parts, mask, source);
        if (kind[0] == '-') source.negative = !source.negative;
        Write("MOV", instruction.saturated, target.With(mask), {source});
    }
    if (overlaps) Write("MOV", false, instruction.destination.Written(), {target.Part("")});
}

} // namespace ZALMetal
