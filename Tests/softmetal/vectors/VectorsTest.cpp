// SPDX-License-Identifier: Apache-2.0
// The operations of the inner loops, each beside its meaning lane by lane.
#include "vectors/Bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

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

TYPED_TEST(Vectors, BytesBecomeFractionsAsDivisionGives)
{
    constexpr uint32_t W = TypeParam::value;
    for (int32_t n = 0; n < 256; ++n)
        for (int byte = 0; byte < 4; ++byte) {
            const auto words =
                static_cast<int32_t>(static_cast<uint32_t>(n) << (8 * byte) | (0xA5A5A5A5u & ~(0xFFu << (8 * byte))));
            const Float<W> got = unorm8<W>(Int<W>{} + words, byte);
            for (uint32_t i = 0; i < W; ++i)
                ASSERT_EQ(got[i], static_cast<float>(n) / 255.0f) << n;
        }
}

TYPED_TEST(Vectors, FractionsBecomeBytesAsDoublesRound)
{
    constexpr uint32_t W = TypeParam::value;
    std::vector<float> values;
    for (int n = 0; n <= 510; ++n) { // bytes and the halves between them, with their neighbours
        const auto near = static_cast<float>(n / 510.0);
        for (float v : {near, std::nextafter(near, 0.0f), std::nextafter(near, 1.0f)})
            values.push_back(v);
    }
    for (uint32_t i = 0; i < 50000; ++i)
        values.push_back(static_cast<float>(i * 2654435761u >> 8) * 0x1p-24f);
    for (size_t at = 0; at + 4 <= values.size(); at += 4) {
        Float<W> lanes[4];
        for (size_t c = 0; c < 4; ++c)
            for (uint32_t i = 0; i < W; ++i)
                lanes[c][i] = values[(at + c + i) % values.size()];
        const FourBytes<W> got = exactBytes<W>(lanes);
        for (size_t c = 0; c < 4; ++c)
            for (uint32_t i = 0; i < W; ++i)
                ASSERT_EQ(got.c[c][i], static_cast<int32_t>(std::nearbyint(static_cast<double>(lanes[c][i]) * 255.0)))
                    << std::hexfloat << lanes[c][i];
    }
}

} // namespace
