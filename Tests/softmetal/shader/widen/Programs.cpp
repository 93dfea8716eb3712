// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <llvm/AsmParser/Parser.h>
#include <llvm/IR/LLVMContext.h>
#include <llvm/Support/SourceMgr.h>

#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cstring>
#include <map>
#include <mutex>

namespace widentest {

using namespace softmetal::shader;

thread_local uint32_t sampledLanes = 0;
thread_local std::vector<abi::SampleCall> seenCalls;

namespace {

constexpr const char* Declarations = R"(
declare i32 @softmetal_attribute(i32, i32)
declare i32 @softmetal_vertex_id()
declare i32 @softmetal_instance_id()
declare i32 @softmetal_base_vertex()
declare i32 @softmetal_base_instance()
declare float @softmetal_varying(i32, i32)
declare float @softmetal_position(i32)
declare i32 @softmetal_front_facing()
declare i32 @softmetal_primitive_id()
declare void @softmetal_store_output(i32, float)
declare void @softmetal_store_color(i32, i32, float)
declare void @softmetal_store_depth(float)
declare void @softmetal_store_stencil(i32)
declare void @softmetal_store_coverage(i32)
declare ptr @softmetal_buffer(i32)
declare ptr @softmetal_texture(i32)
declare ptr @softmetal_sampler(i32)
declare void @softmetal_discard()
declare float @softmetal_dfdx(float) memory(none) convergent
declare float @softmetal_dfdy(float) memory(none) convergent
declare <4 x float> @softmetal_sample(ptr, ptr, i32, float, float, float, i32, float, float, float, float, float, float, float, i32, i32, i32, float) memory(none) convergent
declare <4 x float> @softmetal_sample_compare(ptr, ptr, i32, float, float, float, i32, float, float, float, float, float, float, float, i32, i32, i32, float, float) memory(none) convergent
declare <4 x float> @softmetal_gather(ptr, ptr, i32, float, float, float, i32, float, float, float, float, float, float, float, i32, i32, i32, float, i32) memory(none) convergent
declare <4 x float> @softmetal_read(ptr, i32, i32, i32, i32, i32) memory(none) convergent
declare i32 @softmetal_texture_size(ptr, i32, i32) memory(none)
declare ptr @softmetal_constant_sampler(i64, i64, i64) memory(none)
)";

void answer(const abi::Texture* texture, abi::SampleCall* call, float extra)
{
    seenCalls.push_back(*call);
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        if ((call->mask >> lane & 1) == 0) continue;
        ++sampledLanes;
        float lod = call->lodMode == abi::LodMode::Level || call->lodMode == abi::LodMode::Bias ? call->lod.f[lane] : 0.0f;
        for (uint32_t c = 0; c < 4; ++c)
            call->result[c].f[lane] =
                texel(texture, call->coordinate[0].f[lane], call->coordinate[1].f[lane], call->coordinate[2].f[lane], call->layer.u[lane], lod, c) + extra;
    }
}

void sample(const abi::Texture* texture, const abi::Sampler*, abi::SampleCall* call) { answer(texture, call, 0.0f); }

void sampleCompare(const abi::Texture* texture, const abi::Sampler*, abi::SampleCall* call)
{
    answer(texture, call, 0.0f);
    for (uint32_t lane = 0; lane < Lanes; ++lane)
        if (call->mask >> lane & 1) call->result[0].f[lane] = call->compare.f[lane] < call->coordinate[0].f[lane] ? 1.0f : 0.0f;
}

void gather(const abi::Texture* texture, const abi::Sampler*, abi::SampleCall* call, uint32_t component)
{
    answer(texture, call, 100.0f * static_cast<float>(component));
}

void read(const abi::Texture* texture, abi::ReadCall* call)
{
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        if ((call->mask >> lane & 1) == 0) continue;
        ++sampledLanes;
        for (uint32_t c = 0; c < 4; ++c)
            call->result[c].u[lane] = texture->width + call->coordinate[0].u[lane] * 3 + call->coordinate[1].u[lane] * 5 + call->coordinate[2].u[lane] * 7 +
                                      call->layer.u[lane] * 11 + call->level.u[lane] * 13 + c;
    }
}

std::atomic<uint32_t> stopped{0};
void stopLoop() { ++stopped; }

