// SPDX-License-Identifier: Apache-2.0
// Instructions: those that the dialect lacks are written out in those that it has.
#include "ProgramNormaliserRun.h"

#include <algorithm>

namespace ZALMetal
{
namespace
{

Source Number(const char* text)
{
    Source source;
    source.text = text;
    source.number = true;
    return source;
}

Source Part(const Destination& destination, const char* letters)
{
    Source source;
    source.text = destination.text;
    source.swizzle = letters;
    return source;
}

Destination Only(const Destination& destination, std::string letters)
{
    Destination part = destination;
    part.mask = std::move(letters);
    return part;
}

// Whether writing a part of the destination would change what is still to be read.
bool Overlaps(const Destination& destination, const std::vector<Source>& sources)
{
    return std::any_of(sources.begin(), sources.end(),
                       [&destination](const Source& source) { return source.text == destination.text; });
}

bool IsSingle(const Source& source)
{
    return source.number || source.swizzle.size() == 1;
}

const StandardOpcode* FindOpcode(std::string_view name)
{
    for (const StandardOpcode& row : kStandardOpcodes)
        if (name == row.name) return &row;
    return nullptr;
}

} // namespace

// ---- Reading -------------------------------------------------------------------------------------------------------

// The opcode with what hangs on it: "ADD_SAT", "ADD.SAT", "ADDC", "ADD.CC", "FLR.U".
NormaliserRun::Instruction NormaliserRun::ReadOpcode()
{
    Instruction instruction;
    instruction.at = Look();
    std::string name(Take().text);
    if (IsMark(".") && Look().touches && (Look(1).text == "U" || Look(1).text == "U32")) {
        next += 2;
        name += ".U";
    }
    if (name.ends_with("_SAT")) {
        instruction.saturated = true;
        name.resize(name.size() - 4);
    }
    instruction.opcode = FindOpcode(name);
    if (!instruction.opcode && name.ends_with("C")) {
        instruction.opcode = FindOpcode(std::string_view(name).substr(0, name.size() - 1));
        instruction.setsCondition = true;
    }
    if (!instruction.opcode) Fail(instruction.at, name + ": this instruction cannot be expressed");
    if (instruction.opcode->writing == Writing::Refused) Fail(instruction.at, name + ": " + instruction.opcode->note);

    while (IsMark(".") && Look().touches)
        ReadModifier(instruction);
    return instruction;
}

void NormaliserRun::ReadModifier(Instruction& instruction)
{
    Take();
    const Token at = Look();
    const std::string_view name = ExpectWord("a modifier");
    if (name == "SAT")
        instruction.saturated = true;
    else if (name == "CC" || name == "CC0")
        instruction.setsCondition = true;
    else if (name != "F" && name != "F32")
        Fail(at, "." + std::string(name) + ": this modifier cannot be expressed");
}

void NormaliserRun::ReadInstruction()
{
    Instruction instruction = ReadOpcode();
    const StandardOpcode& opcode = *instruction.opcode;
    if (opcode.writing == Writing::Condition) return WriteCondition();
    if (opcode.writing == Writing::Flow || opcode.writing == Writing::Kill) {
        if (IsMark("(")) Fail(Look(), "a test of condition codes cannot be expressed");
        for (int i = 0; i < opcode.sources; ++i)
            instruction.sources.push_back(ReadSource());
        FollowBlocks(instruction);
        return WriteFlow(instruction);
    }

    ReadDestination(instruction.destination);
    for (int i = 0; i < opcode.sources; ++i) {
        ExpectMark(",");
        instruction.sources.push_back(ReadSource());
        GiveFourth(instruction.sources.back(), opcode.reads, instruction.destination.mask);
    }
    WriteInstruction(instruction);
    if (instruction.setsCondition)
        Write("MOVC", false, instruction.destination.Written(), {Part(instruction.destination, instruction.destination.mask.c_str())});
}

// ---- Writing -------------------------------------------------------------------------------------------------------

void NormaliserRun::Write(const char* opcode, bool saturated, const std::string& destination,
                          const std::vector<Source>& sources)
{
    std::string line = opcode;
    if (saturated) line += "_SAT";
    line += " " + destination;
    for (const Source& source : sources)
        line += ", " + source.Written();
    lines.push_back(line);
}

Destination NormaliserRun::Scratch()
{
    usesScratch = true;
    Destination scratch;
    scratch.text = Helper("scratch");
    scratch.temporary = true;
    return scratch;
}

// One component of the destination, if it is wanted.
void NormaliserRun::WriteMove(const Instruction& instruction, char letter, const Source& source)
{
    if (instruction.destination.Has(letter))
        Write("MOV", instruction.saturated && !source.number, instruction.destination.With({&letter, 1}), {source});
}

void NormaliserRun::WriteInstruction(const Instruction& instruction)
{
    switch (instruction.opcode->writing) {
    case Writing::Sample:
    case Writing::SampleProjected:
        return WriteSample(instruction);
    case Writing::Homogeneous:
        return WriteHomogeneous(instruction);
    case Writing::Distance:
        return WriteDistance(instruction);
    case Writing::Lighting:
        return WriteLighting(instruction);
    case Writing::Logarithm:
        return WriteLogarithm(instruction);
    case Writing::Exponential:
        return WriteExponential(instruction);
    case Writing::SineCosine:
        return WriteSineCosine(instruction);
    case Writing::Swizzle:
        return WriteSwizzle(instruction);
    case Writing::Cross:
        return WriteCross(instruction);
    case Writing::Unequal:
        return WriteUnequal(instruction);
    case Writing::Quotient:
        return WriteQuotient(instruction);
    case Writing::Unit:
        return WriteUnit(instruction);
    default:
        return WriteAsIs(instruction);
    }
}

void NormaliserRun::WriteAsIs(const Instruction& instruction)
{
    const std::string destination = instruction.destination.Written();
    const bool saturated = instruction.saturated;
    std::vector<Source> sources = instruction.sources;
    switch (instruction.opcode->writing) {
    case Writing::ReciprocalRoot:
        sources[0].absolute = !sources[0].number;
        sources[0].negative = false;
        return Write("RSQ", saturated, destination, sources);
    case Writing::LessOrEqual:
        return Write("SGE", saturated, destination, {sources[1], sources[0]});
    case Writing::Constant:
        return Write("MOV", false, destination, {Number(instruction.opcode->note)});
    case Writing::Ceiling:
        Write("FLR", false, Scratch().With(instruction.destination.mask), {sources[0].Negated()});
        return Write("MOV", saturated, destination, {Part(Scratch(), "").Negated()});
    default:
        return Write(instruction.opcode->name, saturated, destination, sources);
    }
}

void NormaliserRun::WriteFlow(const Instruction& instruction)
{
    std::string line = instruction.opcode->name;
    for (const Source& source : instruction.sources)
        line += " " + source.Written();
    lines.push_back(line);
}

void NormaliserRun::OpenBlock(const Token& at, char kind)
{
    constexpr auto mostLoops = 'z' - 'i' + 1; // a loop variable for each
    const auto loops = std::count(blocks.begin(), blocks.end(), 'R');
    if (kind == 'R' && loops >= mostLoops) Fail(at, "loops are nested too deeply");

    blocks += kind;
}

void NormaliserRun::FollowBlocks(const Instruction& instruction)
{
    const std::string_view name = instruction.opcode->name;
    const char open = blocks.empty() ? ' ' : blocks.back();
    const bool looped = blocks.find('R') != std::string::npos;
    const bool misplaced = (name == "ELSE" && open != 'I') || (name == "ENDIF" && open != 'I' && open != 'E') ||
                           (name == "ENDREP" && open != 'R') || ((name == "BRK" || name == "CONT") && !looped);
    if (misplaced) Fail(instruction.at, std::string(name) + " stands in no block of its own");

    if (name == "REP") OpenBlock(instruction.at, 'R');
    if (name == "ELSE" || name == "ENDIF" || name == "ENDREP") blocks.pop_back();
    if (name == "ELSE") OpenBlock(instruction.at, 'E');
}

// "IF NE.x": the translator tests the first condition register only.
void NormaliserRun::WriteCondition()
{
    constexpr std::array conditions = std::to_array<std::string_view>({"EQ", "GE", "GT", "LE", "LT", "NE"});
    const Path path = ReadPath();
    std::string_view name = path.parts[0].name;
    if (name.size() == 3 && name[2] == '0') name = name.substr(0, 2);
    if (std::find(conditions.begin(), conditions.end(), name) == conditions.end())
        Fail(path.at, std::string(name) + ": this condition cannot be expressed");

    Place place;
    TakeSwizzle(place, path, 1);
    OpenBlock(path.at, 'I');
    lines.push_back("IF " + std::string(name) + (place.swizzle.empty() ? "" : "." + place.swizzle));
}

// ---- Textures ------------------------------------------------------------------------------------------------------

void NormaliserRun::WriteSample(const Instruction& instruction)
{
    constexpr std::array targets = std::to_array<std::string_view>({"2D", "3D", "RECT", "CUBE"});
    constexpr int mostUnit = 31;
    ExpectMark(",");
    const Path texture = ReadPath();
    const PathPart& unit = texture.parts[0];
    if (unit.name != "texture" || texture.parts.size() > 1 || unit.last != unit.first)
        Fail(texture.at, "a texture unit is missing");
    if (unit.first > mostUnit) Fail(texture.at, "there is no texture unit above 31");
    ExpectMark(",");
    const Token target = Look();
    ExpectWord("a texture target");
    if (std::find(targets.begin(), targets.end(), target.text) == targets.end())
        Fail(target, std::string(target.text) + ": this texture target cannot be expressed");
    if (IsMark(",")) Fail(Look(), "offsets of texture coordinates cannot be expressed");

    std::string coordinate = instruction.sources[0].Written();
    if (instruction.opcode->writing == Writing::SampleProjected) {
        const Destination scratch = Scratch();
        Write("RCP", false, scratch.With("w"), {instruction.sources[0].Component(3)});
        Write("MUL", false, scratch.With("xyz"), {instruction.sources[0], Part(scratch, "w")});
        coordinate = scratch.text;
    }
    lines.push_back(std::string(instruction.saturated ? "TEX_SAT " : "TEX ") + instruction.destination.Written() + ", " +
                    coordinate + ", texture[" + std::to_string(unit.first) + "], " + std::string(target.text));
}

// ---- Vectors -------------------------------------------------------------------------------------------------------

void NormaliserRun::WriteHomogeneous(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const std::vector<Source>& sources = instruction.sources;
    Write("DP3", false, scratch.With("x"), sources);
    Write("ADD", instruction.saturated, instruction.destination.Written(), {Part(scratch, "x"), sources[1].Component(3)});
}

void NormaliserRun::WriteDistance(const Instruction& instruction)
{
    Instruction part = instruction;
    const bool overlaps = Overlaps(instruction.destination, instruction.sources);
    if (overlaps) part.destination = Only(Scratch(), instruction.destination.mask);

    const std::vector<Source>& sources = instruction.sources;
    WriteMove(part, 'x', Number("1.0"));
    if (part.destination.Has('y'))
        Write("MUL", part.saturated, part.destination.With("y"), {sources[0].Component(1), sources[1].Component(1)});
    WriteMove(part, 'z', sources[0].Component(2));
    WriteMove(part, 'w', sources[1].Component(3));
    if (overlaps) Write("MOV", false, instruction.destination.Written(), {Part(Scratch(), "")});
}

// The fourth component of the cross product is not defined; without it the result has the width that Metal gives it.
void NormaliserRun::WriteCross(const Instruction& instruction)
{
    std::string mask = instruction.destination.mask.empty() ? "xyzw" : instruction.destination.mask;
    if (mask.back() == 'w') mask.pop_back();
    if (!mask.empty())
        Write("XPD", instruction.saturated, instruction.destination.With(mask), instruction.sources);
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
    Write("SUB", false, destination.Written(), {Number("1.0"), Part(Scratch(), "")});
}

void NormaliserRun::WriteQuotient(const Instruction& instruction)
{
    Write("RCP", false, Scratch().With("w"), {instruction.sources[1].Component(0)});
    Write("MUL", instruction.saturated, instruction.destination.Written(), {instruction.sources[0], Part(Scratch(), "w")});
}

void NormaliserRun::WriteUnit(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const Source& source = instruction.sources[0];
    Write("DP3", false, scratch.With("w"), {source, source});
    Source square = Part(scratch, "w");
    square.absolute = true;
    Write("RSQ", false, scratch.With("w"), {square});
    Write("MUL", instruction.saturated, instruction.destination.Written(), {source, Part(scratch, "w")});
}

// ---- Components that differ ----------------------------------------------------------------------------------------

// x: 1; y: the diffuse factor; z: the specular one, 0 where no light falls; w: 1.
void NormaliserRun::WriteLighting(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const Source& source = instruction.sources[0];
    const Source zero = Number("0.0");
    if (instruction.destination.Has('z')) {
        Source least = Number("127.9961");
        least.negative = true;
        Write("MAX", false, scratch.With("y"), {source.Component(1), zero});
        Write("MAX", false, scratch.With("w"), {source.Component(3), least});
        Write("MIN", false, scratch.With("w"), {Part(scratch, "w"), Number("127.9961")});
        Write("POW", false, scratch.With("z"), {Part(scratch, "y"), Part(scratch, "w")});
        Write("CMP", false, scratch.With("z"), {source.Component(0).Negated(), Part(scratch, "z"), zero});
    }
    if (instruction.destination.Has('y')) Write("MAX", false, scratch.With("y"), {source.Component(0), zero});
    WriteMove(instruction, 'x', Number("1.0"));
    WriteMove(instruction, 'y', Part(scratch, "y"));
    WriteMove(instruction, 'z', Part(scratch, "z"));
    WriteMove(instruction, 'w', Number("1.0"));
}

// x: the exponent; y: the mantissa, from 1 to 2; z: the logarithm; w: 1; all of the absolute value.
void NormaliserRun::WriteLogarithm(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    Write("ABS", false, scratch.With("x"), {instruction.sources[0].Component(0)});
    Write("LG2", false, scratch.With("z"), {Part(scratch, "x")});
    Write("FLR", false, scratch.With("y"), {Part(scratch, "z")});
    if (instruction.destination.Has('y')) {
        Write("EX2", false, scratch.With("w"), {Part(scratch, "y").Negated()});
        Write("MUL", false, scratch.With("w"), {Part(scratch, "x"), Part(scratch, "w")});
    }
    WriteMove(instruction, 'x', Part(scratch, "y"));
    WriteMove(instruction, 'y', Part(scratch, "w"));
    WriteMove(instruction, 'z', Part(scratch, "z"));
    WriteMove(instruction, 'w', Number("1.0"));
}

// x: 2 to the whole part; y: the rest; z: 2 to the source; w: 1.
void NormaliserRun::WriteExponential(const Instruction& instruction)
{
    const Destination scratch = Scratch();
    const Destination& destination = instruction.destination;
    Write("MOV", false, scratch.With("x"), {instruction.sources[0].Component(0)});
    Write("FLR", false, scratch.With("y"), {Part(scratch, "x")});
    if (destination.Has('x')) Write("EX2", instruction.saturated, destination.With("x"), {Part(scratch, "y")});
    if (destination.Has('y')) Write("FRC", instruction.saturated, destination.With("y"), {Part(scratch, "x")});
    if (destination.Has('z')) Write("EX2", instruction.saturated, destination.With("z"), {Part(scratch, "x")});
    WriteMove(instruction, 'w', Number("1.0"));
}

// The third and fourth components are not defined.
void NormaliserRun::WriteSineCosine(const Instruction& instruction)
{
    const Destination& destination = instruction.destination;
    Source angle = instruction.sources[0].Component(0);
    if (destination.Has('x') && destination.Has('y') && Overlaps(destination, instruction.sources)) {
        Write("MOV", false, Scratch().With("x"), {angle});
        angle = Part(Scratch(), "x");
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
        const size_t letter = at.text.size() == 1 ? std::string_view("xyzwrgba01").find(at.text[0]) : std::string_view::npos;
        if (letter == std::string_view::npos) Fail(at, "an extended swizzle has letters, 0 and 1");
        part.value = "xyzwxyzw01"[letter];
    }

    std::map<std::string, std::string> groups; // by sign and kind, the components
    for (size_t i = 0; i < parts.size(); ++i)
        if (instruction.destination.Has("xyzw"[i])) {
            const bool constant = parts[i].value == '0' || parts[i].value == '1';
            groups[std::string(parts[i].negative ? "-" : "+") + (constant ? parts[i].value : 'x')] += "xyzw"[i];
        }

    const bool overlaps = groups.size() > 1 && Overlaps(instruction.destination, instruction.sources);
    const Destination target = overlaps ? Scratch() : instruction.destination;
    for (const auto& [kind, mask] : groups) {
        Source source = kind[1] == 'x' ? instruction.sources[0] : Number(kind[1] == '1' ? "1.0" : "0.0");
        if (!source.number) source.swizzle = GroupSwizzle(parts, mask, source);
        if (kind[0] == '-') source.negative = !source.negative;
        Write("MOV", instruction.saturated, target.With(mask), {source});
    }
    if (overlaps) Write("MOV", false, instruction.destination.Written(), {Part(target, "")});
}

} // namespace ZALMetal
