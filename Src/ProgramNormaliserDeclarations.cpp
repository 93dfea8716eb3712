// SPDX-License-Identifier: Apache-2.0
// Declarations: names of registers stay, names of bindings give way to what they stand for.
#include "ProgramNormaliserRun.h"

namespace ZALMetal
{

bool NormaliserRun::ReadDeclaration()
{
    const Token word = Look();
    const bool temporary = Look(1).text == "TEMP";
    if (word.text == "TEMP") {
        Take();
        ReadTemporaries(false);
    } else if (temporary &&
               (word.text == "UINT" || word.text == "FLOAT" || word.text == "SHORT" || word.text == "LONG")) {
        Take();
        Take();
        ReadTemporaries(word.text == "UINT");
    } else if (word.text == "UINT") {
        Take();
        ReadTemporaries(true);
    } else if (word.text == "PARAM") {
        Take();
        ReadParameter();
    } else if (word.text == "ATTRIB" || word.text == "OUTPUT") {
        Take();
        ReadBindingName();
    } else if (word.text == "ALIAS") {
        Take();
        ReadAlias();
    } else if (word.text == "ADDRESS")
        Fail(word, kAddressRegisters);
    else
        return false;
    return true;
}

// A name is known to the end of the program, also when it is declared inside a block.
void NormaliserRun::AddDeclaration(const std::string& line)
{
    (blocks.empty() ? lines : firstLines).push_back(line);
}

void NormaliserRun::ReadTemporaries(bool integers)
{
    std::string line = integers ? "UINT TEMP" : "TEMP";
    const char* separator = " ";
    do {
        const Token at = Look();
        const std::string name = NewName(ExpectWord("a name"));
        if (IsMark("[")) Fail(Look(), "arrays of temporaries cannot be expressed");
        Declare(at, {Variable::Temporary, name, false, 0});
        line += separator + name;
        separator = ", ";
    } while (TakeMark(","));
    AddDeclaration(line);
}

// "ATTRIB name = binding": the name stands for the binding from here on.
void NormaliserRun::ReadBindingName()
{
    const Token name = Look();
    ExpectWord("a name");
    if (IsMark("[")) Fail(Look(), "arrays of attributes and results cannot be expressed");
    ExpectMark("=");

    const Path path = ReadPath();
    const Place place = Resolve(path);
    const bool input = place.text.starts_with("vertex.") || place.text.starts_with("fragment.");
    const bool result = place.text.starts_with("result.") || place.text == Helper("unread");
    if (place.matrix || place.elements != 1 || !place.swizzle.empty() || (!input && !result))
        Fail(path.at, "neither an attribute nor a result");
    Declare(name, {Variable::Binding, place.text, place.normal, 0});
}

void NormaliserRun::ReadAlias()
{
    const Token name = Look();
    ExpectWord("a name");
    ExpectMark("=");
    const Token other = Look();
    const auto known = variables.find(other.text);
    if (known != variables.end()) {
        Take();
        return Declare(name, Variable(known->second));
    }
    next -= 2; // "ALIAS name = result.position" is seen too, and means what ATTRIB and OUTPUT mean
    ReadBindingName();
}

// ---- Parameters ----------------------------------------------------------------------------------------------------

void NormaliserRun::ReadParameter()
{
    const Token name = Look();
    ExpectWord("a name");
    if (!TakeMark("[")) return ReadSingleParameter(name);

    const int room = IsMark("]") ? -1 : ReadNumberIndex();
    ExpectMark("]");
    ReadArrayParameter(name, room);
}

void NormaliserRun::ReadSingleParameter(const Token& name)
{
    const std::string newName = NewName(name.text);
    ExpectMark("=");
    std::string value;
    if (Look().kind == TokenKind::Word) {
        const Path path = ReadPath();
        const Place place = Resolve(path);
        if (!place.parameter || place.array) Fail(path.at, "neither a constant nor a parameter");
        if (place.elements != 1) Fail(path.at, "several values stand where one fits");
        if (!place.swizzle.empty()) Fail(path.at, "a parameter is a whole vector");
        value = place.matrix ? RowText(place, place.firstRow) : place.text;
    } else
        value = ReadVector();
    Declare(name, {Variable::Parameter, newName, false, 0});
    AddDeclaration("PARAM " + newName + " = " + value);
}

void NormaliserRun::ReadArrayParameter(const Token& name, int room)
{
    std::vector<std::string> elements;
    int count = 0;
    ExpectMark("=");
    ExpectMark("{");
    do
        ReadElement(elements, count);
    while (TakeMark(","));
    ExpectMark("}");
    if (room >= 0 && count != room)
        Fail(name, "the array has room for " + std::to_string(room) + ", not for " + std::to_string(count));

    const std::string newName = NewName(name.text);
    Declare(name, {Variable::Array, newName, false, count});
    std::string line = "PARAM " + newName + "[" + std::to_string(count) + "] = { ";
    for (size_t i = 0; i < elements.size(); ++i)
        line += (i > 0 ? ", " : "") + elements[i];
    AddDeclaration(line + " }");
}

// A vector, a binding, a range of parameters or rows, or a whole matrix.
void NormaliserRun::ReadElement(std::vector<std::string>& elements, int& count)
{
    constexpr int kMostElements = 4096;
    const Token at = Look();
    if (at.kind != TokenKind::Word) {
        elements.push_back(ReadVector());
        ++count;
        return;
    }
    const Path path = ReadPath();
    const Place place = Resolve(path);
    if (!place.parameter || place.array) Fail(at, "neither a constant nor a parameter");
    if (!place.swizzle.empty()) Fail(at, "an element is a whole vector");

    count += place.elements;
    if (count > kMostElements) Fail(at, "the array is too long");

    const bool inverse = place.text == "state.matrix.modelview.inverse";
    if (place.matrix && place.elements == 4 && inverse)
        elements.push_back(place.text); // the only form whose rows are right
    else if (place.matrix)
        for (int row = place.firstRow; row <= place.lastRow; ++row)
            elements.push_back(RowText(place, row));
    else
        elements.push_back(place.text);
}

} // namespace ZALMetal
