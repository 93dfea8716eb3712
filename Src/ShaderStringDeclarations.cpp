// SPDX-License-Identifier: Apache-2.0
// Declarations: TEMP, UINT and PARAM. They stand in the body where they stand in the program.
#include "ShaderTranslation.h"

#include <algorithm>

namespace ZALMetal
{
namespace
{

// The value of a matrix's row, with %1 the matrix.
constexpr std::array kRowTemplates = std::to_array<const char*>({
    "float4( %1[0][0], %1[1][0], %1[2][0], %1[3][0] )",
    "float4( %1[0][1], %1[1][1], %1[2][1], %1[3][1] )",
    "float4( %1[0][2], %1[1][2], %1[2][2], %1[3][2] )",
    "float4( %1[0][3], %1[1][3], %1[2][3], %1[3][3] )",
});

constexpr int kComponents = 4; // of a vector
constexpr int kMatrixComponents = 16;
constexpr int kMostRangeElements = 256; // no binding has more elements

// "program.local[2..5]" in its parts. Without a range it is one element, and `before` is all of it.
struct Range
{
    std::string_view before; // up to and with "["
    std::string_view after;  // from "]" on
    int first = 0;
    int count = 1;
};

// False for a range that runs backward, has no end, or is longer than anything that it could name.
bool ReadRange(Range& range, std::string_view operand)
{
    range = Range{operand, {}, 0, 1};
    const size_t dots = operand.find("..");
    const size_t open = operand.substr(0, dots).rfind('[');
    if (dots == std::string_view::npos || open == std::string_view::npos) return true;

    const size_t close = operand.find(']', dots);
    if (close == std::string_view::npos) return false;

    const int first = ReadIndex(Trimmed(operand.substr(open + 1, dots - open - 1)));
    const int last = ReadIndex(Trimmed(operand.substr(dots + 2, close - dots - 2)));
    range = Range{operand.substr(0, open + 1), operand.substr(close), first, last - first + 1};
    return first >= 0 && range.count >= 1 && range.count <= kMostRangeElements;
}

ZALM::String RangeElement(const Range& range, int which)
{
    if (range.after.empty()) return Text(range.before);

    TextBuffer element;
    element.AddFilled("%1%2%3", {range.before, NumberText(static_cast<unsigned>(range.first + which)), range.after});
    return Text(element.All());
}

int ComponentsOf(const Operand& operand)
{
    if (operand.param.scalar) return 1;

    const int letters = operand.param.swizzle.GetStringBytes();
    if (letters > 0) return std::min(letters, kComponents);

    return operand.keyword && IsWholeMatrix(*operand.keyword) ? kMatrixComponents : kComponents;
}

// The position of the brace that closes the one at the beginning; npos when there is none.
size_t FindClosingBrace(std::string_view text)
{
    int depth = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '{') ++depth;
        if (text[at] == '}' && --depth == 0) return at;
    }
    return std::string_view::npos;
}

// Cuts the next piece off a list that commas and braces separate; false at its end. A piece is not empty.
bool TakePiece(std::string_view& piece, std::string_view& list, std::string_view separators)
{
    while (!list.empty()) {
        const size_t end = std::min(list.find_first_of(separators), list.size());
        piece = Trimmed(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
        if (!piece.empty()) return true;
    }
    return false;
}

} // namespace

// ---- Temporaries -----------------------------------------------------------------------------------------------

int ShaderTranslation::TranslateTemporaries()
{
    const int status = SplitOperands(",");
    if (status != 0) return status;
    if (pieces.empty()) return Fail("a declaration without a name");

    for (const ZALM::String& name : pieces)
        if (AddLine("float4 %1;", name) != 0) return kOutOfMemory;
    return 0;
}

// "UINT TEMP a, b": the type word and the names are separated by blanks.
int ShaderTranslation::TranslateIntegers()
{
    int status = SplitOperands(" ");
    if (status != 0) return status;

    const size_t first = !pieces.empty() && EqualsNoCase(View(pieces[0]), "TEMP") ? 1 : 0;
    if (pieces.size() <= first) return Fail("a declaration without a name");

    ZALM::Vector<ZALM::String> names;
    for (size_t i = first; i < pieces.size(); ++i) {
        status = ShaderString::SplitInto(names, pieces[i], ",");
        if (status != 0) return status;

        for (const ZALM::String& name : names)
            if (AddLine("uint4 %1;", name) != 0) return kOutOfMemory;
    }
    return 0;
}

// ---- Parameters ------------------------------------------------------------------------------------------------

