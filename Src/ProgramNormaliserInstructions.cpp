// SPDX-License-Identifier: Apache-2.0
// Instructions: those that the dialect lacks are written out in those that it has.
#include "ProgramNormaliserRun.h"

#include <algorithm>

namespace ZALMetal
{
namespace
{

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
        Write("MOVC", false, instruction.destination.Written(),
              {instruction.destination.Part(instruction.destination.mask)});
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
        return Write("MOV", false, destination, {Source::Number(instruction.opcode->note)});
    case Writing::Ceiling:
        Write("FLR", false, Scratch().With(instruction.destination.mask), {sources[0].Negated()});
        return Write("MOV", saturated, destination, {Scratch().Part("").Negated()});
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
        Write("MUL", false, scratch.With("xyz"), {instruction.sources[0], scratch.Part("w")});
        coordinate = scratch.text;
    }
    lines.push_back(std::string(instruction.saturated ? "TEX_SAT " : "TEX ") + instruction.destination.Written() +
                    ", " + coordinate + ", texture[" + std::to_string(unit.first) + "], " + std::string(target.text));
}

} // namespace ZALMetal
