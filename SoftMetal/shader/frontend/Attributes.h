// SPDX-License-Identifier: Apache-2.0
// The shading language's [[attributes]]: clang calls us for each, and we note it beside the declaration it stands on.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace clang {
class Decl;
class ValueDecl;
}

namespace softmetal::shader {

struct Attribute
{
    std::string name;
    std::vector<int64_t> numbers;             // integer arguments in order
    std::vector<std::string> words;           // identifier arguments in order
    const clang::ValueDecl* constant = nullptr; // the declaration that an identifier argument names, if any
};

/// Attributes by declaration, for one compilation.
using AttributeTable = std::unordered_map<const clang::Decl*, std::vector<Attribute>>;

/// Makes the attributes known to clang; called once for the process.
void registerAttributes();

/// Attributes of compilations on this thread go into the table until the next call; null stops.
void collectAttributes(AttributeTable* table);

/// The first attribute of that name on the declaration, null when there is none.
const Attribute* findAttribute(const AttributeTable& table, const clang::Decl* declaration, const char* name);

} // namespace softmetal::shader
