// SPDX-License-Identifier: Apache-2.0
// One tile at a time: clears, then triangles in the order of the draws, batch by batch.
#include "raster/Tiles.h"

#include "formats/PixelFormat.h"
#include "raster/Output.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>
#include <memory>

namespace softmetal::raster {
namespace {

constexpr uint8_t LoadClear = 2;

uint8_t* texelAt(const Target& target, uint32_t x, uint32_t y)
{
    const abi::TextureLevel& level = target.texture->levels[target.level];
    return level.data + target.slice * level.slicePitch + target.plane * level.planePitch + static_cast<uint64_t>(y) * level.rowPitch +
           static_cast<uint64_t>(x) * formats::pixelFormatInfo(target.texture->format)->bytes;
}

void fillRows(const Target& target, const TileArea& area, const uint8_t* texel, uint32_t bytes)
{
    for (uint32_t y = area.y0; y < area.y1; ++y) {
        uint8_t* row = texelAt(target, area.x0, y);
        for (uint32_t x = area.x0; x < area.x1; ++x, row += bytes) std::memcpy(row, texel, bytes);
    }
}

void clearColor(const Target& target, const TileArea& area)
{
    const auto& format = *formats::pixelFormatInfo(target.texture->format);
    bool integer = format.component == formats::Component::Uint || format.component == formats::Component::Sint;
    float rgba[4];
    for (int i = 0; i < 4; ++i) {
        auto real = static_cast<float>(target.clearColor[i]);
        rgba[i] = integer ? std::bit_cast<float>(static_cast<uint32_t>(static_cast<int64_t>(target.clearColor[i]))) : real;
    }
    uint8_t texel[16] = {};
    formats::pack(format, rgba, texel);
    fillRows(target, area, texel, format.bytes);
}

void clearDepthStencil(const Target& target, const TileArea& area, bool depth)
{
    uint32_t format = target.texture->format, bytes = formats::pixelFormatInfo(format)->bytes;
    for (uint32_t y = area.y0; y < area.y1; ++y) {
        uint8_t* row = texelAt(target, area.x0, y);
        for (uint32_t x = area.x0; x < area.x1; ++x, row += bytes) {
            if (depth) formats::packDepth(format, static_cast<float>(target.clearDepth), row);
            else formats::packStencil(format, static_cast<uint8_t>(target.clearStencil), row);
        }
    }
}

struct Scratch
{
    abi::FragmentInput input;
    abi::FragmentOutput output;
};

/// Walks the triangles of one tile.
class TileWalk
{
public:
    TileWalk(const PassDescription& pass, const TileArea& area) : pass_(pass), area_(area), width_(lanes() / 2), all_(lanes() == 32 ? ~0u : (1u << lanes()) - 1)
    {
        static thread_local auto scratch = std::make_unique<Scratch>();
        in_ = &scratch->input;
        out_ = &scratch->output;
    }

