// SPDX-License-Identifier: Apache-2.0
// The base of every object behind the API. An API pointer is the address of the Object part of an implementation; cast()
// and api() are the only ways from one to the other.
//
// An implementation class names its API class:
//     class BufferObject final : public ObjectOf<MTL::Buffer> { … };
//     BufferObject* mine = cast<BufferObject>(buffer);      // null stays null
//     MTL::Buffer* theirs = api(mine);
#pragma once

#include <Foundation/Foundation.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace softmetal {

class Object
{
public:
    Object();
    virtual ~Object();
    Object& operator=(const Object&) = delete;

    void retain() const
    {
        if (references_.fetch_add(1, std::memory_order_relaxed) == 0) [[unlikely]]
            revive("retain");
    }
    void release() const;
    NS::UInteger retainCount() const { return references_.load(std::memory_order_relaxed); }
    /// True for the remains of an object whose last reference was given back; only a quarantine (Quarantine.h) leaves any.
    bool isReleased() const { return retainCount() == 0; }

    virtual const char* className() const = 0; // the API's name, "MTLBuffer"
    virtual std::string description() const;
    /// The caller owns the result. Null where the class has no copies; an immutable object answers sameAgain(*this).
    virtual Object* copy() const { return nullptr; }
    virtual bool isEqual(const Object* other) const { return this == other; }
    virtual NS::UInteger hash() const { return reinterpret_cast<NS::UInteger>(this); }

    /// Objects alive in the process, for leak checks.
    static int64_t alive();
    /// The same by API class ("MTL::Buffer"), in the order of the names; classes that have had no object are missing.
    static std::vector<std::pair<std::string, int64_t>> aliveByClass();

    /// Destroys an object and gives its memory to the quarantine.
    void operator delete(Object* object, std::destroying_delete_t, std::align_val_t alignment);

protected:
    Object(const Object&) : Object() {} // a copy starts with a reference count of its own
    struct Remains
    {};
    explicit Object(Remains) : references_(0) {}
    void makeImmortal();
    /// The count of the objects of a class.
    static std::atomic<int64_t>& classCounter(const std::type_info& apiClass);

private:
    void revive(const char* call) const;

    mutable std::atomic<NS::UInteger> references_{1};
};

/// The copy of an immutable object: another reference to it.
template <class Implementation>
Object* sameAgain(const Implementation& object)
{
    object.retain();
    return const_cast<Implementation*>(&object);
}

/// Base of the class that implements an API class.
template <class Api>
class ObjectOf : public Object
{
public:
    using ApiClass = Api;
    /// From now on the object is never destroyed and not counted as alive: for constants.
    void makeImmortal()
    {
        Object::makeImmortal();
        counter().fetch_sub(1, std::memory_order_relaxed);
    }
    ~ObjectOf() override { counter().fetch_sub(1, std::memory_order_relaxed); }

protected:
    ObjectOf() { counter().fetch_add(1, std::memory_order_relaxed); }
    ObjectOf(const ObjectOf& other) : Object(other) { counter().fetch_add(1, std::memory_order_relaxed); }

private:
    static std::atomic<int64_t>& counter()
    {
        static std::atomic<int64_t>& count = classCounter(typeid(Api));
        return count;
    }
};

/// From an API pointer to the implementation; the caller knows which class it is. Null stays null.
template <class Implementation, class Api>
Implementation* cast(const Api* object)
{
    auto* base = const_cast<Object*>(reinterpret_cast<const Object*>(object));
    return static_cast<Implementation*>(base);
}

inline Object* castObject(const void* object) { return const_cast<Object*>(static_cast<const Object*>(object)); }

template <class Implementation>
typename Implementation::ApiClass* api(const Implementation* object)
{
    auto* base = const_cast<Object*>(static_cast<const Object*>(object));
    return reinterpret_cast<typename Implementation::ApiClass*>(base);
}

/// Owns one reference to an implementation object.
template <class T>
class Ref
{
public:
    Ref() = default;
    /// Adds a reference.
    explicit Ref(T* object) : object_(object)
    {
        if (object_) object_->retain();
    }
    Ref(const Ref& other) : Ref(other.object_) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~Ref()
    {
        if (object_) object_->release();
    }
    Ref& operator=(Ref other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }
    /// Takes over the caller's reference.
    static Ref adopt(T* object)
    {
        Ref result;
        result.object_ = object;
        return result;
    }
    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }
    T* detach() { return std::exchange(object_, nullptr); }

private:
    T* object_ = nullptr;
};

using ObjectRef = Ref<Object>;

/// Autoreleases and hands out: for calls that return an object the caller does not own.
template <class Implementation>
typename Implementation::ApiClass* autoreleased(Implementation* object)
{
    auto* result = api(object);
    NS::Private::autorelease(result);
    return result;
}

} // namespace softmetal
