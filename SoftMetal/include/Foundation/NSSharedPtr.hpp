// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace NS
{

/// Owns one reference.
template <class Class>
class SharedPtr
{
    template <class Other>
    using IfConvertible = std::enable_if_t<std::is_convertible_v<Other*, Class*>>;

public:
    SharedPtr() = default;
    SharedPtr(std::nullptr_t) {}
    SharedPtr(const SharedPtr& other) noexcept : object_(retained(other.object_)) {}
    SharedPtr(SharedPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class Other, class = IfConvertible<Other>>
    SharedPtr(const SharedPtr<Other>& other) noexcept : object_(retained(other.get()))
    {}
    template <class Other, class = IfConvertible<Other>>
    SharedPtr(SharedPtr<Other>&& other) noexcept : object_(other.get())
    {
        other.detach();
    }
    ~SharedPtr() { reset(); }

    SharedPtr& operator=(SharedPtr other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    Class* get() const { return object_; }
    Class* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Forgets the object without giving the reference back.
    void detach() { object_ = nullptr; }
    void reset()
    {
        if (object_) object_->release();
        object_ = nullptr;
    }

    template <class Other>
    friend SharedPtr<Other> TransferPtr(Other* object);

private:
    template <class Other>
    static Class* retained(Other* object)
    {
        return object ? static_cast<Class*>(object->retain()) : nullptr;
    }

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
