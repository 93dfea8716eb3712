// SPDX-License-Identifier: Apache-2.0
#include "raster/Pass.h"

#include "raster/Primitives.h"
#include "raster/Tiles.h"
#include "workers/Pool.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <memory>
#include <span>
#include <vector>

namespace softmetal::raster
{
namespace
{

constexpr size_t MostTriangles = 1u << 16; // held back before tiles are drawn
constexpr uint32_t PrimitivesAPart = 4096; // of a long list, which is set up in parts, several at a time
constexpr size_t PartsAtOnce = 8, MostSpares = 2 * PartsAtOnce;
constexpr size_t FewTiles = 1;

std::atomic<uint32_t> laneCount{4};

} // namespace

void setLanes(uint32_t count)
{
    laneCount = count;
}
uint32_t lanes()
{
    return laneCount.load(std::memory_order_relaxed);
}

class PassImplementation
{
public:
    explicit PassImplementation(const PassDescription& description)
        : pass_(description), tilesX_((description.width + TileSize - 1) / TileSize),
          tilesY_((description.height + TileSize - 1) / TileSize), bins_(static_cast<size_t>(tilesX_) * tilesY_)
    {}

    void draw(const DrawState& state, const DrawCall& call)
    {
        if (!state.pipeline || !state.pipeline->vertex) return;
        if (bins_.empty() && state.pipeline->rasterizationEnabled) return;
        const uint32_t step = cornersOf(call.primitive) * PrimitivesAPart;
        if (step == 0 || call.instanceCount != 1 || call.count <= step) return drawParts(state, {&call, 1});
        std::vector<DrawCall> parts;
        for (uint32_t first = 0; first < call.count; first += std::min(step, call.count - first)) {
            DrawCall& part = parts.emplace_back(call);
            part.start += first;
            part.count = std::min(step, call.count - first);
            part.firstPrimitive = first / cornersOf(call.primitive);
            if (parts.size() < PartsAtOnce) continue;
            drawParts(state, parts);
            parts.clear();
        }
        drawParts(state, parts);
    }

    void finish()
    {
        if (!finished_) flush();
        finished_ = true;
    }

private:
    /// Vertices that a primitive of a list has to itself; 0 for strips, whose primitives share them.
    static uint32_t cornersOf(uint8_t primitive)
    {
        constexpr uint32_t Corners[] = {1, 2, 0, 3, 0};
        return primitive < std::size(Corners) ? Corners[primitive] : 0;
    }

    /// Sets the parts up side by side and bins their triangles in order.
    void drawParts(const DrawState& state, std::span<const DrawCall> parts)
    {
        const size_t begin = draws_.size();
        for (size_t i = 0; i < parts.size(); ++i) {
            draws_.push_back(takeSpare());
            draws_.back()->state = state;
        }
        workers::parallelFor(parts.size(), [&](size_t i) {
            setUp(parts[i], pass_.width, pass_.height, pass_.depth.texture ? pass_.depth.texture->format : 0,
                  *draws_[begin + i]);
        });
        for (size_t d = begin; d < draws_.size(); ++d) {
            for (uint32_t i = 0; i < draws_[d]->triangles.size(); ++i)
                bin(*draws_[d], i);
            held_ += draws_[d]->triangles.size();
        }
        if (held_ > MostTriangles) flush();
    }

    /// Draws of this thread whose memory is used again: fresh pages cost more than setting up the triangles in them.
    static std::vector<std::unique_ptr<Draw>>& spares()
    {
        static thread_local std::vector<std::unique_ptr<Draw>> kept;
        return kept;
    }

    static std::unique_ptr<Draw> takeSpare()
    {
        if (spares().empty()) return std::make_unique<Draw>();
        std::unique_ptr<Draw> draw = std::move(spares().back());
        spares().pop_back();
        return draw;
    }

    static void giveBack(std::unique_ptr<Draw> draw)
    {
        if (spares().size() >= MostSpares || draw->triangles.capacity() > 2 * PrimitivesAPart) return;
        draw->triangles.clear();
        draw->planes.clear();
        spares().push_back(std::move(draw));
    }

    void bin(const Draw& draw, uint32_t index)
    {
        const Triangle& t = draw.triangles[index];
        for (uint32_t y = static_cast<uint32_t>(t.minY) / TileSize; y <= static_cast<uint32_t>(t.maxY) / TileSize; ++y)
            for (uint32_t x = static_cast<uint32_t>(t.minX) / TileSize; x <= static_cast<uint32_t>(t.maxX) / TileSize;
                 ++x) {
                const size_t tile = static_cast<size_t>(y) * tilesX_ + x;
                if (bins_[tile].empty()) filled_.push_back(tile);
                bins_[tile].push_back({&draw, index});
            }
    }

    void flush()
    {
        const bool first = !cleared_ && clears(pass_);
        auto work = [&](size_t tile) {
            auto x = static_cast<uint32_t>(tile % tilesX_) * TileSize,
                 y = static_cast<uint32_t>(tile / tilesX_) * TileSize;
            TileArea area{x, y, std::min(x + TileSize, pass_.width), std::min(y + TileSize, pass_.height)};
            if (first) clearTile(pass_, area);
            drawTile(pass_, area, bins_[tile]);
            bins_[tile].clear();
        };
        // Tiles without a triangle are left alone, and a single one is drawn before another thread would have woken up.
        if (first) workers::parallelFor(bins_.size(), work);
        else if (filled_.size() <= FewTiles) std::for_each(filled_.begin(), filled_.end(), work);
        else workers::parallelFor(filled_.size(), [&](size_t i) { work(filled_[i]); });
        filled_.clear();
        cleared_ = true;
        for (auto& draw : draws_)
            giveBack(std::move(draw));
        draws_.clear();
        held_ = 0;
    }

    PassDescription pass_;
    uint32_t tilesX_, tilesY_;
    std::vector<std::vector<Binned>> bins_;
    std::vector<size_t> filled_; // tiles whose bins hold something
    std::vector<std::unique_ptr<Draw>> draws_; // bins point to them
    size_t held_ = 0;
    bool cleared_ = false, finished_ = false;
};

Pass::Pass(const PassDescription& description) : implementation_(std::make_unique<PassImplementation>(description)) {}
Pass::~Pass()
{
    finish();
}
void Pass::draw(const DrawState& state, const DrawCall& call)
{
    implementation_->draw(state, call);
}
void Pass::finish()
{
    implementation_->finish();
}

} // namespace softmetal::raster
