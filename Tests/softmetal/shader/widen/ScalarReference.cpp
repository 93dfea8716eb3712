// SPDX-License-Identifier: Apache-2.0
// The scalar program as it stands, for one lane after the other: what it calls are the functions below.
#include "softmetal/shader/widen/Programs.h"

#include <llvm/AsmParser/Parser.h>
#include <llvm/ExecutionEngine/Orc/LLJIT.h>
#include <llvm/Support/SourceMgr.h>

#include <gtest/gtest.h>

#include <bit>

namespace widentest {
namespace {

using Four = float __attribute__((vector_size(16)));

/// The lane that runs at the moment.
struct Current
{
    World* world = nullptr;
    Results* results = nullptr;
    uint32_t lane = 0;
    bool killed = false;
};
thread_local Current now;

uint32_t attribute(uint32_t index, uint32_t component) { return now.world->attributes[index * 4 + component].u[now.lane]; }
uint32_t vertexId() { return now.lane; }
uint32_t instanceId() { return now.world->baseInstance + now.lane / 8; }
uint32_t baseVertex() { return now.world->baseVertex; }
uint32_t baseInstance() { return now.world->baseInstance; }
uint32_t frontFacing() { return now.world->frontFacing; }
uint32_t primitiveId() { return now.world->primitiveId; }

float varying(uint32_t plane, uint32_t interpolation)
{
    const abi::Plane& p = now.world->planes[plane];
    float value = p.origin + (now.world->x[now.lane] - 0.5f) * p.dx + (now.world->y[now.lane] - 0.5f) * p.dy;
    return interpolation == 2 ? p.origin : (interpolation == 1 ? value : value * 2.0f);
}

float position(uint32_t component)
{
    const float values[] = {now.world->x[now.lane], now.world->y[now.lane], 0.25f, 0.5f};
    return values[component];
}

void storeWord(uint32_t word, float value) { now.results->words[word][now.lane] = std::bit_cast<uint32_t>(value); }
void storeColor(uint32_t output, uint32_t component, float value) { storeWord(output * 4 + component, value); }
void storeDepth(float value) { storeWord(DepthWord, value); }
void storeStencil(uint32_t value) { now.results->words[StencilWord][now.lane] = value; }
void storeCoverage(uint32_t value) { now.results->words[CoverageWord][now.lane] = value; }

const void* buffer(uint32_t index) { return now.world->resources.buffers[index]; }
const void* texture(uint32_t index) { return now.world->resources.textures[index]; }
const void* sampler(uint32_t index) { return now.world->resources.samplers[index]; }
void discard() { now.killed = true; }

Four sample(const abi::Texture* t, const void*, uint32_t mode, float s, float u, float r, uint32_t layer, float lod, float, float, float, float, float, float,
            uint32_t, uint32_t, uint32_t, float)
{
    ++now.results->samples;
    float level = mode == 1 || mode == 2 ? lod : 0.0f;
    Four result = {0, 0, 0, 0};
    for (uint32_t c = 0; c < 4; ++c) result[c] = texel(t, s, u, r, layer, level, c);
    return result;
}

struct Named
{
    const char* name;
    void* address;
};

template <typename F> Named named(const char* name, F* function) { return {name, reinterpret_cast<void*>(function)}; }

std::vector<Named> functions()
{
    return {
        named("softmetal_attribute", attribute),        named("softmetal_vertex_id", vertexId),         named("softmetal_instance_id", instanceId),
        named("softmetal_base_vertex", baseVertex),     named("softmetal_base_instance", baseInstance), named("softmetal_front_facing", frontFacing),
        named("softmetal_primitive_id", primitiveId),   named("softmetal_varying", varying),            named("softmetal_position", position),
        named("softmetal_store_output", storeWord),     named("softmetal_store_color", storeColor),     named("softmetal_store_depth", storeDepth),
        named("softmetal_store_stencil", storeStencil), named("softmetal_store_coverage", storeCoverage), named("softmetal_buffer", buffer),
        named("softmetal_texture", texture),            named("softmetal_sampler", sampler),            named("softmetal_discard", discard),
        named("softmetal_sample", sample),
    };
}

std::unique_ptr<llvm::orc::LLJIT> link(const std::string& text)
{
    auto context = std::make_unique<llvm::LLVMContext>();
    llvm::SMDiagnostic problem;
    auto module = llvm::parseAssemblyString(text, problem, *context);
    if (!module) return nullptr;
    auto jit = llvm::cantFail(llvm::orc::LLJITBuilder().create());
    llvm::orc::SymbolMap symbols;
    for (const Named& f : functions())
        symbols[jit->mangleAndIntern(f.name)] = {llvm::orc::ExecutorAddr::fromPtr(f.address), llvm::JITSymbolFlags::Exported};
    llvm::cantFail(jit->getMainJITDylib().define(llvm::orc::absoluteSymbols(std::move(symbols))));
    module->setDataLayout(jit->getDataLayout());
    llvm::cantFail(jit->addIRModule(llvm::orc::ThreadSafeModule(std::move(module), std::move(context))));
    return jit;
}

} // namespace

Results runScalar(const std::string& text, Stage stage, World& world)
{
    Results results;
    runtimeTable();
    refusal(program("ret void"), Stage::Vertex); // the target is registered with the first generator
    auto jit = link(text);
    if (!jit) {
        ADD_FAILURE() << "the program does not parse\n" << text;
        return results;
    }
    auto entry = llvm::cantFail(jit->lookup("softmetal_entry")).toPtr<void (*)()>();
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        now = {&world, &results, lane, false};
        if ((world.mask >> lane & 1) == 0) continue;
        entry();
        if (stage == Stage::Fragment && !now.killed) results.mask |= 1u << lane;
    }
    return results;
}

} // namespace widentest
