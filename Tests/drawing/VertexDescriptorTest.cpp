// SPDX-License-Identifier: Apache-2.0
// Vertex layouts: conversion of every format and stride, the order of layouts, the cache.
#include "VertexDescriptorCache.h"
#include "drawing/Drawing.h"

#include <random>

namespace {

using namespace drawing;
using ZALMetal::VertexDescriptorCache;

GLVertexAttribDescription attribute(GLenum type, int32_t size, bool normalized = false, int32_t stride = 0)
{
    GLVertexAttribDescription a;
    a.buffer = 1;
    a.type = type;
    a.size = size;
    a.normalized = normalized;
    a.stride = stride;
    return a;
}

GLVertexDescription layout(std::initializer_list<std::pair<uint32_t, GLVertexAttribDescription>> attributes)
{
    GLVertexDescription d;
    for (const auto& [index, a] : attributes) {
        d.mask |= 1u << index;
        d.attributes[index] = a;
    }
    return d;
}

// ---- formats --------------------------------------------------------------------------------------------------------------------

struct FormatRow
{
    GLenum type;
    bool normalized;
    MTL::VertexFormat formats[4]; // by size
};

using enum MTL::VertexFormat;

constexpr FormatRow FormatRows[] = {
    {GL_BYTE, true, {VertexFormatCharNormalized, VertexFormatChar2Normalized, VertexFormatChar3Normalized, VertexFormatChar4Normalized}},
    {GL_UNSIGNED_BYTE, true, {VertexFormatUCharNormalized, VertexFormatUChar2Normalized, VertexFormatUChar3Normalized, VertexFormatUChar4Normalized}},
    {GL_SHORT, true, {VertexFormatShortNormalized, VertexFormatShort2Normalized, VertexFormatShort3Normalized, VertexFormatShort4Normalized}},
    {GL_UNSIGNED_SHORT, true, {VertexFormatUShortNormalized, VertexFormatUShort2Normalized, VertexFormatUShort3Normalized, VertexFormatUShort4Normalized}},
    {GL_BYTE, false, {VertexFormatChar, VertexFormatChar2, VertexFormatChar3, VertexFormatChar4}},
    {GL_UNSIGNED_BYTE, false, {VertexFormatUChar, VertexFormatUChar2, VertexFormatUChar3, VertexFormatUChar4}},
    {GL_SHORT, false, {VertexFormatShort, VertexFormatShort2, VertexFormatShort3, VertexFormatShort4}},
    {GL_UNSIGNED_SHORT, false, {VertexFormatUShort, VertexFormatUShort2, VertexFormatUShort3, VertexFormatUShort4}},
    {GL_INT, false, {VertexFormatInt, VertexFormatInt2, VertexFormatInt3, VertexFormatInt4}},
    {GL_UNSIGNED_INT, false, {VertexFormatUInt, VertexFormatUInt2, VertexFormatUInt3, VertexFormatUInt4}},
    {GL_FLOAT, false, {VertexFormatFloat, VertexFormatFloat2, VertexFormatFloat3, VertexFormatFloat4}},
    {GL_FLOAT, true, {VertexFormatFloat, VertexFormatFloat2, VertexFormatFloat3, VertexFormatFloat4}},
    {GL_HALF_FLOAT, false, {VertexFormatHalf, VertexFormatHalf2, VertexFormatHalf3, VertexFormatHalf4}},
    {GL_HALF_FLOAT, true, {VertexFormatHalf, VertexFormatHalf2, VertexFormatHalf3, VertexFormatHalf4}},
    {GL_INT, true, {}},
    {GL_UNSIGNED_INT, true, {}},
    {GL_DOUBLE, false, {}},
    {GL_DOUBLE, true, {}},
    {GL_3_BYTES, false, {}},
    {0, false, {}},
};

TEST(VertexFormat, EveryTypeAndSize)
{
    for (const FormatRow& row : FormatRows) {
        for (int32_t size = 1; size <= 4; ++size)
            EXPECT_EQ(ZALMetal::convertVertexFormat(attribute(row.type, size, row.normalized)), row.formats[size - 1]) << row.type << " size " << size;
        for (int32_t size : {-1, 0, 5, 0x80E1})
            EXPECT_EQ(ZALMetal::convertVertexFormat(attribute(row.type, size, row.normalized)), VertexFormatInvalid) << row.type << " size " << size;
    }
}

TEST(VertexFormat, AStrideThatIsGivenIsKept)
{
    EXPECT_EQ(ZALMetal::convertVertexStride(attribute(GL_FLOAT, 3, false, 20)), 20u);
    EXPECT_EQ(ZALMetal::convertVertexStride(attribute(GL_UNSIGNED_INT, 3, false, 20)), 20u);
}

TEST(VertexFormat, PackedArraysTakeTheSizeOfTheirType)
{
    for (auto [type, bytes] : {std::pair<GLenum, uint64_t>{GL_UNSIGNED_BYTE, 1}, {GL_SHORT, 2}, {GL_INT, 4}, {GL_FLOAT, 4}, {GL_DOUBLE, 8}, {GL_HALF_FLOAT, 2}})
        EXPECT_EQ(ZALMetal::convertVertexStride(attribute(type, 3)), 3 * bytes) << type;
    for (GLenum type : {GL_2_BYTES, GL_3_BYTES, GL_4_BYTES, 0x140C, 0}) EXPECT_EQ(ZALMetal::convertVertexStride(attribute(type, 3)), 0u);
}

/// Packed arrays of these types have a stride of 0.
TEST(VertexFormat, Kept_unsigned_stride)
{
    for (GLenum type : {GL_BYTE, GL_UNSIGNED_SHORT, GL_UNSIGNED_INT}) {
        EXPECT_EQ(ZALMetal::convertVertexStride(attribute(type, 2)), 0u);
        uint32_t mask = 1;
        MTL::VertexDescriptor* out = nullptr;
        ASSERT_EQ(ZALMetal::convertVertexDescription(out, mask, layout({{0, attribute(type, 2)}})), 0);
        EXPECT_EQ(out->layouts()->object(0)->stride(), 0u);
        out->release();
    }
}

// ---- conversion -----------------------------------------------------------------------------------------------------------------

TEST(VertexDescription, AttributesReadTheBuffersOfTheirOwnNumber)
{
    uint32_t mask = 1 | 1 << 9;
    MTL::VertexDescriptor* out = nullptr;
    auto d = layout({{0, attribute(GL_FLOAT, 3)}, {9, attribute(GL_SHORT, 2, true, 12)}});
    d.attributes[9].offset = 40; // goes with the buffer, not with the layout
    ASSERT_EQ(ZALMetal::convertVertexDescription(out, mask, d), 0);
    EXPECT_EQ(mask, 1u | 1u << 9);
    EXPECT_EQ(out->attributes()->object(0)->format(), VertexFormatFloat3);
    EXPECT_EQ(out->layouts()->object(0)->stride(), 12u);
    EXPECT_EQ(out->attributes()->object(9)->format(), VertexFormatShort2Normalized);
    EXPECT_EQ(out->attributes()->object(9)->offset(), 0u);
    EXPECT_EQ(out->attributes()->object(9)->bufferIndex(), 9u);
    EXPECT_EQ(out->layouts()->object(9)->stride(), 12u);
    EXPECT_EQ(out->layouts()->object(9)->stepFunction(), MTL::VertexStepFunctionPerVertex);
    EXPECT_EQ(out->attributes()->object(1)->format(), VertexFormatInvalid);
    out->release();
}

TEST(VertexDescription, Kept_attribute_dropped)
{
    uint32_t mask = 1 | 1 << 3;
    MTL::VertexDescriptor* out = nullptr;
    ASSERT_EQ(ZALMetal::convertVertexDescription(out, mask, layout({{0, attribute(GL_FLOAT, 4)}, {3, attribute(GL_DOUBLE, 4)}})), 0);
    EXPECT_EQ(mask, 1u);
    EXPECT_EQ(out->attributes()->object(3)->format(), VertexFormatInvalid);
    out->release();
}

TEST(VertexDescription, WithoutAttributeZeroThereIsNone)
{
    MTL::VertexDescriptor* out = reinterpret_cast<MTL::VertexDescriptor*>(uintptr_t{16});
    uint32_t mask = 0;
    EXPECT_EQ(ZALMetal::convertVertexDescription(out, mask, {}), 1);
    EXPECT_EQ(out, nullptr);
    mask = 1 | 1 << 5;
    EXPECT_EQ(ZALMetal::convertVertexDescription(out, mask, layout({{0, attribute(GL_DOUBLE, 4)}, {5, attribute(GL_FLOAT, 4)}})), 1);
    EXPECT_EQ(out, nullptr);
}

// ---- order ----------------------------------------------------------------------------------------------------------------------

TEST(VertexDescription, IsInStrictWeakOrder)
{
    std::mt19937 random(9);
    std::vector<GLVertexDescription> all;
    for (int i = 0; i < 60; ++i) {
        GLVertexDescription d;
        d.mask = random() % 4;
        for (uint32_t k = 0; k < 3; ++k) d.attributes[k] = attribute(GL_FLOAT + random() % 2, static_cast<int32_t>(random() % 2), random() % 2, static_cast<int32_t>(random() % 2));
        all.push_back(d);
    }
    for (const auto& a : all) {
        EXPECT_FALSE(a < a);
        for (const auto& b : all) {
            EXPECT_FALSE(a < b && b < a);
            for (const auto& c : all) EXPECT_TRUE(!(a < b && b < c) || a < c);
        }
    }
}

TEST(VertexDescription, NormalizedDecidesLast)
{
    auto a = attribute(GL_FLOAT, 1, true), b = attribute(GL_FLOAT, 1, false);
    EXPECT_TRUE(b < a);
    b.offset = 1;
    EXPECT_TRUE(a < b);
    a.offset = 1;
    a.stride = -1; // signed
    EXPECT_TRUE(a < b);
}

TEST(VertexDescription, OnlyAttributesOfTheMaskAreLookedAt)
{
    auto a = layout({{0, attribute(GL_FLOAT, 4)}}), b = a;
    b.attributes[1] = attribute(GL_SHORT, 2);
    EXPECT_FALSE(a < b || b < a);
    b.mask = 3;
    EXPECT_TRUE(a < b);
    a.mask = b.mask = 0;
    a.attributes[0].buffer = 9;
    EXPECT_FALSE(a < b || b < a);
}

// ---- cache ----------------------------------------------------------------------------------------------------------------------

TEST(VertexDescriptorCache, FindsALayoutAgainByTheMaskThatTheCallerGives)
{
    VertexDescriptorCache cache;
    auto d = layout({{0, attribute(GL_FLOAT, 4)}, {2, attribute(GL_FLOAT, 3)}});
    uint32_t mask = 1;
    MTL::VertexDescriptor* first = cache.getOrCreate(mask, d);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(mask, 1u);
    d.attributes[2].size = 1; // not in the caller's mask
    d.mask = 77;
    EXPECT_EQ(cache.getOrCreate(mask, d), first);
    uint32_t both = 5;
    EXPECT_NE(cache.getOrCreate(both, d), first);
    EXPECT_EQ(cache.get(mask, d), first);
}

TEST(VertexDescriptorCache, RemembersWhatCannotBeConverted)
{
    VertexDescriptorCache cache;
    uint32_t mask = 0;
    EXPECT_EQ(cache.getOrCreate(mask, {}), nullptr);
    int64_t before = SoftMetal::objectsAlive();
    EXPECT_EQ(cache.getOrCreate(mask, {}), nullptr);
    EXPECT_EQ(SoftMetal::objectsAlive(), before);
}

TEST(VertexDescriptorCache, GivesTheMaskOfTheDescriptor)
{
    VertexDescriptorCache cache;
    auto d = layout({{0, attribute(GL_FLOAT, 4)}, {3, attribute(GL_DOUBLE, 4)}});
    for (int i = 0; i < 2; ++i) {
        uint32_t mask = 9;
        EXPECT_NE(cache.getOrCreate(mask, d), nullptr);
        EXPECT_EQ(mask, 1u);
    }
}

TEST(VertexDescriptorCache, SetKeepsAReferenceAndRefusesASecond)
{
    int64_t before = SoftMetal::objectsAlive();
    {
        VertexDescriptorCache cache;
        MTL::VertexDescriptor* mine = MTL::VertexDescriptor::alloc()->init();
        auto d = layout({{0, attribute(GL_FLOAT, 4)}});
        EXPECT_EQ(cache.set(0x11, d, mine), 0);
        EXPECT_EQ(mine->retainCount(), 2u);
        mine->release();
        uint32_t mask = 1;
        EXPECT_EQ(cache.get(mask, d), mine);
        EXPECT_EQ(mask, 0x11u);
    }
    EXPECT_EQ(SoftMetal::objectsAlive(), before);
}

TEST(VertexDescriptorCache, GrowsWithManyLayouts)
{
    int64_t before = SoftMetal::objectsAlive();
    {
        VertexDescriptorCache cache;
        for (int many : {1, 100, 10000})
            for (int i = 0; i < many; ++i) {
                uint32_t mask = 1;
                EXPECT_NE(cache.getOrCreate(mask, layout({{0, attribute(GL_FLOAT, 4, false, 16 + i)}})), nullptr);
            }
    }
    EXPECT_EQ(SoftMetal::objectsAlive(), before);
}

} // namespace
