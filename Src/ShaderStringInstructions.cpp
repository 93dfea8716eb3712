// SPDX-License-Identifier: Apache-2.0
// Instructions: filling templates, choosing a form, and the opcodes that are more than one filled template.
#include "ShaderTranslation.h"

namespace ZALMetal
{

// ---- Templates -------------------------------------------------------------------------------------------------

namespace
{

constexpr int kNoTemplate = 6;

// Fills the lowest number with the first argument, the next with the second, and so on.
template <class... Arguments>
int AddFilled(ZALM::String& out, const char* templ, const Arguments&... arguments)
{
    if (!templ) return kNoTemplate;

    ZALM::String filled(templ);
    (filled.Arg(arguments), ...);
    out.Add(filled);
    return 0;
}

} // namespace

int ShaderString::AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1) const
{
    if (!templ) return kNoTemplate;

    std::string_view rest = templ;
    for (size_t at = rest.find("%1"); at != std::string_view::npos; at = rest.find("%1")) {
        out.AddAscii(rest.data(), static_cast<int>(at));
        out.Add(a1);
        rest.remove_prefix(at + 2);
    }
    out.AddAscii(rest.data(), static_cast<int>(rest.size()));
    return 0;
}

int ShaderString::AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1,
                                 const ZALM::String& a2) const
{
    return AddFilled(out, templ, a1, a2);
}

int ShaderString::AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                                 const ZALM::String& a3) const
{
    return AddFilled(out, templ, a1, a2, a3);
}

int ShaderString::AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                                 const ZALM::String& a3, const ZALM::String& a4) const
{
    return AddFilled(out, templ, a1, a2, a3, a4);
}

int ShaderString::AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                                 const ZALM::String& a3, const ZALM::String& a4, const ZALM::String& a5) const
{
    return AddFilled(out, templ, a1, a2, a3, a4, a5);
}

int ShaderString::AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                                 const ZALM::String& a3, const ZALM::String& a4, const ZALM::String& a5,
                                 const ZALM::String& a6) const
{
    return AddFilled(out, templ, a1, a2, a3, a4, a5, a6);
}

// ---- The body --------------------------------------------------------------------------------------------------

// Takes the line under construction over into the body. A template may hold a line end of its own.
int ShaderTranslation::FinishLine()
{
    const std::string_view written = View(line);
    body.AddBlanks(indentation);
    body.Add(written);
    body.Add("\n");

    size_t count = 1;
    for (char c : written)
        if (c == '\n') ++count;
    for (; count > 0; --count)
        if (lines.push_back(statement.line) != 0) return kOutOfMemory;
    return 0;
}

void ShaderTranslation::OpenBlock()
{
    if (openBlocks++ > 0) return;

    outermostStart = body.Size();
    outermostLine = lines.size();
}

void ShaderTranslation::CloseBlock()
{
    if (openBlocks > 0) --openBlocks;
    if (indentation > 0) indentation -= 2;
}

// The scratch vector must be visible wherever it is used later, so it is declared outside every block.
void ShaderTranslation::DeclareScratch()
{
    if (scratchDeclared) return;

    scratchDeclared = true;
    scratchStart = openBlocks > 0 ? outermostStart : body.Size();
    scratchLine = openBlocks > 0 ? outermostLine : lines.size();
    scratchSource = statement.line;
}

// ---- Assignments -----------------------------------------------------------------------------------------------

int ShaderTranslation::TranslateInstruction(const OpcodeRow& row)
{
    switch (row.kind) {
    case OpcodeKind::Kill:
        return TranslateKill(row);
    case OpcodeKind::Sample:
        return TranslateSample();
    case OpcodeKind::Pack:
        return TranslatePack();
    case OpcodeKind::Unpack:
        return TranslateUnpack();
    case OpcodeKind::If:
        return TranslateIf(row);
    case OpcodeKind::Else:
        return TranslateElse(row);
    case OpcodeKind::Repeat:
        return TranslateRepeat(row);
    case OpcodeKind::EndIf:
    case OpcodeKind::EndRepeat:
        return TranslateBlockEnd(row);
    case OpcodeKind::Jump:
        return AddFixedLine(row.plainA);
    default:
        return TranslateAssignment(row);
    }
}

int ShaderTranslation::TranslateAssignment(const OpcodeRow& row)
{
    int status = ReadOperands(1, row.sources);
    if (status != 0) return status;

    // Kept on purpose: [xpd-three-components] without a mask the result has three components, which no vector of four
    // takes; a program must write a mask of three.
    if (row.kind == OpcodeKind::Cross && destination.param.swizzle.IsEmpty()) suffix = ".xyz";

    const bool asWritten =
        (row.kind == OpcodeKind::Move || row.kind == OpcodeKind::MoveSetsCC || row.kind == OpcodeKind::Scalars) &&
        AllSingle();
    if (!asWritten) status = NarrowSources(row);
    if (status != 0) return status;

    const ZALM::String target = destination.Written();
    const char* form = ChooseForm(row);
    switch (row.sources) {
    case 1:
        status = AddLine(form, target, sources[0].Written(), suffix);
        break;
    case 2:
        status = AddLine(form, target, sources[0].Written(), sources[1].Written(), suffix);
        break;
    default:
        status = AddLine(form, target, sources[0].Written(), sources[1].Written(), sources[2].Written(), suffix);
        break;
    }

    // Kept on purpose: [cc0-only] whatever register an instruction names, the condition is kept in CC0.
    if (status == 0 && row.kind == OpcodeKind::MoveSetsCC) status = AddLine("CC0%1 = %2;", suffix, target);
    return status;
}

