// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSEnumerator.hpp"
#include "NSObject.hpp"

namespace NS
{

/// Immutable; keys are compared with isEqual. Holds a reference to each key and object.
class SOFTMETAL_API Dictionary : public Copying<Dictionary>
{
public:
    static Dictionary* dictionary();
    static Dictionary* dictionary(const Object* object, const Object* key);
    static Dictionary* dictionary(const Object* const* objects, const Object* const* keys, UInteger count);
    static Dictionary* alloc();
    Dictionary* init();
    Dictionary* init(const Object* const* objects, const Object* const* keys, UInteger count);
    /// The object for the key, null when there is none.
    template <class Class = Object>
    Class* object(const Object* key) const
    {
        return static_cast<Class*>(objectFor(key));
    }
    /// The keys, in the order in which they were given.
    template <class Class = Object>
    Enumerator<Class>* keyEnumerator() const
    {
        return static_cast<Enumerator<Class>*>(keys());
    }
    UInteger count() const;

private:
    Object* objectFor(const Object* key) const;
    Object* keys() const;
};

}
