// SPDX-License-Identifier: Apache-2.0
// Tokens to operands, and operands to text.
#include "ProgramNormaliserRun.h"

#include <algorithm>

namespace ZALMetal
{
namespace
{

constexpr std::string_view kLetters = "xyzw";

// The letters of a swizzle that stand for what an instruction reads.
std::string LettersRead(const std::string& swizzle, Reads reads, const std::string& mask)
{
    std::string wide = swizzle.empty()       ? std::string(kLetters)
                       : swizzle.size() == 1 ? std::string(4, swizzle[0])
                                             : swizzle;
    switch (reads) {
    case Reads::First:
        return wide.substr(0, 1);
    case Reads::Two:
        return wide.substr(0, 2);
    case Reads::Three:
        return wide.substr(0, 3);
    case Reads::All:
        return wide;
    default:
        break;
    }
    std::string letters;
    for (size_t i = 0; i < kLetters.size() && i < wide.size(); ++i)
        if (mask.empty() || mask.find(kLetters[i]) != std::string::npos) letters += wide[i];
    return letters;
}

// A number as the shading language reads it as a float.
std::string FloatText(std::string_view number)
{
    const bool whole = number.find_first_of(".eE") == std::string_view::npos;
    return std::string(number) + (whole ? ".0" : "");
}

} // namespace

// ---- Text ----------------------------------------------------------------------------------------------------------

Source Source::Number(const char* text)
{
    Source source;
    source.text = text;
    source.number = true;
    return source;
}

std::string Source::Written() const
{
    std::string written = text;
    if (!swizzle.empty()) written += "." + swizzle;
    if (absolute) written = "|" + written + "|";
    return negative ? "-" + written : written;
}

Source Source::Component(int which) const
{
    Source component = *this;
    if (number) return component;

    const auto place = static_cast<size_t>(which);
    const std::string wide = swizzle.empty() ? std::string(kLetters) : swizzle;
    component.swizzle = std::string(1, wide.size() == 1 ? wide[0] : wide[std::min(place, wide.size() - 1)]);
    return component;
}

Source Source::Negated() const
{
    Source negated = *this;
    negated.negative = !negative;
    return negated;
}

std::string Destination::With(std::string_view letters) const
{
    return letters.empty() || letters.size() == kLetters.size() ? text : text + "." + std::string(letters);
}

Source Destination::Part(std::string_view letters) const
{
    Source source;
    source.text = text;
    source.swizzle = letters;
    return source;
}

bool Destination::IsReadBy(const std::vector<Source>& sources) const
{
    return std::any_of(sources.begin(), sources.end(), [this](const Source& source) { return source.text == text; });
}

// ---- Tokens --------------------------------------------------------------------------------------------------------

const Token& NormaliserRun::Look(size_t ahead) const
{
    return tokens[std::min(next + ahead, tokens.size() - 1)];
}

const Token& NormaliserRun::Take()
{
    const Token& token = Look();
    if (token.kind != TokenKind::End) ++next;
    return token;
}

bool NormaliserRun::IsMark(std::string_view mark) const
{
    return Look().kind == TokenKind::Mark && Look().text == mark;
}

bool NormaliserRun::TakeMark(std::string_view mark)
{
    const bool found = IsMark(mark);
    if (found) Take();
    return found;
}

void NormaliserRun::ExpectMark(std::string_view mark)
{
    if (!TakeMark(mark))
        Fail(Look(), "\"" + std::string(mark) + "\" is missing before \"" + std::string(Look().text) + "\"");
}

std::string_view NormaliserRun::ExpectWord(const char* what)
{
    if (Look().kind != TokenKind::Word)
        Fail(Look(), std::string(what) + " is missing before \"" + std::string(Look().text) + "\"");
    return Take().text;
}

void NormaliserRun::Fail(const Token& at, const std::string& text)
{
    throw NormaliserFault{at.line, at.column, text};
}

// ---- Sources -------------------------------------------------------------------------------------------------------

Source NormaliserRun::ReadSource()
{
    bool negative = TakeMark("-");
    if (!negative) TakeMark("+");
    const bool absolute = TakeMark("|");
    if (absolute && !TakeMark("-")) TakeMark("+");

    Source source;
    if (Look().kind == TokenKind::Number)
        source = ReadNumberSource();
    else if (IsMark("{"))
        source = ReadVectorSource();
    else
        source = ReadPathSource();
    source.negative = negative;
    source.absolute = absolute;
    if (absolute) ExpectMark("|");
    return source;
}

// The swizzle behind a constant, if there is one.
std::string NormaliserRun::ReadConstantSwizzle()
{
    const Token at = Look();
    if (!TakeMark(".")) return {};

    const Path path = {at, {PathPart{"a constant", false, 0, 0}, PathPart{ExpectWord("a swizzle"), false, 0, 0}}};
    Place place;
    TakeSwizzle(place, path, 1);
    return place.swizzle;
}

Source NormaliserRun::ReadNumberSource()
{
    Source source;
    source.number = true;
    source.text = FloatText(Take().text);
    ReadConstantSwizzle(); // all components are the number
    return source;
}

Source NormaliserRun::ReadVectorSource()
{
    Source source;
    source.text = ConstantFor(ReadVector());
    source.swizzle = ReadConstantSwizzle();
    return source;
}

Source NormaliserRun::ReadPathSource()
{
    const Path path = ReadPath();
    const Place place = Resolve(path);
    if (place.array || place.elements != 1) Fail(path.at, "several values stand where one fits");

    Source source;
    source.text = place.matrix ? RowText(place, place.firstRow) : place.text;
    source.swizzle = place.swizzle;
    source.normal = place.normal;
    return source;
}

// The standard's normal has a fourth component of 1; where it is read, a copy with that component stands in.
void NormaliserRun::GiveFourth(Source& source, Reads reads, const std::string& mask)
{
    if (!source.normal || LettersRead(source.swizzle, reads, mask).find('w') == std::string::npos) return;

    usesNormal = true;
    source.text = Helper("normal");
}

// ---- Destinations --------------------------------------------------------------------------------------------------

void NormaliserRun::ReadDestination(Destination& destination)
{
    const Path path = ReadPath();
    const Place place = Resolve(path);
    const bool result = place.text.starts_with("result.") || place.text == Helper("unread");
    if (place.matrix || (!place.temporary && !result)) Fail(path.at, "\"" + place.text + "\" cannot be written");
    if (place.elements != 1) Fail(path.at, "several values stand where one fits");
    if (IsMark("(")) Fail(Look(), "a mask by condition codes cannot be expressed");

    size_t last = 0;
    for (char letter : place.swizzle) {
        const size_t at = kLetters.find(letter) + 1;
        if (at <= last) Fail(path.at, "the letters of a mask stand in the order of x, y, z, w");
        last = at;
    }
    destination.text = place.text;
    destination.mask = place.swizzle;
    destination.temporary = place.temporary;
}

// ---- Constants -----------------------------------------------------------------------------------------------------

std::string NormaliserRun::ReadSignedNumber()
{
    const bool negative = TakeMark("-");
    if (!negative) TakeMark("+");
    if (Look().kind != TokenKind::Number)
        Fail(Look(), "a number is missing before \"" + std::string(Look().text) + "\"");

    return (negative ? "-" : "") + FloatText(Take().text);
}

// The standard fills a vector up with 0 and, in the fourth place, 1; a number alone is all four.
std::string NormaliserRun::ReadVector()
{
    constexpr size_t components = 4;
    const Token at = Look();
    std::vector<std::string> numbers;
    if (!TakeMark("{"))
        numbers.assign(components, ReadSignedNumber());
    else {
        do
            numbers.push_back(ReadSignedNumber());
        while (TakeMark(","));
        ExpectMark("}");
    }
    if (numbers.size() > components) Fail(at, "a vector has four components");

    while (numbers.size() < components)
        numbers.push_back(numbers.size() + 1 == components ? "1.0" : "0.0");
    return "{ " + numbers[0] + ", " + numbers[1] + ", " + numbers[2] + ", " + numbers[3] + " }";
}

// Equal vectors share one parameter.
std::string NormaliserRun::ConstantFor(const std::string& vector)
{
    const auto known = constants.find(vector);
    if (known != constants.end()) return known->second;

    std::string name = Helper("c") + std::to_string(constants.size());
    constants.emplace(vector, name);
    firstLines.push_back("PARAM " + name + " = " + vector);
    return name;
}

} // namespace ZALMetal