std::atomic<uint64_t> outside{0};
void noteOutside(uint64_t buffers, uint32_t) { outside |= buffers; }

Generator& generator(uint32_t lanes)
{
    static std::mutex mutex;
    static std::map<uint32_t, std::unique_ptr<Generator>> made;
    std::lock_guard lock(mutex);
    auto& one = made[lanes];
    std::string error;
    if (!one) one = makeGenerator(runtimeTable(), lanes, error);
    return *one;
}

std::unique_ptr<llvm::Module> parse(const std::string& text, llvm::LLVMContext& context)
{
    llvm::SMDiagnostic problem;
    auto module = llvm::parseAssemblyString(text, problem, context);
    if (!module) ADD_FAILURE() << problem.getLineNo() << ": " << problem.getMessage().str() << "\n" << text;
    return module;
}

struct Compiled
{
    llvm::LLVMContext context;
    std::unique_ptr<Code> code;
    std::string error;

    Compiled(const std::string& text, Stage stage, uint32_t lanes)
    {
        auto module = parse(text, context);
        if (!module) return;
        cleanUp(*module);
        CompileTimes times;
        code = generator(lanes).generate(*module, stage, times, error);
    }
};

void copyLanes(abi::Lanes& to, const uint32_t* from, uint32_t lanes) { std::memcpy(to.u, from, lanes * sizeof(uint32_t)); }

void runVertices(abi::VertexFunction function, uint32_t lanes, World& world, Results& results)
{
    for (uint32_t first = 0; first < Lanes; first += lanes) {
        auto attributes = world.attributes;
        for (uint32_t a = 0; a < attributes.size(); ++a) copyLanes(attributes[a], world.attributes[a].u + first, lanes);
        abi::VertexInput input{};
        input.mask = world.mask >> first & ((1u << lanes) - 1);
        input.baseVertex = world.baseVertex;
        input.baseInstance = world.baseInstance;
        input.attributes = attributes.data();
        for (uint32_t i = 0; i < lanes; ++i) {
            input.vertexId.u[i] = first + i;
            input.instanceId.u[i] = world.baseInstance + (first + i) / 8;
        }
        auto output = std::make_unique<abi::VertexOutput>();
        function(&input, output.get(), &world.resources);
        for (uint32_t c = 0; c < abi::MaxVertexOutputComponents; ++c) std::memcpy(&results.words[c][first], output->component[c].u, lanes * sizeof(uint32_t));
    }
}

uint32_t liveQuads(uint32_t mask)
{
    uint32_t live = 0;
    for (uint32_t quad = 0; quad < Lanes / 4; ++quad)
        if (mask >> quad * 4 & 15) live |= 15u << quad * 4;
    return live;
}

void fillInput(abi::FragmentInput& input, const World& world, uint32_t first, uint32_t lanes)
{
    input.mask = world.mask >> first & ((1u << lanes) - 1);
    input.live = liveQuads(input.mask);
    input.frontFacing = world.frontFacing;
    input.primitiveId = world.primitiveId;
    input.originX = 0.5f;
    input.originY = 0.5f;
    input.planes = world.planes.data();
    for (uint32_t i = 0; i < lanes; ++i) {
        input.x.f[i] = world.x[first + i];
        input.y.f[i] = world.y[first + i];
        input.z.f[i] = 0.25f;
        input.invW.f[i] = 0.5f;
        input.w.f[i] = 2.0f;
    }
}

void runFragments(abi::FragmentFunction function, uint32_t lanes, World& world, Results& results)
{
    for (uint32_t first = 0; first < Lanes; first += lanes) {
        abi::FragmentInput input{};
        fillInput(input, world, first, lanes);
        abi::FragmentOutput output{};
        function(&input, &output, &world.resources);
        results.mask |= output.mask << first;
        const abi::Lanes* words[] = {&output.depth, &output.stencil, &output.coverage};
        for (uint32_t w = 0; w < 32; ++w) std::memcpy(&results.words[w][first], output.color[w / 4][w % 4].u, lanes * sizeof(uint32_t));
        for (uint32_t w = 0; w < 3; ++w) std::memcpy(&results.words[DepthWord + w][first], words[w]->u, lanes * sizeof(uint32_t));
    }
}

} // namespace

