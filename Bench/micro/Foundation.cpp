// SPDX-License-Identifier: Apache-2.0
// Maps beside std::map, and templates beside fmt.
#include "micro/Timing.h"

#include "foundation/Map.h"
#include "foundation/String.h"

#include <fmt/format.h>

#include <map>
#include <numeric>
#include <random>

namespace micro
{
namespace
{

std::vector<unsigned> shuffledKeys(unsigned count)
{
    std::vector<unsigned> keys(count);
    std::iota(keys.begin(), keys.end(), 1u);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(count));
    return keys;
}

struct OurMap
{
    static constexpr const char* Name = "ZALM::Map";
    ZALM::Map<unsigned, void*> map;

    void insert(unsigned key)
    {
        bool inserted = false;
        map.insert(inserted, key, nullptr);
    }
    bool find(unsigned key) { return map.find(key) != nullptr; }
    size_t sum()
    {
        size_t total = 0;
        for (auto* cell = map.begin(); cell; cell = map.next())
            total += cell->key;
        return total;
    }
};

struct StandardMap
{
    static constexpr const char* Name = "std::map";
    std::map<unsigned, void*> map;

    void insert(unsigned key) { map.emplace(key, nullptr); }
    bool find(unsigned key) { return map.find(key) != map.end(); }
    size_t sum()
    {
        size_t total = 0;
        for (const auto& [key, value] : map)
            total += key;
        return total;
    }
};

template <class Tested>
void addMap(std::vector<Row>& rows, unsigned count)
{
    const auto keys = shuffledKeys(count);
    const int repeats = std::max(1, static_cast<int>(100000 / count));
    const double units = static_cast<double>(count) * repeats;
    const std::string name = std::string(Tested::Name) + ", " + std::to_string(count) + ", ";
    rows.push_back(timed(name + "insert", "ns/key", units, [&] {
        for (int i = 0; i < repeats; ++i) {
            Tested tested;
            for (unsigned key : keys)
                tested.insert(key);
            keep(tested);
        }
    }));
    Tested full;
    for (unsigned key : keys)
        full.insert(key);
    rows.push_back(timed(name + "find", "ns/key", units, [&] {
        size_t found = 0;
        for (int i = 0; i < repeats; ++i)
            for (unsigned key : keys)
                found += full.find(key);
        keep(found);
    }));
    rows.push_back(timed(name + "iterate", "ns/key", units, [&] {
        size_t total = 0;
        for (int i = 0; i < repeats; ++i)
            total += full.sum();
        keep(total);
    }));
}

void addTemplates(std::vector<Row>& rows)
{
    constexpr int Count = 20000;
    const ZALM::String a("R0.xyz"), b("state_matrix.mvp[0]"), c("program_local.value[3].x");
    rows.push_back(timed("String::Arg, three values", "ns/template", Count, [&] {
        for (int i = 0; i < Count; ++i) {
            ZALM::String text("%1 = metal::clamp( %2 * %3, 0.0, 1.0 );");
            text.Arg(a).Arg(b).Arg(c);
            keep(text);
        }
    }));
    rows.push_back(timed("fmt::format, three values", "ns/template", Count, [&] {
        for (int i = 0; i < Count; ++i) {
            std::string text = fmt::format("{} = metal::clamp( {} * {}, 0.0, 1.0 );", a.Buffer(), b.Buffer(), c.Buffer());
            keep(text);
        }
    }));
    rows.push_back(timed("String::Arg, one integer", "ns/template", Count, [] {
        for (int i = 0; i < Count; ++i) {
            ZALM::String text("texture%1");
            text.Arg(i);
            keep(text);
        }
    }));
    rows.push_back(timed("fmt::format, one integer", "ns/template", Count, [] {
        for (int i = 0; i < Count; ++i) {
            std::string text = fmt::format("texture{}", i);
            keep(text);
        }
    }));
}

} // namespace

std::vector<Row> foundation()
{
    std::vector<Row> rows;
    for (unsigned count : {10u, 1000u, 100000u}) {
        addMap<OurMap>(rows, count);
        addMap<StandardMap>(rows, count);
    }
    addTemplates(rows);
    return rows;
}

} // namespace micro