// Saturation on an opcode that has no saturated form is ignored.
const char* ShaderTranslation::ChooseForm(const OpcodeRow& row) const
{
    bool formA = false;
    if (row.kind == OpcodeKind::Infix) formA = suffix.IsEmpty() && !statement.saturated;
    if (row.kind == OpcodeKind::Reducing) formA = destination.param.scalar;
    if (row.kind == OpcodeKind::Move || row.kind == OpcodeKind::MoveSetsCC || row.kind == OpcodeKind::Scalars)
        formA = AllSingle();

    const char* saturated = formA ? row.saturatedA : row.saturatedB;
    if (statement.saturated && saturated) return saturated;

    return formA ? row.plainA : row.plainB;
}

int ShaderTranslation::TranslateKill(const OpcodeRow& row)
{
    const int status = ReadOperands(0, row.sources);
    if (status != 0) return status;
    if (sources[0].IsSingle()) return AddLine(row.plainA, sources[0].Written());

    const int narrowed = Narrow(sources[0], row.components);
    return narrowed != 0 ? narrowed : AddLine(row.plainB, sources[0].Written());
}

// ---- Textures --------------------------------------------------------------------------------------------------

namespace
{

// The unit in the brackets of "texture[2]"; -1 when there is none that can be sampled.
int TextureUnitOf(std::string_view texture)
{
    constexpr int kUnits = 32;
    const size_t open = texture.find('[');
    if (open == std::string_view::npos || texture.back() != ']') return -1;

    const int unit = ReadIndex(Trimmed(texture.substr(open + 1, texture.size() - open - 2)));
    return unit < kUnits ? unit : -1;
}

} // namespace

int ShaderTranslation::TranslateSample()
{
    int status = SplitOperands(",");
    if (status != 0) return status;
    if (pieces.size() < 4) return Fail("too few operands");

    const ZALM::String target = pieces[3];
    const SampleRow* row = nullptr;
    for (const SampleRow& candidate : kSampleRows)
        if (View(target) == candidate.target) row = &candidate;
    if (!row) return CopyStatement("%1;");

    const int unit = TextureUnitOf(View(pieces[2]));
    if (unit < 0) return Fail("the texture has no unit from 0 to 31");

    status = ReadOperands(1, 1);
    if (status == 0) status = Narrow(sources[0], row->components);
    if (status != 0) return status;

    // The first target that a unit is sampled with decides its parameter's type.
    const ZALM::String texture = ZALM::String("texture%1").Arg(unit);
    bool inserted = false;
    if (textures.insert(inserted, texture, TextureUnit{unit, target}) != 0) return kOutOfMemory;

    return AddLine(statement.saturated ? row->saturated : row->plain, destination.Written(), sources[0].Written(),
                   texture, texture + "Sampler", suffix, texture + "Swizzle");
}

// ---- Integers --------------------------------------------------------------------------------------------------

int ShaderTranslation::TranslatePack()
{
    int status = ReadOperands(1, 1);
    if (status != 0) return status;

    DeclareScratch();
    status = AddLine(kPackSourceLine, sources[0].Written());
    return status != 0 ? status : AddLine(kPackResultLine, destination.Written());
}

int ShaderTranslation::TranslateUnpack()
{
    int status = ReadOperands(1, 1);
    if (status != 0) return status;

    DeclareScratch();
    status = AddLine(kUnpackSourceLine, sources[0].Written());
    for (const char* result : kUnpackResultLines)
        if (status == 0) status = AddLine(result, destination.Written());
    return status;
}

// ---- Blocks ----------------------------------------------------------------------------------------------------

int ShaderTranslation::TranslateIf(const OpcodeRow& row)
{
    int status = SplitOperands(",");
    if (status != 0) return status;
    if (pieces.empty()) return Fail("too few operands");

    // Kept on purpose: [if-register] a register number behind the condition is not read: the test is always of CC0.
    const std::string_view condition = View(pieces[0]);
    const char* comparison = nullptr;
    for (const ConditionRow& candidate : kConditionRows)
        if (StartsWithNoCase(condition, candidate.name)) comparison = candidate.comparison;

    // Kept on purpose: [if-unknown-condition] an unknown condition is copied without a ";" and opens no block.
    if (!comparison) return CopyStatement("%1");

    const size_t dot = FindLastDot(condition);
    suffix = MaskSuffix(dot == std::string_view::npos ? std::string_view() : Trimmed(condition.substr(dot + 1)));
    OpenBlock();
    status = AddLine(row.plainA, suffix, comparison);
    return status != 0 ? status : OpenBrace();
}

int ShaderTranslation::TranslateElse(const OpcodeRow& row)
{
    if (openBlocks == 0) OpenBlock();
    if (indentation > 0) indentation -= 2;
    int status = AddFixedLine(row.plainA);
    if (status == 0) status = AddFixedLine("else");
    return status != 0 ? status : OpenBrace();
}

int ShaderTranslation::TranslateRepeat(const OpcodeRow& row)
{
    int status = ReadOperands(0, row.sources);
    if (status == 0) status = Narrow(sources[0], row.components);
    if (status != 0) return status;
    if (loopName < 'a' || loopName > 'z') return Fail("loops are nested too deeply");

    OpenBlock();
    status = AddLine(row.plainA, ZALM::String(static_cast<char>(loopName++)), sources[0].Written());
    return status != 0 ? status : OpenBrace();
}

int ShaderTranslation::OpenBrace()
{
    const int status = AddFixedLine("{");
    indentation += 2;
    return status;
}

int ShaderTranslation::TranslateBlockEnd(const OpcodeRow& row)
{
    CloseBlock();
    if (row.kind == OpcodeKind::EndRepeat) --loopName;
    return AddFixedLine(row.plainA);
}

} // namespace ZALMetal
