// SPDX-License-Identifier: Apache-2.0
// Scalar programs written as LLVM text, run two ways: widened, in batches of 4, 8 or 16 lanes, and as they are, lane by lane.
#pragma once

#include "shader/codegen/Codegen.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace widentest {

using softmetal::shader::Stage;
namespace abi = softmetal::abi;

inline constexpr uint32_t Lanes = 16; // that every run works on, in one or several batches
inline constexpr std::array<uint32_t, 3> Widths = {4, 8, 16};

/// What the programs can see: each value says where it comes from.
struct World
{
    World();
    alignas(64) std::array<abi::Lanes, abi::MaxVertexAttributes * 4> attributes{}; // attribute a, component c, lane i: (a * 4 + c) * 100 + i
    std::array<abi::Plane, 16> planes{};
    std::array<float, Lanes> x{}, y{};
    std::vector<uint32_t> numbers;  // buffer 0: element i is i * 10
    std::vector<uint32_t> scratch;  // buffer 1: zeros, may be written
    abi::Texture textures[2]{};     // their widths are 64 and 32
    abi::Sampler sampler{};
    abi::Resources resources{};
    uint32_t mask = 0xffff;         // lanes that are active (vertices) or covered (fragments)
    uint32_t baseVertex = 5, baseInstance = 2, frontFacing = 1, primitiveId = 77;
};

/// Vertices: words[component]. Fragments: words[output * 4 + component], then depth, stencil, coverage.
struct Results
{
    std::array<std::array<uint32_t, Lanes>, abi::MaxVertexOutputComponents> words{};
    uint32_t mask = 0; // fragments that survive
    uint32_t samples = 0; // texture accesses, counted by lane
    float real(uint32_t word, uint32_t lane) const;
};

inline constexpr uint32_t DepthWord = 32, StencilWord = 33, CoverageWord = 34;

/// A module with all declarations in front and the text as the body of the entry function.
std::string program(const std::string& body, const std::string& globals = {});

/// Compiles for a width and runs; fails the test on an error.
Results runWide(const std::string& text, Stage stage, uint32_t lanes, World& world);
/// The error of the compiler, empty when there is none.
std::string refusal(const std::string& text, Stage stage, uint32_t lanes = 8);
std::string listing(const std::string& text, Stage stage, uint32_t lanes);
Results runScalar(const std::string& text, Stage stage, World& world);

/// Runs both ways at every width with fresh worlds and expects equal words in all active lanes.
void expectSameAsScalar(const std::string& text, Stage stage = Stage::Vertex, uint32_t words = 8, uint32_t mask = 0xffff);

/// What a texture access returns; the two ways share it.
float texel(const abi::Texture* texture, float s, float t, float r, uint32_t layer, float lod, uint32_t component);

/// The runtime that widened code calls, and how often a loop was stopped.
const abi::RuntimeTable& runtimeTable();
uint32_t stoppedLoops();
/// Buffers that a lane left since the last call, a bit each.
uint64_t buffersLeft();
extern thread_local uint32_t sampledLanes;
extern thread_local std::vector<abi::SampleCall> seenCalls;

} // namespace widentest