int ShaderTranslation::TranslateParameter()
{
    int status = SplitOperands("=");
    if (status != 0) return status;
    if (pieces.size() != 2) return Fail("a parameter needs a name, one \"=\" and a value");

    ZALM::String name;
    status = TrimBrackets(name, View(pieces[0]));
    if (status != 0) return status;

    const ZALM::String initializer = pieces[1];
    if (initializer.IsEmpty()) return kOutOfMemory;

    std::string_view value = View(initializer);
    const bool braced = value.front() == '{';
    if (braced && FindClosingBrace(value) != value.size() - 1) return Fail("braces do not match");
    if (!braced && value.find_first_of("{},") != std::string_view::npos) return Fail("a list needs braces");

    if (braced) value = value.substr(1, value.size() - 2);

    const size_t bracket = View(name).find('[');
    if (bracket != std::string_view::npos) {
        if (View(name).back() != ']') return Fail("a bracket is not closed");

        const std::string_view room = View(name).substr(bracket + 1, View(name).size() - bracket - 2);
        return TranslateArray(name, ReadIndex(room), value);
    }

    ZALM::String written;
    if (braced) {
        status = ReadVector(written, true, value);
        return status != 0 ? status : AddLine("float4 %1 = %2;", name, written);
    }
    Operand operand;
    status = ReadSingleValue(operand, value);
    return status != 0 ? status : AddLine("float4 %1 = %2;", name, operand.Written());
}

// One operand; a range is one only when it has a single element.
int ShaderTranslation::ReadSingleValue(Operand& operand, std::string_view written)
{
    Range range;
    if (!ReadRange(range, written) || range.count != 1) return Fail("a range stands where one value fits");

    return ParseOperand(operand, View(RangeElement(range, 0)));
}

// The components of one vector. Alone, as the value of a parameter, four components that come from one binding are
// written without a constructor around them.
int ShaderTranslation::ReadVector(ZALM::String& vector, bool alone, std::string_view list)
{
    TextBuffer written;
    int components = 0;
    int operands = 0;
    Operand operand;
    for (std::string_view piece; TakePiece(piece, list, "{},"); ++operands) {
        const int status = ReadSingleValue(operand, piece);
        if (status != 0) return status;

        components += ComponentsOf(operand);
        if (components > kComponents) return Fail("more components than fit");
        if (operands > 0) written.Add(", ");
        written.AddString(operand.Written());
    }
    if (operands == 0) return Fail("braces are empty");

    // Kept on purpose: [param-fill] a component that the program leaves out is 0, the fourth one too.
    const bool whole = alone && operands == 1 && components == kComponents;
    for (; components < kComponents; ++components)
        written.Add(", 0");

    const int status = written.Store(vector);
    if (!whole) vector = ZALM::String("float4( %1 )").Arg(vector);
    return status;
}

// ---- Arrays of parameters --------------------------------------------------------------------------------------

// `room` is the number of elements that the program announces, negative when it announces none.
int ShaderTranslation::TranslateArray(const ZALM::String& name, long room, std::string_view value)
{
    TextBuffer list;
    long count = 0;
    while (!Trimmed(value).empty()) {
        value = Trimmed(value);
        const bool group = value.front() == '{';
        const size_t end = group ? FindClosingBrace(value) + 1 : std::min(value.find_first_of(",{}"), value.size());
        const std::string_view element = Trimmed(value.substr(0, end));
        value.remove_prefix(end);
        if (value.starts_with(',')) value.remove_prefix(1);
        if (element.empty()) continue;

        const int status = AddElements(list, count, element);
        if (status != 0) return status;
        if (room >= 0 && count > room) return Fail("more elements than fit");
    }
    if (count == 0) return Fail("braces are empty");

    ZALM::String elements;
    const int status = list.Store(elements);
    return status != 0 ? status : AddLine("float4 %1 = { %2 };", name, elements);
}

int ShaderTranslation::AddElements(TextBuffer& list, long& count, std::string_view element)
{
    if (element.front() == '{') {
        ZALM::String vector;
        const int status = ReadVector(vector, false, element);
        if (status == 0) AddElement(list, count, vector);
        return status;
    }

    Range range;
    if (!ReadRange(range, element)) return Fail("a range cannot be read");

    Operand operand;
    for (int which = 0; which < range.count; ++which) {
        const int status = ParseOperand(operand, View(RangeElement(range, which)));
        if (status != 0) return status;

        AddOperandElements(list, count, operand);
    }
    return 0;
}

// A number is a vector of that number, a matrix its four rows, anything else itself.
void ShaderTranslation::AddOperandElements(TextBuffer& list, long& count, const Operand& operand)
{
    const ZALM::String written = operand.Written();
    if (operand.param.scalar)
        AddElement(list, count, ZALM::String("float4( %1 )").Arg(written));
    else if (ComponentsOf(operand) == kMatrixComponents)
        for (const char* row : kRowTemplates)
            AddElement(list, count, ZALM::String(row).Arg(written));
    else
        AddElement(list, count, written);
}

void ShaderTranslation::AddElement(TextBuffer& list, long& count, const ZALM::String& element)
{
    if (count++ > 0) list.Add(", ");
    list.AddString(element);
}

} // namespace ZALMetal
