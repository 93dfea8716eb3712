// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

namespace NS
{

/// Owns one reference.
template <class Class>
class SharedPtr
{
public:
    SharedPtr() = default;
    SharedPtr(std::nullptr_t) {}
    SharedPtr(const SharedPtr& other) : object_(other.object_)
    {
        if (object_) object_->retain();
    }
    SharedPtr(SharedPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~SharedPtr() { reset(); }
    SharedPtr& operator=(SharedPtr other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    Class* get() const { return object_; }
    Class* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Gives the reference to the caller.
    Class* detach() { return std::exchange(object_, nullptr); }
    void reset()
    {
        if (object_) object_->release();
        object_ = nullptr;
    }

    template <class C>
    friend SharedPtr<C> TransferPtr(C* object);

private:
    Class* object_ = nullptr;
};

/// Takes over a reference.
template <class Class>
SharedPtr<Class> TransferPtr(Class* object)
{
    SharedPtr<Class> result;
    result.object_ = object;
    return result;
}

/// Adds a reference.
template <class Class>
SharedPtr<Class> RetainPtr(Class* object)
{
    if (object) object->retain();
    return TransferPtr(object);
}

template <class A, class B>
bool operator==(const SharedPtr<A>& a, const SharedPtr<B>& b)
{
    return a.get() == b.get();
}

}
