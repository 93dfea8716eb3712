// SPDX-License-Identifier: Apache-2.0
#include "foundation/Memory.h"
#include "foundation/String.h"
#include "foundation/Vector.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using foundation::Memory;
using ZALM::String;
using ZALM::Vector;

TEST(Vector, GrowsByHalfFromFour)
{
    Vector<long> v;
    std::vector<size_t> capacities;
    for (long i = 0; i < 20; ++i) {
        EXPECT_EQ(v.push_back(i), ZALM::Success);
        if (capacities.empty() || capacities.back() != v.capacity) capacities.push_back(v.capacity);
    }
    EXPECT_EQ(capacities, (std::vector<size_t>{4, 6, 9, 13, 19, 28}));
    for (size_t i = 0; i < 20; ++i) EXPECT_EQ(v[i], static_cast<long>(i));
}

TEST(Vector, TakesAnElementOfItsOwn)
{
    Vector<String> v;
    for (int i = 0; i < 4; ++i) v.push_back(String("first"));
    EXPECT_EQ(v.push_back(v[0]), ZALM::Success); // while it moves
    EXPECT_EQ(v[4], String("first"));
}

TEST(Vector, ResizesBothWays)
{
    Memory memory;
    {
        Vector<String> v;
        EXPECT_EQ(v.resize(5), ZALM::Success);
        EXPECT_EQ(v.count, 5u);
        EXPECT_TRUE(v[4].IsEmpty());
        v[1] = "one";
        EXPECT_EQ(v.resize(2), ZALM::Success);
        EXPECT_EQ(v.count, 2u);
        EXPECT_EQ(v.capacity, 5u);
        EXPECT_EQ(v[1], String("one"));
    }
    EXPECT_EQ(memory.live(), 0u);
}

TEST(Vector, ErasingMovesTheRestUp)
{
    Memory memory;
    {
        Vector<String> v;
        for (const char* text : {"a", "b", "c"}) v.push_back(String(text));
        v.erase(1);
        EXPECT_EQ(v.count, 2u);
        EXPECT_EQ(v[1], String("c"));
        v.erase(2);
        v.erase(99);
        EXPECT_EQ(v.count, 2u);
    }
    EXPECT_EQ(memory.live(), 0u);
}

TEST(Vector, CopiesElementByElement)
{
    Vector<String> a;
    a.push_back(String("x"));
    Vector<String> b(a);
    b[0] = "y";
    EXPECT_EQ(a[0], String("x"));
    a = b;
    EXPECT_EQ(a[0], String("y"));
}

TEST(Vector, WithoutMemoryItStaysAsItWas)
{
    Memory memory;
    {
        Vector<long> v;
        memory.failAt(0);
        EXPECT_EQ(v.push_back(1), ZALM::OutOfMemory);
        EXPECT_EQ(v.resize(3), ZALM::OutOfMemory);
        EXPECT_EQ(v.capacity, 0u);
        memory.succeed();
        for (long i = 0; i < 4; ++i) v.push_back(i);
        long* data = v.data;
        memory.failAt(0);
        EXPECT_EQ(v.push_back(4), ZALM::OutOfMemory);
        EXPECT_EQ(v.resize(99), ZALM::OutOfMemory);
        memory.succeed();
        EXPECT_EQ(v.data, data);
        EXPECT_EQ(v.count, 4u);
        EXPECT_EQ(v.capacity, 4u);
        for (long i = 0; i < 4; ++i) EXPECT_EQ(v[static_cast<size_t>(i)], i);
        Vector<long> target;
        target.push_back(7);
        memory.failAt(0);
        v.resize(4);
        Vector<long> copy(v);
        EXPECT_TRUE(copy.empty());
        target = v; // fits without asking for more
        memory.succeed();
        EXPECT_EQ(target.count, 4u);
    }
    EXPECT_EQ(memory.live(), 0u);
}

TEST(Vector, SizesBeyondAllMemoryAreRefused)
{
    Vector<long> v;
    EXPECT_EQ(v.resize(SIZE_MAX / 4), ZALM::OutOfMemory);
    EXPECT_EQ(v.reserve(SIZE_MAX), ZALM::OutOfMemory);
    EXPECT_EQ(v.capacity, 0u);
}

TEST(Vector, ACapacityThatCannotGrowIsRefused)
{
    Vector<char> v;
    v.count = v.capacity = SIZE_MAX - 1; // as if it were that full
    EXPECT_EQ(v.push_back('x'), ZALM::OutOfMemory);
    EXPECT_EQ(v.count, SIZE_MAX - 1);
    v.count = v.capacity = 0;
}

} // namespace
