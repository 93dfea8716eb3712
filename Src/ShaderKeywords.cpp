// SPDX-License-Identifier: Apache-2.0
#include "ShaderKeywords.h"

#include "KeywordTable.h"
#include "ShaderBindings.h"
#include "ShaderString.h"
#include "ShaderText.h"

#include <algorithm>
#include <new>

namespace ZALMetal
{
namespace
{

constexpr std::string_view kAnyIndex = "[#]";

constexpr int kNoComponent = 6;

// The first generic attribute that is a texture coordinate, and their number.
constexpr int kFirstTexcoord = 8;
constexpr int kTexcoords = 8;

// One component of an operand, "row[1]" or "xyz".
struct Component
{
    std::string_view name;
    std::string_view index;
    bool hasIndex = false;
};

Component ReadComponent(std::string_view text)
{
    text = Trimmed(text);
    const size_t open = text.find('[');
    if (open == std::string_view::npos || text.back() != ']') return {text, {}, false};

    return {Trimmed(text.substr(0, open)), Trimmed(text.substr(open + 1, text.size() - open - 2)), true};
}

// The first "." that does not stand in brackets.
size_t FindDot(std::string_view text)
{
    int depth = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '[') ++depth;
        if (text[at] == ']') --depth;
        if (text[at] == '.' && depth == 0) return at;
    }
    return std::string_view::npos;
}

// Cuts the first component off that is not empty; false at the end.
bool TakeComponent(Component& component, std::string_view& rest)
{
    while (!rest.empty()) {
        const size_t dot = std::min(FindDot(rest), rest.size());
        const std::string_view text = rest.substr(0, dot);
        rest.remove_prefix(std::min(dot + 1, rest.size()));
        component = ReadComponent(text);
        if (!Trimmed(text).empty()) return true;
    }
    return false;
}

// "color[3]" for a component with the index 3, whatever blanks stood in its brackets.
bool IsWholeName(std::string_view name, const Component& component)
{
    const size_t stem = component.name.size();
    if (!component.hasIndex || name.size() != stem + component.index.size() + 2) return false;

    return StartsWithNoCase(name, component.name) && name[stem] == '[' &&
           EqualsNoCase(name.substr(stem + 1, component.index.size()), component.index) && name.back() == ']';
}

// A component is looked up with its index first, then without.
const ARBKeyWord* FindChild(const ZALM::Vector<ARBKeyWord*>& children, const Component& component)
{
    for (const ARBKeyWord* child : children)
        if (IsWholeName(View(child->name), component)) return child;
    for (const ARBKeyWord* child : children)
        if (EqualsNoCase(View(child->name), component.name)) return child;
    return nullptr;
}

// The child of that name, made when there is none; null when out of memory.
ARBKeyWord* AddChild(ZALM::Vector<ARBKeyWord*>& children, const ZALM::String& name, bool indexed)
{
    if (name.MemorySize() == 0) return nullptr;

    for (ARBKeyWord* child : children)
        if (child->name.CompareNoCase(name) == 0) {
            child->indexed |= indexed;
            return child;
        }

    auto* added = new (std::nothrow) ARBKeyWord;
    if (!added) return nullptr;

    added->name = name;
    added->indexed = indexed;
    if (added->name.MemorySize() > 0 && children.push_back(added) == 0) return added;

    delete added;
    return nullptr;
}

} // namespace

// ---- The tree --------------------------------------------------------------------------------------------------

ZALM::Vector<ARBKeyWord*> ShaderString::_arb_keys[2];

namespace
{

// The tree is the process's own; given back with it, so that a leak checker sees only real leaks.
const struct TreeOwner
{
    TreeOwner() {}
    ~TreeOwner() { ShaderString::ReleaseGLSLTranslation(); }
} g_treeOwner;

} // namespace

int ShaderString::InitializeGLSLTranslation()
{
    if (!_arb_keys[VERTEX_PROGRAM].empty() || !_arb_keys[FRAGMENT_PROGRAM].empty()) return 0;

    for (const KeywordRow& row : kKeywordRows) {
        const int status = AddARBKeyWord(row.program, row.binding, row.replacement, row.type, row.index);
        if (status == 0) continue;

        ReleaseGLSLTranslation(); // half a table would pass for a whole one at the next call
        return status;
    }
    return 0;
}

