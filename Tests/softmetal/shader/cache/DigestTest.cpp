// SPDX-License-Identifier: Apache-2.0
#include "shader/cache/Digest.h"

#include <gtest/gtest.h>

#include <set>

namespace
{

using namespace softmetal::shader;

/// The digest over exactly these bytes: numbers go in as eight bytes, the lowest first.
std::string ofNumbers(std::initializer_list<uint64_t> numbers)
{
    Digester all;
    for (uint64_t number : numbers)
        all.add(number);
    return hexadecimal(all.finish());
}

TEST(Digest, IsSha256)
{
    // Made by another program: nothing, "12345678", and 56, 64 and 120 bytes of it, around the ends of blocks.
    EXPECT_EQ(ofNumbers({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    const uint64_t word = 0x3837363534333231;
    EXPECT_EQ(ofNumbers({word}), "ef797c8118f02dfb649607dd5d3f8c7623048c9c063d532cc95c5ed7a898a64f");
    EXPECT_EQ(ofNumbers({word, word, word, word, word, word, word}),
              "6f2f0a498c0efe37829466bec79fdde57380e1fe4c0ebd79b9e8987b9c0859c9");
    EXPECT_EQ(ofNumbers({word, word, word, word, word, word, word, word}),
              "06bcbf53e05cd44da1c9dc7a0737f08eceef318eeab6f4c6743dea34038b62ce");
    EXPECT_EQ(ofNumbers({word, word, word, word, word, word, word, word, word, word, word, word, word, word, word}),
              "979e3016a670a5b1308dba2d715f75201eebcef0adc4a1ac99877fad91ce3ff6");
}

TEST(Digest, OfATextCountsItsLengthFirst)
{
    // Made by another program from eight bytes with the length, the lowest first, and so many letters x.
    const std::pair<size_t, const char*> rows[] = {
        {0, "af5570f5a1810b7af78caf4bc70a660f0df51e42baf91d4de5b2328de0e83dfc"},
        {1, "f91b14e7bbea4c5bfa0e1a704017716659f4910e557b869f226a69652d2a6f12"},
        {47, "ac21215aa3e0f825e7685ed3a235bb20d0f2a17319dca32aafd3b95eafbf850e"},
        {48, "67e13a06479e345abebc25cda7c2c72f3c9ef4e8cf45254aca894928242327e7"},
        {55, "6970f51a385b909e22ab5a985889d7fb588eadf93f28fba0ed90fbd9c17274ac"},
        {56, "562e4463a1f0480e81f9c131b98f584062648251b407e00a74836d1e4f737e6a"},
        {63, "973287eb2a738bd8a136b948aaa92c2c52eb5a315e67a6025dedd87bb9a0790d"},
        {64, "4921f0ef26d1a2a87d833aaa063e497f4def25b06af56b8299b4e8b97d2ece33"},
        {200, "8b70c0b60fdb51529836e1e5038056a912410c358ee51f650036d5c85ff9ccd1"},
    };
    for (auto [length, expected] : rows) {
        Digester digester;
        EXPECT_EQ(hexadecimal(digester.add(std::string(length, 'x')).finish()), expected) << length;
    }
}

TEST(Digest, KeepsNeighbouringTextsApart)
{
    std::set<std::string> all;
    for (auto [first, second] :
         {std::pair{"ab", "c"}, std::pair{"a", "bc"}, std::pair{"", "abc"}, std::pair{"abc", ""}}) {
        Digester digester;
        all.insert(hexadecimal(digester.add(first).add(second).finish()));
    }
    EXPECT_EQ(all.size(), 4u);
}

} // namespace