World::World() : numbers(256), scratch(256)
{
    for (uint32_t a = 0; a < attributes.size(); ++a)
        for (uint32_t lane = 0; lane < Lanes; ++lane) attributes[a].u[lane] = a * 100 + lane;
    for (uint32_t p = 0; p < planes.size(); ++p) planes[p] = {static_cast<float>(p), 0.1f * static_cast<float>(p + 1), 0.7f};
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        x[lane] = static_cast<float>(lane / 4 * 2 + lane % 2) + 0.5f;
        y[lane] = static_cast<float>(lane / 2 % 2) + 0.5f;
    }
    for (uint32_t i = 0; i < numbers.size(); ++i) numbers[i] = i * 10;
    textures[0].width = 64;
    textures[0].height = 16;
    textures[0].depth = 1;
    textures[0].arrayLength = 3;
    textures[0].levelCount = 7;
    textures[0].sampleCount = 1;
    textures[1].width = 32;
    resources.buffers[0] = reinterpret_cast<const uint8_t*>(numbers.data());
    resources.buffers[1] = reinterpret_cast<const uint8_t*>(scratch.data());
    resources.bufferLengths[0] = numbers.size() * sizeof numbers[0];
    resources.bufferLengths[1] = scratch.size() * sizeof scratch[0];
    resources.textures[0] = &textures[0];
    resources.textures[1] = &textures[1];
    resources.samplers[0] = &sampler;
}

float Results::real(uint32_t word, uint32_t lane) const { return std::bit_cast<float>(words[word][lane]); }

float texel(const abi::Texture* texture, float s, float t, float r, uint32_t layer, float lod, uint32_t component)
{
    float base = texture ? static_cast<float>(texture->width) : 0.0f;
    return base + s * static_cast<float>(component + 1) + t * 0.5f + r * 0.25f + static_cast<float>(layer) + lod * 3.0f;
}

std::string program(const std::string& body, const std::string& globals)
{
    return Declarations + globals + "\ndefine void @softmetal_entry() {\n" + body + "\n}\n";
}

const abi::RuntimeTable& runtimeTable()
{
    static const abi::RuntimeTable table = {abi::Version, 0, sample, sampleCompare, gather, read, stopLoop, noteOutside, nullptr, nullptr};
    return table;
}

uint32_t stoppedLoops() { return stopped; }
uint64_t buffersLeft() { return outside.exchange(0); }

Results runWide(const std::string& text, Stage stage, uint32_t lanes, World& world)
{
    Results results;
    Compiled compiled(text, stage, lanes);
    if (!compiled.code) {
        ADD_FAILURE() << compiled.error << "\n" << text;
        return results;
    }
    sampledLanes = 0;
    seenCalls.clear();
    void* address = compiled.code->address();
    if (stage == Stage::Vertex) runVertices(reinterpret_cast<abi::VertexFunction>(address), lanes, world, results);
    else runFragments(reinterpret_cast<abi::FragmentFunction>(address), lanes, world, results);
    results.samples = sampledLanes;
    return results;
}

std::string refusal(const std::string& text, Stage stage, uint32_t lanes) { return Compiled(text, stage, lanes).error; }

std::string listing(const std::string& text, Stage stage, uint32_t lanes)
{
    llvm::LLVMContext context;
    auto module = parse(text, context);
    if (!module) return {};
    cleanUp(*module);
    std::string error;
    std::string result = generator(lanes).listing(*module, stage, error);
    EXPECT_EQ(error, "");
    return result;
}

void expectSameAsScalar(const std::string& text, Stage stage, uint32_t words, uint32_t mask)
{
    World first;
    first.mask = mask;
    Results scalar = runScalar(text, stage, first);
    for (uint32_t lanes : Widths) {
        World world;
        world.mask = mask;
        Results wide = runWide(text, stage, lanes, world);
        EXPECT_EQ(wide.mask, scalar.mask) << lanes << " lanes";
        for (uint32_t w = 0; w < words; ++w) {
            for (uint32_t lane = 0; lane < Lanes; ++lane) {
                if ((mask >> lane & 1) == 0) continue;
                ASSERT_EQ(wide.words[w][lane], scalar.words[w][lane]) << lanes << " lanes, word " << w << ", lane " << lane << "\n" << text;
            }
        }
        EXPECT_EQ(world.scratch, first.scratch) << lanes << " lanes";
    }
}

} // namespace widentest