int ShaderString::AddARBKeyWord(SHADER_PROGRAM kind, const ZALM::String& binding, const ZALM::String& replacement,
                                KEYWORD_TYPE type, int index)
{
    ZALM::Vector<ZALM::String> components;
    const int status = SplitInto(components, binding, ".");
    if (status != 0 || replacement.MemorySize() == 0) return ZALM::OutOfMemory;

    ZALM::Vector<ARBKeyWord*>* level = &_arb_keys[kind];
    ARBKeyWord* node = nullptr;
    for (const ZALM::String& component : components) {
        std::string_view name = View(component);
        const bool indexed = name.find(kAnyIndex) != std::string_view::npos;
        if (indexed) name = name.substr(0, name.find(kAnyIndex));

        node = AddChild(*level, ZALMetal::Text(name), indexed);
        if (!node) return ZALM::OutOfMemory;
        level = &node->children;
    }
    if (!node) return kNoComponent;

    node->replacement = replacement;
    node->type = type;
    node->index = index;
    return node->replacement.MemorySize() > 0 ? 0 : ZALM::OutOfMemory;
}

void ShaderString::ReleaseGLSLTranslation()
{
    for (ZALM::Vector<ARBKeyWord*>& roots : _arb_keys) {
        for (ARBKeyWord* root : roots)
            ReleaseARBKeyWord(root);
        roots.clear();
    }
}

void ShaderString::ReleaseARBKeyWord(ARBKeyWord* keyword)
{
    if (!keyword) return;

    for (ARBKeyWord* child : keyword->children)
        ReleaseARBKeyWord(child);
    delete keyword;
}

// ---- Looking up ------------------------------------------------------------------------------------------------

KeywordMatch MatchKeyWord(const ZALM::Vector<ARBKeyWord*>& roots, std::string_view operand)
{
    KeywordMatch match;
    std::array<std::string_view, 5> indices{};
    const ZALM::Vector<ARBKeyWord*>* level = &roots;
    Component component;
    for (size_t position = 0; TakeComponent(component, operand); ++position) {
        const ARBKeyWord* node = FindChild(*level, component);
        if (!node) break;

        // An index that the binding does not take is dropped here: no placeholder asks for it.
        if (position < indices.size()) indices[position] = component.index;
        if (!node->replacement.IsEmpty()) match = {node, indices, Trimmed(operand)};
        level = &node->children;
    }
    return match;
}

int WriteKeyWord(ZALM::String& out, const KeywordMatch& match)
{
    TextBuffer text;
    std::string_view rest = View(match.keyword->replacement);
    for (size_t at = rest.find('#'); at != std::string_view::npos; at = rest.find('#')) {
        const size_t position = at + 1 < rest.size() ? static_cast<size_t>(rest[at + 1] - '0') : 0;
        const std::string_view index = position < match.indices.size() ? match.indices[position] : std::string_view();
        text.Add(rest.substr(0, at));
        text.Add(index.empty() ? "0" : index);
        rest.remove_prefix(std::min(at + 2, rest.size()));
    }
    text.Add(rest);
    return text.Store(out);
}

void MarkKeyWord(ShaderBindings& bindings, const KeywordMatch& match)
{
    const ARBKeyWord& keyword = *match.keyword;
    const uint32_t bit = uint32_t{1} << (static_cast<uint32_t>(keyword.index) % 32);
    if (keyword.type == KEYWORD_RESULT_COLOR) bindings.colorMask |= bit;
    if (keyword.type != KEYWORD_ATTRIBUTE) return;

    bindings.attributeMask |= bit;
    if (!keyword.indexed) return;

    // The attribute follows from the program's own index, which the table cannot hold.
    const int texcoord = match.indices[1].empty() ? 0 : ReadIndex(match.indices[1]);
    if (texcoord >= 0 && texcoord < kTexcoords) bindings.attributeMask |= uint32_t{1} << (kFirstTexcoord + texcoord);
}

bool IsWholeMatrix(const ARBKeyWord& keyword)
{
    for (const ARBKeyWord* child : keyword.children)
        if (child->indexed && EqualsNoCase(View(child->name), "row")) return true;
    return false;
}

size_t FindLastDot(std::string_view operand)
{
    size_t last = std::string_view::npos;
    for (size_t at = FindDot(operand); at != std::string_view::npos;) {
        last = at;
        const size_t more = FindDot(operand.substr(at + 1));
        at = more == std::string_view::npos ? more : at + 1 + more;
    }
    return last;
}

int ShaderString::TranslateARBKeyWords(ZALM::String& out, ZALM::String& operand, ShaderBindings& bindings,
                                       SHADER_PROGRAM kind, const ZALM::String& /*context*/) const
{
    int status = InitializeGLSLTranslation();
    if (status != 0) return status;

    const KeywordMatch match = MatchKeyWord(_arb_keys[kind], View(operand));
    if (match.keyword) {
        MarkKeyWord(bindings, match);
        ZALM::String rewritten;
        status = WriteKeyWord(rewritten, match);
        if (status != 0) return status;

        if (!match.rest.empty()) AddInstruction(rewritten, ".%1", ZALMetal::Text(match.rest));
        operand = rewritten;
    }
    out = operand;
    return out.MemorySize() > 0 ? 0 : ZALM::OutOfMemory;
}

} // namespace ZALMetal
