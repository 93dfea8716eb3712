// SPDX-License-Identifier: Apache-2.0
// Halves of all lanes at once against the conversion of single values: the same bits for every set of instructions.
#include "formats/PixelFormat.h"
#include "softmetal/vectors/HalvesKernel.h"
#include "vectors/InstructionSet.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <vector>

namespace
{

using namespace softmetal;
using vectors::InstructionSet;

template <typename Function>
std::vector<Function> onThisMachine(Function base, Function avx2, Function avx512)
{
    std::vector<Function> sets = {base};
    if (vectors::instructionSet() >= InstructionSet::Avx2) sets.push_back(avx2);
    if (vectors::instructionSet() >= InstructionSet::Avx512) sets.push_back(avx512);
    return sets;
}

/// Floats around every place where the rounding to halves changes its way, and some between.
std::vector<float> interestingFloats()
{
    std::vector<float> values;
    for (uint64_t bits = 0; bits <= 0xFFFFFFFF; bits += 4091)
        values.push_back(std::bit_cast<float>(static_cast<uint32_t>(bits)));
    for (uint32_t half = 0; half < 0x7C01; ++half) { // each half, the tie above it, and their neighbours
        float low = formats::fromHalf(static_cast<uint16_t>(half)),
              high = formats::fromHalf(static_cast<uint16_t>(half + 1));
        uint32_t middle = half < 0x7BFF ? std::bit_cast<uint32_t>((low + high) / 2) : 0x477FF000;
        for (uint32_t centre : {std::bit_cast<uint32_t>(low), middle})
            for (uint32_t step = 0; step < 3; ++step) {
                values.push_back(std::bit_cast<float>(centre + step - 1));
                values.push_back(std::bit_cast<float>((centre + step - 1) ^ 0x80000000));
            }
    }
    values.resize((values.size() + 15) / 16 * 16);
    return values;
}

class Halves : public testing::TestWithParam<uint32_t>
{};

TEST_P(Halves, AreRoundedAsSingleValuesAre)
{
    const uint32_t lanes = GetParam();
    const std::vector<float> values = interestingFloats();
    for (auto set : onThisMachine(halves_test::base::toHalvesFor, halves_test::avx2::toHalvesFor,
                                  halves_test::avx512::toHalvesFor))
        for (size_t i = 0; i < values.size(); i += lanes) {
            std::array<uint32_t, 16> got{};
            set(lanes)(values.data() + i, got.data());
            for (uint32_t k = 0; k < lanes; ++k)
                ASSERT_EQ(got[k], formats::toHalf(values[i + k])) << std::hexfloat << values[i + k];
        }
}

TEST_P(Halves, BecomeTheFloatsThatSingleValuesBecome)
{
    const uint32_t lanes = GetParam();
    for (auto set : onThisMachine(halves_test::base::fromHalvesFor, halves_test::avx2::fromHalvesFor,
                                  halves_test::avx512::fromHalvesFor))
        for (uint32_t first = 0; first < 0x10000; first += lanes) {
            std::array<uint32_t, 16> halves{};
            std::array<float, 16> got{};
            for (uint32_t k = 0; k < lanes; ++k)
                halves[k] = (first + k) | 0xABCD0000; // the other half of a word does not matter
            set(lanes)(halves.data(), got.data());
            for (uint32_t k = 0; k < lanes; ++k)
                ASSERT_EQ(std::bit_cast<uint32_t>(got[k]),
                          std::bit_cast<uint32_t>(formats::fromHalf(static_cast<uint16_t>(first + k))))
                    << first + k;
        }
}

INSTANTIATE_TEST_SUITE_P(Lanes, Halves, testing::Values(4u, 8u, 16u));

} // namespace
