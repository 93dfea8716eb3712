// SPDX-License-Identifier: Apache-2.0
// Arrays and dictionaries: immutable, they hold a reference to each of their objects.
#pragma once

#include "foundation/Object.h"

#include <utility>
#include <vector>

namespace softmetal {

class ArrayObject final : public ObjectOf<NS::Array>
{
public:
    std::vector<ObjectRef> items;

    const char* className() const override { return "NSArray"; }
    std::string description() const override; // "(a, b)"
    Object* copy() const override { return sameAgain(*this); }
    bool isEqual(const Object* other) const override;
    NS::UInteger hash() const override { return items.size(); }
};

class DictionaryObject final : public ObjectOf<NS::Dictionary>
{
public:
    struct Entry
    {
        ObjectRef key, value;
    };
    std::vector<Entry> entries; // no two keys are equal

    /// Takes the place of an equal key's value.
    void set(const Object* key, const Object* value);
    /// Null when there is none.
    Object* find(const Object* key) const;

    const char* className() const override { return "NSDictionary"; }
    std::string description() const override; // "{key = value; }"
    Object* copy() const override { return sameAgain(*this); }
    bool isEqual(const Object* other) const override;
    NS::UInteger hash() const override { return entries.size(); }
};

} // namespace softmetal
