// SPDX-License-Identifier: Apache-2.0
// What a command buffer holds between encoding and execution: plain records in API order, and the memory they lie in.
#pragma once

#include "objects/Resources.h"
#include "raster/Pass.h"
#include "texturing/Copy.h"

#include <algorithm>
#include <memory>
#include <variant>
#include <vector>

namespace softmetal
{

struct DrawRecord
{
    uint32_t state; // in CommandStorage::states
    raster::DrawCall call;
};

/// A render pass; its draws follow one another in CommandStorage::draws.
struct PassRecord
{
    raster::PassDescription description;
    size_t firstDraw = 0, drawCount = 0;
    uint64_t serial = 0; // of all passes of the process, from 1
};

struct CopyTextureRecord
{
    const abi::Texture *from, *to;
    uint32_t fromLevel, fromSlice, toLevel, toSlice;
    texturing::Block block;
    uint32_t x, y, z;
};

struct CopyMemoryRecord
{
    const abi::Texture* texture;
    uint32_t level, slice;
    texturing::Block block;
    uint8_t* memory;
    uint64_t rowBytes, planeBytes;
    texturing::Aspect aspect;
    bool toTexture;
};

struct CopyBufferRecord
{
    const uint8_t* from;
    uint8_t* to;
    size_t bytes;
};

struct FillRecord
{
    uint8_t* to;
    size_t bytes;
    uint8_t value;
};

struct MipmapRecord
{
    const abi::Texture* texture;
};

using Record =
    std::variant<PassRecord, CopyTextureRecord, CopyMemoryRecord, CopyBufferRecord, FillRecord, MipmapRecord>;

/// What presentation asks of a drawable; the window room implements it.
class Presentable
{
public:
    virtual ~Presentable() = default;
    virtual void presentNow() = 0;
};

/// Memory for inline bytes and resource tables. Grows in chunks, which are used again after reset().
class Arena
{
public:
    void* allocate(size_t bytes)
    {
        bytes = (bytes + 63) & ~size_t{63};
        if (bytes > ChunkBytes) return large_.emplace_back(std::make_unique<Memory>(bytes))->data();
        if (chunks_.empty() || used_ + bytes > ChunkBytes) {
            if (!chunks_.empty()) ++current_;
            if (current_ == chunks_.size()) chunks_.push_back(std::make_unique<Memory>(ChunkBytes));
            used_ = 0;
        }
        void* result = chunks_[current_]->data() + used_;
        used_ += bytes;
        return result;
    }

    void reset()
    {
        large_.clear();
        // What the last use needed is kept for the next one, which is likely to need as much.
        if (const size_t kept = std::max(LeastKept, chunks_.empty() ? 0 : current_ + 1); chunks_.size() > kept)
            chunks_.resize(kept);
        current_ = used_ = 0;
    }

private:
    static constexpr size_t ChunkBytes = 256 * 1024, LeastKept = 32;
    std::vector<std::unique_ptr<Memory>> chunks_, large_;
    size_t current_ = 0, used_ = 0; // chunk being filled, and how far
};

/// All that a command buffer has been given. Passed from one command buffer to the next with its memory.
struct CommandStorage
{
    Arena arena;
    std::vector<Record> records;
    std::vector<DrawRecord> draws;
    std::vector<raster::DrawState> states; // each of one draw or more in a row; their resource tables lie in the arena
    std::vector<Presentable*> presents; // shown once everything else is done
    std::vector<ObjectRef> kept;        // alive until then

    void reset()
    {
        records.clear();
        draws.clear();
        states.clear();
        presents.clear();
        kept.clear();
        arena.reset();
    }
};

} // namespace softmetal
