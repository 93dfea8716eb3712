// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace softmetal::raster
{

/// An array of plain structs that keeps its memory when it is emptied, hands out room without filling it, and always
/// has Slack bytes behind the last element that vector stores may run over.
template <class T>
class Grown
{
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= 64);

public:
    Grown() = default;
    Grown(Grown&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)),
          capacity_(std::exchange(other.capacity_, 0))
    {}
    Grown& operator=(Grown&& other) noexcept
    {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
        return *this;
    }
    ~Grown() { std::free(data_); }

    T* data() { return data_; }
    const T* data() const { return data_; }
    size_t size() const { return size_; }
    size_t capacity() const { return capacity_; }
    T& operator[](size_t i) { return data_[i]; }
    const T& operator[](size_t i) const { return data_[i]; }

    /// Room for this many more; what is written there counts once it is added.
    T* room(size_t more)
    {
        if (size_ + more > capacity_) grow(size_ + more);
        return data_ + size_;
    }
    void add(size_t more) { size_ += more; }
    void push(const T& value)
    {
        *room(1) = value;
        ++size_;
    }
    void clear() { size_ = 0; }
    /// As many as wanted, with whatever values they have.
    T* resize(size_t wanted)
    {
        size_ = 0;
        room(wanted);
        size_ = wanted;
        return data_;
    }
    /// Gives the memory back when there is more than this.
    void trim(size_t most)
    {
        if (capacity_ > most) *this = Grown();
    }

private:
    static constexpr size_t Slack = 256, Alignment = 64;

    void grow(size_t wanted)
    {
        const size_t capacity = std::max(wanted, capacity_ * 2);
        const size_t bytes = (capacity * sizeof(T) + Slack + Alignment - 1) / Alignment * Alignment;
        void* fresh = std::aligned_alloc(Alignment, bytes);
        if (!fresh) throw std::bad_alloc();
        const size_t used = size_ * sizeof(T);
        if (used != 0) std::memcpy(fresh, data_, used);
        std::free(data_);
        data_ = static_cast<T*>(fresh);
        capacity_ = capacity;
    }

    T* data_ = nullptr;
    size_t size_ = 0, capacity_ = 0;
};

} // namespace softmetal::raster
