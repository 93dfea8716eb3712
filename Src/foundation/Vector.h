// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/Allocate.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

namespace ZALM
{

/// A growable array. Elements are moved by copying their bytes, so T must bear that. Nothing throws: what may run out
/// of memory returns a status (0, or 2 with the vector unchanged). Copying a vector has no status; the target of an
/// assignment that fails stays as it was, a copy that fails is empty.
template <class T>
class Vector
{
public:
    /// Constructs and destroys elements in place.
    struct VectorObject
    {
        T value;
        VectorObject() : value() {}
        explicit VectorObject(const T& v) : value(v) {}
        static void* operator new(size_t, void* place) noexcept { return place; }
        static void operator delete(void*, void*) noexcept {}
        static void operator delete(void*) noexcept {}
    };

    Vector() = default;
    Vector(const Vector& other) { *this = other; }
    virtual ~Vector() { release(); }

    Vector& operator=(const Vector& other)
    {
        if (this == &other || reserve(other.count) != Success) return *this;
        clear();
        for (size_t i = 0; i < other.count; ++i)
            new (data + i) VectorObject(other.data[i]);
        count = other.count;
        return *this;
    }

    /// The value may be an element of this vector.
    int push_back(const T& value)
    {
        if (count < capacity) {
            new (data + count++) VectorObject(value);
            return Success;
        }
        const size_t own = indexOf(value);
        if (int status = grow()) return status;
        new (data + count) VectorObject(own < count ? data[own] : value);
        ++count;
        return Success;
    }

    int resize(size_t size)
    {
        if (int status = reserve(size)) return status;
        while (count > size)
            data[--count].~T();
        while (count < size)
            new (data + count++) VectorObject();
        return Success;
    }

    /// Makes room without adding elements.
    int reserve(size_t size) { return size <= capacity ? Success : setCapacity(size); }

    /// Removes one element; the ones behind it move up. An index beyond the end does nothing.
    void erase(size_t index)
    {
        if (index >= count) return;
        data[index].~T();
        --count;
        std::memmove(static_cast<void*>(data + index), static_cast<const void*>(data + index + 1),
                     (count - index) * sizeof(T));
    }

    void clear()
    {
        while (count > 0)
            data[--count].~T();
    }

    T& operator[](size_t index) { return data[index]; }
    const T& operator[](size_t index) const { return data[index]; }
    size_t size() const { return count; }
    bool empty() const { return count == 0; }
    T& back() { return data[count - 1]; }
    T* begin() { return data; }
    T* end() { return data + count; }
    const T* begin() const { return data; }
    const T* end() const { return data + count; }

    T* data = nullptr;   // from the allocator
    size_t count = 0;    // elements
    size_t capacity = 0; // elements that fit

private:
    /// Where the value stands in the storage, which may be about to move; beyond the end for one from elsewhere.
    size_t indexOf(const T& value) const
    {
        auto bytes = reinterpret_cast<uintptr_t>(&value) - reinterpret_cast<uintptr_t>(data);
        return bytes / sizeof(T);
    }

    /// 4, 6, 9, 13, … elements.
    int grow()
    {
        constexpr size_t Least = 4;
        if (capacity > std::numeric_limits<size_t>::max() - capacity / 2) return OutOfMemory;
        size_t larger = capacity + capacity / 2;
        return setCapacity(larger < Least ? Least : larger);
    }

    int setCapacity(size_t larger)
    {
        if (larger > std::numeric_limits<size_t>::max() / sizeof(T)) return OutOfMemory;
        size_t bytes = larger * sizeof(T);
        void* memory =
            capacity == 0 ? g_allocator.allocate(bytes) : g_allocator.reallocate(static_cast<void*>(data), bytes);
        if (!memory) return OutOfMemory;
        data = static_cast<T*>(memory);
        capacity = larger;
        return Success;
    }

    void release()
    {
        clear();
        if (capacity != 0) g_allocator.release(static_cast<void*>(data));
    }
};

} // namespace ZALM
