// SPDX-License-Identifier: Apache-2.0
// The operations of the inner loops, each beside its meaning lane by lane.
#include "vectors/Vectors.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace softmetal::vectors;

template <typename Lanes> class Vectors : public testing::Test
{
};

template <uint32_t N> struct Count
{
    static constexpr uint32_t value = N;
};
using Counts = testing::Types<Count<4>, Count<8>, Count<16>>;
TYPED_TEST_SUITE(Vectors, Counts);

TYPED_TEST(Vectors, SignsAreBits)
{
    constexpr uint32_t W = TypeParam::value;
    for (uint32_t mask = 0; mask < 1u << W; mask += W == 16 ? 97 : 1) {
        Int<W> v;
        for (uint32_t i = 0; i < W; ++i) v[i] = mask >> i & 1 ? -5 - static_cast<int32_t>(i) : static_cast<int32_t>(i);
        ASSERT_EQ(signs<W>(v), mask);
    }
}

TYPED_TEST(Vectors, BitsBecomeLanes)
{
    constexpr uint32_t W = TypeParam::value;
    for (uint32_t mask = 0; mask < 1u << W; mask += W == 16 ? 97 : 1) {
        Int<W> v = lanesOf<W>(mask);
        for (uint32_t i = 0; i < W; ++i) ASSERT_EQ(v[i], mask >> i & 1 ? -1 : 0);
    }
}

TYPED_TEST(Vectors, QuadsGoToRowsAndBack)
{
    constexpr uint32_t W = TypeParam::value;
    Int<W> quads;
    for (uint32_t i = 0; i < W; ++i) quads[i] = static_cast<int32_t>(((i >> 1 & 1) * 100) + (i >> 2) * 2 + (i & 1)); // row, column
    Int<W> rows = quadsToRows<W>(quads);
    for (uint32_t i = 0; i < W; ++i) EXPECT_EQ(rows[i], static_cast<int32_t>(i < W / 2 ? i : 100 + i - W / 2));
    Int<W> back = rowsToQuads<W>(rows);
    for (uint32_t i = 0; i < W; ++i) EXPECT_EQ(back[i], quads[i]);
}

TYPED_TEST(Vectors, RowsAreReadAndWrittenApart)
{
    constexpr uint32_t W = TypeParam::value;
    std::array<int32_t, W> memory;
    for (uint32_t i = 0; i < W; ++i) memory[i] = static_cast<int32_t>(i);
    auto* bytes = reinterpret_cast<uint8_t*>(memory.data());
    auto v = loadRows<W, Int<W>>(bytes + W * 2, bytes); // the second half first
    for (uint32_t i = 0; i < W; ++i) EXPECT_EQ(v[i], static_cast<int32_t>((i + W / 2) % W));
    storeRows<W>(bytes, bytes + W * 2, v);
    for (uint32_t i = 0; i < W; ++i) EXPECT_EQ(memory[i], static_cast<int32_t>((i + W / 2) % W));
}

} // namespace
