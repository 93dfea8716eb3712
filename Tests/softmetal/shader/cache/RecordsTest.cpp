// SPDX-License-Identifier: Apache-2.0
#include "shader/cache/Records.h"

#include <gtest/gtest.h>

namespace
{

using namespace softmetal::shader;

/// Every field has a value of its own.
FunctionReflection reflection()
{
    FunctionReflection f;
    f.name = "lit";
    f.stage = Stage::Fragment;
    f.attributes = {{"position", 3, 4, ScalarType::Half, true}, {"normal", 5, 3, ScalarType::Short, false}};
    f.varyings = {{"colour", 4, ScalarType::UChar, Interpolation::Flat, 17}};
    f.bindings = {{BindingKind::Texture, "image", 6, 2, 7, 96, true, false, true, false},
                  {BindingKind::Buffer, "lights", 8, 1, 0, 640, false, true, false, true}};
    f.constants = {{"shadows", 9, 53, true}, {"layers", 10, 29, false}};
    f.hasPosition = true;
    f.pointSizeComponent = 11;
    f.colorOutputs = 5;
    f.clipComponent = 13;
    f.clipDistances = 2;
    for (uint32_t i = 0; i < softmetal::abi::MaxColorOutputs; ++i) {
        f.colorTypes[i] = static_cast<ScalarType>(i);
        f.colorComponents[i] = i + 20;
    }
    f.writesDepth = f.writesCoverage = f.discards = f.usesPointCoord = f.earlyFragmentTests = f.readsDepth = f.readsW = f.writesMemory = true;
    f.copiedTexture = 14;
    f.copiedPlanes[0] = 15;
    f.copiedPlanes[1] = 16;
    f.inputComponents = 12;
    return f;
}

FunctionRecord function()
{
    return {reflection(), {{1, 2, 3, 4, 5, 6, 7, 8, 9}, 4, {{0, "memcpy"}, {1, "memset"}}, {1, 0}}};
}

template <class Rows>
std::string textOf(const Rows& rows, std::string (*row)(const typename Rows::value_type&))
{
    std::string text;
    for (const auto& one : rows)
        text += row(one) + "\n";
    return text;
}

template <class... T>
std::string line(const T&... values)
{
    std::string text;
    auto add = [&](const auto& value) {
        if constexpr (std::is_convertible_v<decltype(value), std::string>)
            text += value;
        else
            text += std::to_string(static_cast<uint64_t>(value));
        text += " ";
    };
    (add(values), ...);
    return text;
}

std::string textOf(const FunctionReflection& f)
{
    std::string text =
        line(f.name, f.stage, f.hasPosition, f.pointSizeComponent, f.clipComponent, f.clipDistances, f.colorOutputs,
             f.writesDepth, f.writesCoverage, f.discards, f.usesPointCoord, f.earlyFragmentTests, f.readsDepth, f.readsInverseW, f.readsW,
             f.copiedTexture, f.copiedPlanes[0], f.copiedPlanes[1], f.writesMemory, f.inputComponents);
    for (uint32_t i = 0; i < softmetal::abi::MaxColorOutputs; ++i)
        text += line(f.colorTypes[i], f.colorComponents[i]);
    text += textOf(f.attributes,
                   [](const AttributeReflection& a) { return line(a.name, a.index, a.components, a.type, a.active); });
    text += textOf(f.varyings, [](const VaryingReflection& v) {
        return line(v.name, v.components, v.type, v.interpolation, v.firstComponent);
    });
    text += textOf(f.bindings, [](const BindingReflection& b) {
        return line(b.kind, b.name, b.index, b.count, b.textureType, b.minimumSize, b.depth, b.reads, b.writes, b.used);
    });
    return text + textOf(f.constants,
                         [](const ConstantReflection& c) { return line(c.name, c.index, c.dataType, c.required); });
}

TEST(Records, FunctionComesBackWithEveryField)
{
    auto back = functionRecord(toBytes(function()));
    ASSERT_TRUE(back);
    EXPECT_EQ(textOf(back->reflection), textOf(reflection()));
    EXPECT_EQ(back->code, function().code);
}

TEST(Records, LibraryComesBackWithEveryField)
{
    auto back =
        libraryRecord(toBytes(LibraryRecord{"program_source:1:1: warning: odd\n", {reflection(), {}, reflection()}}));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->messages, "program_source:1:1: warning: odd\n");
    ASSERT_EQ(back->functions.size(), 3u);
    EXPECT_EQ(textOf(back->functions[1]), textOf(FunctionReflection{}));
    EXPECT_EQ(textOf(back->functions[2]), textOf(reflection()));
}

TEST(Records, AreRefusedWhenTheyAreCutOrTooLong)
{
    const std::vector<uint8_t> whole = toBytes(function());
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(functionRecord(std::span(whole).first(length))) << length;
    std::vector<uint8_t> longer = whole;
    longer.push_back(0);
    EXPECT_FALSE(functionRecord(longer));
}

TEST(Records, TakeNoMoreMemoryThanTheyHaveBytes)
{
    const std::vector<uint8_t> whole = toBytes(function());
    for (size_t at = 0; at < whole.size(); ++at) {
        std::vector<uint8_t> wrong = whole;
        for (size_t i = at; i < std::min(at + 8, wrong.size()); ++i)
            wrong[i] = 0xff; // a length beyond all memory, somewhere
        auto back = functionRecord(wrong);
        if (back) {
            EXPECT_LE(back->code.bytes.size(), wrong.size());
        }
    }
}

} // namespace
