// SPDX-License-Identifier: Apache-2.0
// Arguments made of input bytes: values that mean something more often than not, any value now and then.
#pragma once

#include "fuzz/api/World.h"

#include <cstring>
#include <type_traits>

namespace fuzz::api
{

/// One call's arguments. Pointers are good until the call has returned.
class Arguments
{
public:
    Arguments(World& w, Input& i) : world(w), input(i) {}

    /// An enumerant, an object's name or any bits.
    uint32_t word();
    /// Mostly small, else at the ends of the range.
    int32_t integer();
    float real();
    /// One of the enumerants that the calls know, seldom another number.
    GLenum enumerant();
    /// Mostly one of the first names.
    uint32_t name();
    /// A width, height or depth: small, or what no texture has.
    int32_t side();
    /// The slot of a living context; null when there is none.
    Slot* living();

    template <class T>
    T value()
    {
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<T>(real());
        else if constexpr (std::is_same_v<T, unsigned>)
            return word();
        else if constexpr (sizeof(T) >= 4)
            return static_cast<T>(integer());
        else
            return static_cast<T>(input.byte());
    }

    /// Memory for exactly so many elements.
    template <class T>
    T* array(size_t count)
    {
        using Element = std::remove_const_t<T>;
        auto* elements = reinterpret_cast<Element*>(world.memory(count * sizeof(Element), input));
        for (size_t i = 0; i < count && i < 16 && std::is_const_v<T>; ++i)
            elements[i] = value<Element>();
        return elements;
    }

    World& world;
    Input& input;
};

/// Three sides that a texture could have become so small that a run stays fast; others are left as they are.
void bound(int32_t& width, int32_t& height, int32_t& depth);

/// A call that takes numbers and pointers, each to `Count` elements.
template <auto Function, size_t Count>
struct PlainCall;

template <class Result, class... Types, Result (*Function)(Types...), size_t Count>
struct PlainCall<Function, Count>
{
    template <class T>
    static T argument(Arguments& a)
    {
        if constexpr (!std::is_pointer_v<T>)
            return a.value<T>();
        else if constexpr (std::is_void_v<std::remove_pointer_t<T>>)
            return a.world.memory(Count * 8, a.input);
        else
            return a.array<std::remove_pointer_t<T>>(Count);
    }
    template <size_t... I>
    static void callWith(std::tuple<Types...>&& values, std::index_sequence<I...>)
    {
        Function(std::get<I>(values)...);
    }
    static void call(Arguments& a)
    {
        callWith(std::tuple<Types...>{argument<Types>(a)...}, std::index_sequence_for<Types...>()); // in order
    }
};

template <auto Function, size_t Count = 4>
void plain(Arguments& a)
{
    PlainCall<Function, Count>::call(a);
}

struct Call
{
    std::string_view name;
    void (*call)(Arguments&);
};

/// The table of all entry points, by chapter: an input byte chooses a chapter, the next a call of it.
struct Chapter
{
    const Call* calls;
    size_t count;
};
extern const Chapter ContextChapter, StateChapter, ObjectChapter, TextureChapter, DrawChapter, InertChapter;

} // namespace fuzz::api
