// SPDX-License-Identifier: Apache-2.0
// Indices into distinct vertices.
#include "raster/Vertices.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace softmetal::raster
{
namespace
{

constexpr uint8_t Index16 = 0, LineStrip = 2, TriangleStrip = 4;
constexpr uint32_t Restart = VertexList::Restart;

/// The vertex numbers that count indices from start on stand for; those beyond the buffer are as if it held zeros.
template <class Index>
void decode(const DrawCall& call, uint32_t* numbers)
{
    const uint64_t held = call.indexBytes / sizeof(Index), start = call.start;
    const size_t there = held > start ? std::min<uint64_t>(call.count, held - start) : 0;
    const auto* from = static_cast<const uint8_t*>(call.indices) + start * sizeof(Index);
    const auto base = static_cast<uint32_t>(call.baseVertex);
    for (size_t i = 0; i < there; ++i) {
        Index index;
        std::memcpy(&index, from + i * sizeof index, sizeof index);
        numbers[i] = index + base;
    }
    std::fill(numbers + there, numbers + call.count, base);
}

/// The least and the greatest number; those that start a primitive again do not count.
void measure(const Grown<uint32_t>& numbers, VertexList& list)
{
    list.least = UINT32_MAX;
    list.most = 0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        list.least = std::min(list.least, numbers[i]);
        list.most = std::max(list.most, numbers[i]);
    }
}
void measure(const Grown<uint32_t>& numbers, uint32_t restart, VertexList& list)
{
    list.least = UINT32_MAX;
    list.most = 0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] == restart) continue;
        list.least = std::min(list.least, numbers[i]);
        list.most = std::max(list.most, numbers[i]);
    }
}

/// Whether every number from the least to the most is named, as it is in most meshes: each then stands for its place.
bool placeAll(VertexList& list)
{
    static thread_local Grown<uint8_t> memory;
    const size_t range = size_t{list.most} - list.least + 1, count = list.places.size();
    if (range > count) return false;
    auto* named = static_cast<uint8_t*>(std::memset(memory.resize(range), 0, range));
    uint32_t *ids = list.ids.data(), *places = list.places.data();
    const uint32_t least = list.least;
    for (size_t i = 0; i < count; ++i)
        named[places[i] - least] = 1;
    if (std::memchr(named, 0, range)) return false;
    for (size_t i = 0; i < count; ++i)
        places[i] -= least;
    for (size_t i = 0; i < range; ++i)
        ids[i] = least + static_cast<uint32_t>(i);
    list.ids.resize(range);
    return true;
}

/// Numbers that lie close together: a table says where each was put.
template <bool Restarts>
void placeDense(VertexList& list, uint32_t restart)
{
    static thread_local Grown<uint32_t> memory;
    const size_t range = size_t{list.most} - list.least + 1;
    uint32_t* table = memory.resize(range);
    std::fill_n(table, range, Restart);
    uint32_t *ids = list.ids.data(), *places = list.places.data();
    uint32_t added = 0;
    for (size_t i = 0; i < list.places.size(); ++i) {
        const uint32_t number = places[i];
        if (Restarts && number == restart) {
            places[i] = Restart;
            continue;
        }
        const uint32_t at = number - list.least, known = table[at];
        const bool fresh = known == Restart;
        ids[added] = number; // stays only when it is new
        table[at] = places[i] = fresh ? added : known;
        added += fresh;
    }
    list.ids.resize(added);
}

/// Any numbers.
void placeSparse(VertexList& list, bool restarts, uint32_t restart)
{
    std::unordered_map<uint32_t, uint32_t> known;
    uint32_t added = 0;
    for (size_t i = 0; i < list.places.size(); ++i) {
        uint32_t& place = list.places[i];
        if (restarts && place == restart) {
            place = Restart;
            continue;
        }
        const auto [found, fresh] = known.try_emplace(place, added);
        if (fresh) list.ids[added++] = place;
        place = found->second;
    }
    list.ids.resize(added);
}

void listIndexed(const DrawCall& call, VertexList& list)
{
    const bool narrow = call.indexType == Index16;
    narrow ? decode<uint16_t>(call, list.places.resize(call.count))
           : decode<uint32_t>(call, list.places.resize(call.count));
    const bool strips = call.primitive == LineStrip || call.primitive == TriangleStrip;
    const uint32_t restart = (narrow ? 0xFFFFu : 0xFFFFFFFFu) + static_cast<uint32_t>(call.baseVertex);
    const uint32_t *begin = list.places.data(), *end = begin + call.count;
    const bool restarts = strips && std::find(begin, end, restart) != end;
    restarts ? measure(list.places, restart, list) : measure(list.places, list);
    list.ids.resize(size_t{call.count} + 1);
    if (list.least > list.most) { // nothing but new starts
        list.ids.clear();
        return;
    }
    if (list.most - list.least >= 4 * uint64_t{call.count} + 1024) return placeSparse(list, restarts, restart);
    if (restarts) return placeDense<true>(list, restart);
    if (!placeAll(list)) placeDense<false>(list, restart);
}

} // namespace

void listVertices(const DrawCall& call, VertexList& list)
{
    if (call.indices) return listIndexed(call, list);
    uint32_t *ids = list.ids.resize(call.count), *places = list.places.resize(call.count);
    for (uint32_t i = 0; i < call.count; ++i) {
        ids[i] = call.start + i;
        places[i] = i;
    }
    list.least = call.start;
    list.most = call.start + call.count - 1;
    if (list.most < list.least) measure(list.ids, list); // numbers that run over begin at zero again
}

} // namespace softmetal::raster