    void draw(const Draw& draw, const Triangle& triangle)
    {
        draw_ = &draw;
        triangle_ = &triangle;
        planes_ = draw.planes.data() + triangle.firstPlane;
        uint32_t x0 = std::max<uint32_t>(area_.x0, static_cast<uint32_t>(triangle.minX)) / width_ * width_;
        uint32_t x1 = std::min<uint32_t>(area_.x1, static_cast<uint32_t>(triangle.maxX) + 1);
        uint32_t y0 = std::max<uint32_t>(area_.y0, static_cast<uint32_t>(triangle.minY)) & ~1u;
        uint32_t y1 = std::min<uint32_t>(area_.y1, static_cast<uint32_t>(triangle.maxY) + 1);
        limitX0_ = std::max<uint32_t>(area_.x0, static_cast<uint32_t>(triangle.minX));
        limitX1_ = x1;
        limitY0_ = std::max<uint32_t>(area_.y0, static_cast<uint32_t>(triangle.minY));
        limitY1_ = y1;
        for (uint32_t y = y0; y < y1; y += 2)
            for (uint32_t x = x0; x < x1; x += width_) {
                uint32_t mask = coverage(x, y);
                if (mask != 0) shade(x, y, mask);
            }
    }

private:
    /// Lanes of the batch at (x, y) whose pixel centres the triangle covers.
    uint32_t coverage(uint32_t x, uint32_t y) const
    {
        int64_t cx = static_cast<int64_t>(x) * SubpixelScale + SubpixelScale / 2, cy = static_cast<int64_t>(y) * SubpixelScale + SubpixelScale / 2;
        int64_t spanX = static_cast<int64_t>(width_ - 1) * SubpixelScale, spanY = SubpixelScale;
        uint32_t mask = inLimits(x, y);
        for (const Edge& e : triangle_->edges) {
            int64_t corner = e.a * cx + e.b * cy + e.c;
            int64_t most = corner + std::max<int64_t>(e.a * spanX, 0) + std::max<int64_t>(e.b * spanY, 0);
            if (most < 0) return 0;
            int64_t least = corner + std::min<int64_t>(e.a * spanX, 0) + std::min<int64_t>(e.b * spanY, 0);
            if (least >= 0) continue;
            uint32_t inside = 0;
            for (uint32_t lane = 0; lane < width_ * 2; ++lane) {
                int64_t value = corner + e.a * (laneX(lane) * SubpixelScale) + e.b * (laneY(lane) * SubpixelScale);
                inside |= static_cast<uint32_t>(value >= 0) << lane;
            }
            mask &= inside;
        }
        return mask;
    }

    /// Lanes within the tile, the scissor and the triangle's box.
    uint32_t inLimits(uint32_t x, uint32_t y) const
    {
        if (x >= limitX0_ && x + width_ <= limitX1_ && y >= limitY0_ && y + 2 <= limitY1_) return all_;
        uint32_t mask = 0;
        for (uint32_t lane = 0; lane < width_ * 2; ++lane) {
            uint32_t px = x + laneX(lane), py = y + laneY(lane);
            mask |= static_cast<uint32_t>(px >= limitX0_ && px < limitX1_ && py >= limitY0_ && py < limitY1_) << lane;
        }
        return mask;
    }

    void evaluate(const abi::Plane& plane, float* result) const
    {
        for (uint32_t lane = 0; lane < width_ * 2; ++lane)
            result[lane] = plane.origin + (in_->x.f[lane] - triangle_->originX) * plane.dx + (in_->y.f[lane] - triangle_->originY) * plane.dy;
    }

    PixelRows rowsOf(const Target& target, uint32_t x, uint32_t y) const
    {
        PixelRows rows;
        if (!target.texture) return rows;
        rows.row[0] = texelAt(target, x, y);
        rows.row[1] = rows.row[0] + target.texture->levels[target.level].rowPitch;
        return rows;
    }

    uint32_t test(uint32_t x, uint32_t y, const float* z, uint32_t mask)
    {
        return testDepthStencil(draw_->state, triangle_->frontFacing, pass_.depth, rowsOf(pass_.depth, x, y), pass_.stencil, rowsOf(pass_.stencil, x, y), z, mask);
    }

    void shade(uint32_t x, uint32_t y, uint32_t mask)
    {
        const Pipeline& pipeline = *draw_->state.pipeline;
        for (uint32_t lane = 0; lane < width_ * 2; ++lane) {
            in_->x.f[lane] = static_cast<float>(x + laneX(lane)) + 0.5f;
            in_->y.f[lane] = static_cast<float>(y + laneY(lane)) + 0.5f;
        }
        evaluate(planes_[0], in_->z.f);
        clampDepth();
        bool late = pipeline.fragment && !pipeline.earlyTests && (pipeline.discards || pipeline.writesDepth);
        if (!late) mask = test(x, y, in_->z.f, mask);
        if (mask == 0) return;
        if (pipeline.fragment) {
            runFragment(pipeline, mask);
            mask &= out_->mask;
            if (late && mask != 0) mask = test(x, y, pipeline.writesDepth ? writtenDepth() : in_->z.f, mask);
        }
        if (mask == 0) return;
        countVisible(mask);
        if (pipeline.fragment) storeAll(pipeline, x, y, mask);
    }

