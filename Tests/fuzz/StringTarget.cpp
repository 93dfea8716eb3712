// SPDX-License-Identifier: Apache-2.0
// String::Arg and ShaderString::Split on any bytes. The first byte chooses the call, the second the length of its first
// text; the rest is its second.
#include "fuzz/Input.h"

#include "ShaderString.h"

#include <cstring>

using namespace ZALMetal;

namespace
{

ZALM::String stringOf(std::string_view text)
{
    return ZALM::String(text.data(), static_cast<unsigned>(text.size()));
}

std::string_view viewOf(const ZALM::String& text)
{
    return {text.Buffer(), static_cast<size_t>(text.GetStringBytes())};
}

// Every piece stands in the text, in order, without blanks at its ends and without the separator.
void checkSplit(std::string_view first, std::string_view second)
{
    const ZALM::String separator = stringOf(first);
    const ZALM::String text = stringOf(second);
    ZALM::Vector<ZALM::String> pieces;
    ShaderString::Split(pieces, text, separator);

    std::string_view rest = viewOf(text);
    for (const ZALM::String& piece : pieces) {
        const std::string_view found = viewOf(piece);
        fuzz::require(!found.empty() && found.front() != ' ' && found.back() != ' ');
        fuzz::require(separator.IsEmpty() || found.find(viewOf(separator)) == std::string_view::npos);

        const size_t at = rest.find(found);
        fuzz::require(at != std::string_view::npos);
        rest.remove_prefix(at + found.size());
    }
}

template <class Value>
void fill(std::string_view text, Value value)
{
    ZALM::String filled = stringOf(text);
    filled.Arg(value);
    fuzz::require(viewOf(filled).size() <= text.size() * 1100 + 1); // a double has at most 317 characters
}

// Filling twice must end, whatever placeholders the value itself holds.
void checkArg(std::string_view value, std::string_view text)
{
    ZALM::String filled = stringOf(text);
    const ZALM::String argument = stringOf(value);
    filled.Arg(argument);
    fuzz::require(value.find('%') != std::string_view::npos || text.find('%') != std::string_view::npos ||
                  filled == stringOf(text));
    filled.Arg(argument);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const int call = input.byte() % 6;
    const std::string_view first = input.take(input.byte());
    const std::string_view second = input.rest();

    double number = 0;
    if (!first.empty()) std::memcpy(&number, first.data(), first.size() < sizeof number ? first.size() : sizeof number);
    switch (call) {
    case 0:
        checkSplit(first, second);
        break;
    case 1:
        checkArg(first, second);
        break;
    case 2:
        fill(second, number);
        break;
    case 3:
        fill(second, static_cast<int>(first.size()));
        break;
    case 4:
        fill(second, -static_cast<long>(first.size()) * 0x7FFFFFFFFFFF);
        break;
    default:
        fill(second, static_cast<unsigned long>(first.size()) * 0x7FFFFFFFFFFF);
        break;
    }
    return 0;
}
