// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

/// Immutable; holds a reference to each of its objects.
class SOFTMETAL_API Array : public Copying<Array>
{
public:
    static Array* array();
    static Array* array(const Object* object);
    static Array* array(const Object* const* objects, UInteger count);
    static Array* alloc();
    Array* init();
    Array* init(const Object* const* objects, UInteger count);
    /// The object at the index, null beyond the end.
    template <class Class = Object>
    Class* object(UInteger index) const
    {
        return static_cast<Class*>(objectAt(index));
    }
    UInteger count() const;

private:
    Object* objectAt(UInteger index) const;
};

}
