// SPDX-License-Identifier: Apache-2.0
// What a command buffer holds between encoding and execution: plain records in API order.
#pragma once

#include "objects/Resources.h"
#include "raster/Pass.h"
#include "texturing/Copy.h"

#include <memory>
#include <variant>
#include <vector>

namespace softmetal {

struct DrawRecord
{
    raster::DrawState state; // its resource tables lie in the command buffer's arena
    raster::DrawCall call;
};

struct PassRecord
{
    raster::PassDescription description;
    std::vector<DrawRecord> draws;
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

/// What presentation asks of a drawable; the window room implements it.
class Presentable
{
public:
    virtual ~Presentable() = default;
    virtual void presentNow() = 0;
};

struct PresentRecord
{
    Presentable* drawable;
};

using Record = std::variant<PassRecord, CopyTextureRecord, CopyMemoryRecord, CopyBufferRecord, FillRecord, MipmapRecord, PresentRecord>;

/// Memory for inline bytes and resource tables; grows in chunks and is freed as a whole.
class Arena
{
public:
    void* allocate(size_t bytes)
    {
        constexpr size_t Chunk = 256 * 1024;
        bytes = (bytes + 63) & ~size_t{63};
        if (chunks_.empty() || used_ + bytes > size_) {
            size_ = bytes > Chunk ? bytes : Chunk;
            chunks_.push_back(std::make_unique<Memory>(size_));
            used_ = 0;
        }
        void* result = chunks_.back()->data() + used_;
        used_ += bytes;
        return result;
    }

private:
    std::vector<std::unique_ptr<Memory>> chunks_;
    size_t used_ = 0, size_ = 0;
};

} // namespace softmetal
