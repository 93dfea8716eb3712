// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

class Array;

namespace Private
{
SOFTMETAL_API Object* nextObject(const void* enumerator);
SOFTMETAL_API Array* allObjects(const void* enumerator);
}

/// Gives a collection's objects one after the other.
template <class Class>
class Enumerator : public Referencing<Enumerator<Class>>
{
public:
    /// Null after the last.
    Class* nextObject() { return static_cast<Class*>(Private::nextObject(this)); }
    /// Those that have not been given yet.
    Array* allObjects() { return Private::allObjects(this); }
};

}
