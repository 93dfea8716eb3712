// SPDX-License-Identifier: Apache-2.0
// One function for each key, made once; failures are remembered and said once.
#include "contexts/Logged.h"
#include "programs/Programs.h"

#include <random>

namespace {

using namespace programs;

using ZALMetal::FragmentProgramSpecializationKey;
using ZALMetal::VertexProgramSpecializationKey;

class Specialisation : public ProgramTest
{
protected:
    void SetUp() override
    {
        ProgramTest::SetUp();
        load(GL_VERTEX_PROGRAM_ARB, PassVertex);
        load(GL_FRAGMENT_PROGRAM_ARB, TexturedFragment);
        setUpTriangle();
        const uint32_t white = 0xFFFFFFFF;
        GLuint texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, &white);
        clearLog();
    }
};

TEST_F(Specialisation, DrawsThatAgreeShareTheirFunctions)
{
    draw();
    EXPECT_EQ(count("newFunction"), 2u);
    draw();
    glColorMask(1, 0, 0, 1);
    glEnable(GL_BLEND); // another pipeline of the same functions
    draw();
    EXPECT_EQ(count("newFunction"), 0u);
}

TEST_F(Specialisation, EqualKeysGiveOneFunction)
{
    VertexProgramSpecializationKey key = {};
    auto& vertex = program(GL_VERTEX_PROGRAM_ARB);
    MTL::Function* first = vertex.GetVertexMTLFunction(key);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(vertex.GetVertexMTLFunction(key), first);
    key.attributeMask = 1;
    EXPECT_NE(vertex.GetVertexMTLFunction(key), first);
    FragmentProgramSpecializationKey f = {};
    MTL::Function* plain = fragment().GetFragmentMTLFunction(f);
    f.swizzleModes[0] = 1;
    EXPECT_NE(fragment().GetFragmentMTLFunction(f), plain);
    f.swizzleModes[0] = 0;
    f.samplerSlots[31] = 1;
    EXPECT_NE(fragment().GetFragmentMTLFunction(f), plain);
    EXPECT_EQ(count("newFunction"), 5u);
}

TEST_F(Specialisation, ANewTextForgetsTheFunctions)
{
    MTL::Function* before = fragment().GetFragmentMTLFunction({});
    before->retain();
    load(GL_FRAGMENT_PROGRAM_ARB, TexturedFragment);
    clearLog();
    EXPECT_NE(fragment().GetFragmentMTLFunction({}), before);
    EXPECT_EQ(count("newFunction"), 1u);
    before->release();
}

TEST_F(Specialisation, AFailureIsRememberedAndSaidOnce)
{
    ASSERT_EQ(loadMetal("#include <metal_stdlib>\nfragment float4 OtherName() { return 1.0; }\n"), static_cast<GLenum>(GL_NO_ERROR));
    contexts::Logged lines;
    for (int i = 0; i < 3; ++i) {
        draw();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); // the draw is left out in silence
    }
    size_t said = 0;
    for (const std::string& line : lines.take()) said += line.rfind("ZAL Metal, Failed to specialise a program, error ", 0) == 0;
    EXPECT_EQ(said, 1u);
    EXPECT_EQ(count("newFunction"), 1u + 1u); // the vertex program's, and one try
}

template <class Key>
Key randomKey(std::mt19937& random)
{
    Key key = {};
    key.samplerSlots[random() % 32] = static_cast<int32_t>(random() % 3) - 1;
    key.swizzleModes[random() % 32] = random() % 3;
    if constexpr (std::is_same_v<Key, VertexProgramSpecializationKey>) key.attributeMask = random() % 3;
    return key;
}

template <class Key>
void expectStrictWeakOrder()
{
    std::mt19937 random(1);
    std::vector<Key> keys;
    for (int i = 0; i < 60; ++i) keys.push_back(randomKey<Key>(random));
    for (const Key& a : keys) {
        EXPECT_FALSE(a < a);
        for (const Key& b : keys) {
            EXPECT_FALSE(a < b && b < a);
            bool same = std::memcmp(&a, &b, sizeof(Key)) == 0;
            EXPECT_EQ(!(a < b) && !(b < a), same);
            for (const Key& c : keys) EXPECT_TRUE(!(a < b && b < c) || a < c);
        }
    }
}

TEST(SpecialisationKey, AreInStrictWeakOrder)
{
    expectStrictWeakOrder<FragmentProgramSpecializationKey>();
    expectStrictWeakOrder<VertexProgramSpecializationKey>();
}

TEST(SpecialisationKey, TheAttributeMaskDecidesFirstThenSlotsThenSwizzles)
{
    VertexProgramSpecializationKey a = {}, b = {};
    a.attributeMask = 0x80000000; // as an unsigned number
    b.samplerSlots[0] = 5;
    EXPECT_TRUE(b < a);
    a = b = {};
    a.samplerSlots[1] = 1;
    b.swizzleModes[0] = 9;
    EXPECT_TRUE(b < a);
    a = b = {};
    a.samplerSlots[0] = 256; // bytes 0, 1: less than 1, 0 as raw bytes
    b.samplerSlots[0] = 1;
    EXPECT_TRUE(a < b);
}

} // namespace
