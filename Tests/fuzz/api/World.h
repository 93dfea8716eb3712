// SPDX-License-Identifier: Apache-2.0
// What the calls of the api target work on: contexts, views, textures of the host, and memory of exactly the size that
// a call may touch, so that the address sanitizer sees the first byte beyond.
#pragma once

#include "ZALGLContextObjects.h"
#include "ZALMetalData.h"
#include "fuzz/Input.h"

#include <SoftMetal/SoftMetal.hpp>

#include <ZALMetal/ZALMetal.h>

#include <array>
#include <memory>
#include <string_view>
#include <vector>

namespace fuzz::api
{

/// A context of the run. A slot is empty, or its context lives.
struct Slot
{
    ZALMetalContext* context = nullptr;
    NSView* view = nullptr; // once it has a layer
};

/// Everything outside the input. Devices, queues, one context and loaded programs stay from run to run, because making
/// them takes most of the time; all else is made by the calls of a run and gone at its end.
class World
{
public:
    static constexpr size_t Slots = 4;
    static constexpr uint32_t LargestSide = 16384; // a texture may have no larger one
    static constexpr uint64_t MostTexels = 4096, MostClientBytes = 1u << 20;

    World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// The first context of a run, current, on the ways of one kind of device.
    void begin(bool intel, bool strict);
    /// Ends what the run has left and looks at it: afterwards a frame is drawn as ever.
    void end();

    /// A block of this many bytes, filled from the input, for one call.
    uint8_t* memory(size_t bytes, Input& input);
    void forgetMemory() { blocks_.clear(); }

    std::array<Slot, Slots> slots;
    int draws = 0, loads = 0, newQueues = 0; // how much a run may still do of what takes long
    bool mayDeletePrograms = false;          // those that stay from run to run; making them anew takes long
    MTL::CommandQueue* queues[2] = {};       // of the two devices
    std::vector<MTL::Texture*> hostTextures; // of several formats and sizes; they outlive the contexts

    /// Takes the slot's handle back and frees what ZALMetalContextRelease leaves to hosts that go on using it.
    void release(Slot& slot);
    void destroy(Slot& slot);

private:
    void loadPrograms();
    void forgetObjects();
    void checkFrame();
    void keep(NSView* view) { views_.push_back(view); }

    MTL::Device* devices_[2] = {};
    ZALMetalContext* root_ = nullptr; // its objects are those of the run's first context
    std::vector<std::unique_ptr<uint8_t[]>> blocks_;
    int runs_ = 0;
    std::vector<NSView*> views_; // of contexts that are gone; they outlive them
};

/// The texts that programs are loaded from: vertex and fragment programs in turn.
struct ProgramText
{
    bool vertex, metal;
    std::string_view text;
};
extern const std::array<ProgramText, 12> ProgramTexts;

/// Those loaded when a run begins, under the names 1 to 8: the first eight texts.
inline constexpr uint32_t LoadedPrograms = 8;

} // namespace fuzz::api
