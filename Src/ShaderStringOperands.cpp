// SPDX-License-Identifier: Apache-2.0
// Operands: from a piece of a statement's operand list to the text that stands for it, at the width an opcode needs.
#include "ShaderTranslation.h"

namespace ZALMetal
{
namespace
{

// Cuts one leading sign off; true for a minus.
bool TakeSign(std::string_view& text)
{
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;

    const bool minus = text.front() == '-';
    text = Trimmed(text.substr(1));
    return minus;
}

bool IsNumber(std::string_view text)
{
    return IsDigit(text[0]) || (text[0] == '.' && text.size() > 1 && IsDigit(text[1]));
}

bool BracketsMatch(std::string_view text)
{
    int depth = 0;
    for (char c : text) {
        if (c == '[') ++depth;
        if (c == ']' && --depth < 0) return false;
    }
    return depth == 0;
}

// What makes an operand, without its sign and bars, impossible to read; null when nothing does.
const char* FindFlaw(std::string_view text)
{
    if (text.empty()) return "a sign or bars stand without an operand";
    if (text.front() == '-' || text.front() == '+') return "an operand has two signs";
    if (text.find('|') != std::string_view::npos) return "a bar is not closed";
    if (text.find_first_of("{}") != std::string_view::npos) return "an operand holds a brace";
    if (!BracketsMatch(text)) return "a bracket is not closed";
    return nullptr;
}

} // namespace

// ---- Reading ---------------------------------------------------------------------------------------------------

ZALM::String Operand::Written() const
{
    ZALM::String written = param.text;
    if (!param.swizzle.IsEmpty()) written.AddAscii(".", 1).Add(param.swizzle);
    if (absolute) written = ZALM::String("metal::abs( %1 )").Arg(written);
    if (negatedOutside) written = ZALM::String("-%1").Arg(written);
    return written;
}

int ShaderTranslation::ParseOperand(Operand& operand, std::string_view written)
{
    operand = Operand();
    std::string_view text = Trimmed(written);
    bool negative = TakeSign(text);
    if (text.starts_with('|')) {
        if (text.size() < 2 || text.back() != '|') return Fail("a bar is not closed");

        operand.absolute = true;
        operand.negatedOutside = negative;
        text = Trimmed(text.substr(1, text.size() - 2));
        negative = TakeSign(text);
    }
    if (const char* flaw = FindFlaw(text)) return Fail(flaw);

    if (IsNumber(text)) {
        operand.param.scalar = true;
        operand.param.text = Text(text);
        if (text.find_first_of(".eE") == std::string_view::npos) operand.param.text.AddAscii(".0", 2);
    } else if (const int status = ReadName(operand, text); status != 0)
        return status;

    if (negative) operand.param.text = ZALM::String("-%1").Arg(operand.param.text);
    return IsLost(operand.param.text) || IsLost(operand.param.swizzle) ? kOutOfMemory : 0;
}

// A binding is replaced; any other name stays as it is, its swizzle cut off.
int ShaderTranslation::ReadName(Operand& operand, std::string_view name)
{
    const KeywordMatch match = MatchKeyWord(ShaderString::_arb_keys[kind], name);
    if (match.keyword) {
        MarkKeyWord(bindings, match);
        operand.keyword = match.keyword;
        operand.param.swizzle = Text(match.rest);
        return WriteKeyWord(operand.param.text, match);
    }

    const size_t dot = FindLastDot(name);
    if (Trimmed(name.substr(0, dot)).empty()) return Fail("an operand has no name");

    int status = TrimBrackets(operand.param.text, Trimmed(name.substr(0, dot)));
    if (status == 0 && dot != std::string_view::npos)
        status = TrimBrackets(operand.param.swizzle, Trimmed(name.substr(dot + 1)));
    return status;
}

int ShaderTranslation::SplitOperands(const char* separator)
{
    return ShaderString::SplitInto(pieces, Text(statement.operands), separator);
}

// The statement's operands: a destination, if there is one, then `count` sources. Surplus ones are left unread.
int ShaderTranslation::ReadOperands(int destinations, int count)
{
    int status = SplitOperands(",");
    if (status != 0) return status;
    if (pieces.size() < static_cast<size_t>(destinations + count)) return Fail("too few operands");

    destination = Operand();
    suffix.Clear();
    if (destinations > 0) {
        status = ParseOperand(destination, View(pieces[0]));
        if (status != 0) return status;
        if (destination.absolute) return Fail("the destination stands between bars");

        suffix = MaskSuffix(View(destination.param.swizzle));
        if (destination.keyword && View(destination.keyword->replacement) == kDepthLocal) depthWritten = true;
    }

    sourceCount = count;
    for (int i = 0; i < count; ++i) {
        status = ParseOperand(sources[i], View(pieces[static_cast<size_t>(destinations + i)]));
        if (status != 0) return status;
    }
    return 0;
}

int TrimBrackets(ZALM::String& out, std::string_view text)
{
    TextBuffer trimmed;
    char last = ' ';
    int blanks = 0; // seen and not yet written
    for (char c : text) {
        if (c == ' ') {
            ++blanks;
            continue;
        }
        if (last != '[' && c != ']') trimmed.AddBlanks(blanks);
        trimmed.Add({&c, 1});
        blanks = 0;
        last = c;
    }
    return trimmed.Store(out);
}

ZALM::String MaskSuffix(std::string_view mask)
{
    if (mask.empty() || mask.size() > 3) return ZALM::String();

    return Text(".").Add(Text(mask));
}

// ---- Widths ----------------------------------------------------------------------------------------------------

int ShaderString::ConvertParamType(GLSLParam& param, PARAM_TYPE type) const
{
    constexpr const char* kWidened[] = {"%1", "float2( %1 )", "float3( %1 )", "float4( %1 )"};
    constexpr const char* kCut[] = {"%1.x", "%1.xy", "%1.xyz", "%1"};
    if (type < PARAM_SCALAR || type > PARAM_VECTOR4) return 1;

    const int components = type + 1;
    if (param.scalar)
        param.text = ZALM::String(kWidened[type]).Arg(param.text);
    else if (param.swizzle.IsEmpty())
        param.text = ZALM::String(kCut[type]).Arg(param.text);
    else if (type != PARAM_VECTOR4 && param.swizzle.Length() >= components) {
        param.text = ZALM::String("%1.%2").Arg(param.text).Arg(param.swizzle.Left(components));
        param.swizzle.Clear();
    }
    return 0;
}

bool ShaderTranslation::AllNumbers() const
{
    for (int i = 0; i < sourceCount; ++i)
        if (!sources[i].param.scalar) return false;
    return destination.param.scalar;
}

bool ShaderTranslation::AllSingle() const
{
    for (int i = 0; i < sourceCount; ++i)
        if (!sources[i].IsSingle()) return false;
    return destination.IsSingle();
}

// A single-letter swizzle means that letter four times. Metal takes it as it stands between operators, where a vector
// beside it or the destination gives the width; everywhere else it is written out.
bool ShaderTranslation::KeepsLetter(OpcodeKind opcode, int which) const
{
    const bool infix = opcode == OpcodeKind::Infix || opcode == OpcodeKind::Move || opcode == OpcodeKind::MoveSetsCC;
    if (!infix && opcode != OpcodeKind::FloorToInt) return false;
    if (suffix.IsEmpty()) return true;
    if (!infix) return false;

    for (int i = 0; i < sourceCount; ++i)
        if (i != which && (sources[i].param.scalar || !sources[i].HasOneLetter())) return true;
    return false;
}

int ShaderTranslation::Narrow(Operand& operand, int components)
{
    if (operand.HasOneLetter() && components > 1) {
        const ZALM::String letter = operand.param.swizzle;
        for (int i = 1; i < components; ++i)
            operand.param.swizzle.Add(letter);
    }
    if (program.ConvertParamType(operand.param, static_cast<PARAM_TYPE>(components - 1)) != 0)
        return Fail("an operand cannot have the width that its opcode needs");

    return 0;
}

int ShaderTranslation::NarrowSources(const OpcodeRow& row)
{
    if (AllNumbers()) return 0;

    // Decided for all sources first: narrowing one changes what the others stand beside.
    bool kept[kMostSources] = {};
    for (int i = 0; i < sourceCount; ++i)
        kept[i] = sources[i].HasOneLetter() && KeepsLetter(row.kind, i);

    // MOV takes a number as it is written, save where a mask has to be applied to it.
    const bool move = row.kind == OpcodeKind::Move;
    const int components = move ? 4 : row.components;
    for (int i = 0; i < sourceCount && components > 0; ++i) {
        if (kept[i] || (move && sources[i].param.scalar && suffix.IsEmpty())) continue;

        const int status = Narrow(sources[i], components);
        if (status != 0) return status;
    }
    return 0;
}

} // namespace ZALMetal
