// SPDX-License-Identifier: Apache-2.0
// The root of the API's objects. An API pointer is opaque: it is the address of the library's own object, and its
// reference count is the object's. Nothing can be derived from these classes, and none is made but by alloc() or a call.
#pragma once

#include "NSObjCRuntime.hpp"
#include "NSTypes.hpp"

namespace NS
{

class Object;
class String;

namespace Private
{
SOFTMETAL_API void retain(const void* object);
SOFTMETAL_API void release(const void* object);
SOFTMETAL_API void autorelease(const void* object);
SOFTMETAL_API UInteger retainCount(const void* object);
SOFTMETAL_API void* copy(const void* object);
}

/// Reference counting: alloc, new…, copy and retain give a reference that release gives back.
template <class Class, class Base = Object>
class Referencing : public Base
{
public:
    Class* retain()
    {
        Private::retain(this);
        return static_cast<Class*>(this);
    }
    void release() { Private::release(this); }
    /// Releases when the thread's innermost pool is drained.
    Class* autorelease()
    {
        Private::autorelease(this);
        return static_cast<Class*>(this);
    }
    UInteger retainCount() const { return Private::retainCount(this); }
};

/// An object that can be copied; the copy belongs to the caller.
template <class Class, class Base = Object>
class Copying : public Referencing<Class, Base>
{
public:
    Class* copy() const { return static_cast<Class*>(Private::copy(this)); }
};

class SOFTMETAL_API Object : public Referencing<Object, objc_object>
{
public:
    UInteger hash() const;
    bool isEqual(const Object* object) const;
    String* description() const;
    String* debugDescription() const;

    Object() = delete;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
};

}