    /// Depths beyond the viewport's range do not reach the buffer.
    void clampDepth()
    {
        auto low = static_cast<float>(std::min(draw_->state.viewport[4], draw_->state.viewport[5]));
        auto high = static_cast<float>(std::max(draw_->state.viewport[4], draw_->state.viewport[5]));
        for (uint32_t lane = 0; lane < width_ * 2; ++lane) in_->z.f[lane] = std::min(std::max(in_->z.f[lane], low), high);
    }

    const float* writtenDepth()
    {
        for (uint32_t lane = 0; lane < width_ * 2; ++lane) {
            float z = out_->depth.f[lane];
            out_->depth.f[lane] = z > 0 ? (z < 1 ? z : 1.0f) : 0.0f;
        }
        return out_->depth.f;
    }

    void runFragment(const Pipeline& pipeline, uint32_t mask)
    {
        uint32_t quads = mask | mask >> 1;
        quads = (quads | quads >> 2) & 0x11111111;
        in_->mask = mask;
        in_->live = quads * 15;
        in_->frontFacing = triangle_->frontFacing;
        in_->primitiveId = triangle_->primitiveId;
        in_->sampleMask = 1;
        in_->originX = triangle_->originX;
        in_->originY = triangle_->originY;
        in_->planes = planes_ + 2;
        evaluate(planes_[1], in_->invW.f);
        for (uint32_t lane = 0; lane < width_ * 2; ++lane) in_->w.f[lane] = 1.0f / in_->invW.f[lane];
        if (pipeline.usesPointCoord && triangle_->point)
            for (uint32_t lane = 0; lane < width_ * 2; ++lane) {
                in_->pointX.f[lane] = (in_->x.f[lane] - triangle_->pointX) / triangle_->pointSize;
                in_->pointY.f[lane] = (in_->y.f[lane] - triangle_->pointY) / triangle_->pointSize;
            }
        pipeline.fragment(in_, out_, draw_->state.fragmentResources);
    }

    void countVisible(uint32_t mask) const
    {
        const DrawState& s = draw_->state;
        if (s.visibilityMode == 0 || !pass_.visibility || s.visibilityIndex >= pass_.visibilityCount) return;
        std::atomic_ref<uint64_t>(pass_.visibility[s.visibilityIndex]).fetch_add(static_cast<uint64_t>(std::popcount(mask)), std::memory_order_relaxed);
    }

    void storeAll(const Pipeline& pipeline, uint32_t x, uint32_t y, uint32_t mask)
    {
        for (uint32_t outputs = pipeline.colorOutputs; outputs != 0; outputs &= outputs - 1) {
            auto i = static_cast<uint32_t>(std::countr_zero(outputs));
            const Target& target = pass_.color[i];
            if (target.texture) storeColor(draw_->state, i, target, rowsOf(target, x, y), out_->color[i], mask);
        }
    }

    const PassDescription& pass_;
    const TileArea& area_;
    uint32_t width_, all_;
    const Draw* draw_ = nullptr;
    const Triangle* triangle_ = nullptr;
    const abi::Plane* planes_ = nullptr;
    uint32_t limitX0_ = 0, limitX1_ = 0, limitY0_ = 0, limitY1_ = 0;
    abi::FragmentInput* in_;
    abi::FragmentOutput* out_;
};

} // namespace

void clearTile(const PassDescription& pass, const TileArea& area)
{
    for (const Target& target : pass.color)
        if (target.texture && target.loadAction == LoadClear) clearColor(target, area);
    if (pass.depth.texture && pass.depth.loadAction == LoadClear) clearDepthStencil(pass.depth, area, true);
    if (pass.stencil.texture && pass.stencil.loadAction == LoadClear) clearDepthStencil(pass.stencil, area, false);
}

void drawTile(const PassDescription& pass, const TileArea& area, const std::vector<Binned>& triangles)
{
    TileWalk walk(pass, area);
    for (const Binned& b : triangles) walk.draw(*b.draw, b.draw->triangles[b.triangle]);
}

} // namespace softmetal::raster
