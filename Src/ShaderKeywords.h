// SPDX-License-Identifier: Apache-2.0
// The tree of bindings that an assembly program may name. ShaderString owns the tree (one per program kind) and fills
// it on the first translation; this header holds only what a node is.
#pragma once

#include "foundation/String.h"
#include "foundation/Vector.h"

#include <array>
#include <string_view>

namespace ZALMetal
{

enum SHADER_PROGRAM : int
{
    VERTEX_PROGRAM = 0,
    FRAGMENT_PROGRAM = 1,
};

enum KEYWORD_TYPE : int
{
    KEYWORD_PLAIN = 0,        // the text is replaced, nothing else
    KEYWORD_ATTRIBUTE = 1,    // marks a vertex attribute as used
    KEYWORD_RESULT_COLOR = 2, // marks a colour output as written
};

// One dot-separated component of a binding: "state.matrix.mvp.row[#]" is the path state, matrix, mvp, row.
struct ARBKeyWord
{
    ZALM::String name;        // without "[#]"
    bool indexed = false;     // the component takes any index
    ZALM::String replacement; // empty when the path to here is not itself a binding
    KEYWORD_TYPE type = KEYWORD_PLAIN;
    int index = -1;                     // attribute or colour output; -1 for none
    ZALM::Vector<ARBKeyWord*> children; // owned
};

struct ShaderBindings;

// An operand looked up in a tree.
struct KeywordMatch
{
    const ARBKeyWord* keyword = nullptr;       // null when the operand names no binding
    std::array<std::string_view, 5> indices{}; // what stood in brackets, by component; only replacements' positions
    std::string_view rest;                     // the components behind the binding, without the first "."
};

KeywordMatch MatchKeyWord(const ZALM::Vector<ARBKeyWord*>& roots, std::string_view operand);

// The replacement text with its placeholders filled, without the components behind the binding. 0, or 2 when out of
// memory.
int WriteKeyWord(ZALM::String& out, const KeywordMatch& match);

// Notes in `bindings` what the use of a binding means.
void MarkKeyWord(ShaderBindings& bindings, const KeywordMatch& match);

// A binding that names all four rows of a matrix.
bool IsWholeMatrix(const ARBKeyWord& keyword);

// The last "." that does not stand in brackets; npos when there is none.
size_t FindLastDot(std::string_view operand);

} // namespace ZALMetal
