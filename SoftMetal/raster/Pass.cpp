// SPDX-License-Identifier: Apache-2.0
#include "raster/Pass.h"

#include "raster/Primitives.h"
#include "raster/Tiles.h"
#include "workers/Pool.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>
#include <memory>
#include <span>
#include <vector>

namespace softmetal::raster
{
namespace
{

// Triangles are held back before tiles are drawn, but no more than a processor's cache holds beside the tile.
constexpr size_t MostTriangles = 1u << 12;
constexpr uint32_t PrimitivesAPart = 4096; // of a long list, which is set up in parts, several at a time
constexpr size_t FewestParts = 2, MostSpares = 16;
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
          tilesY_((description.height + TileSize - 1) / TileSize), bins_(static_cast<size_t>(tilesX_) * tilesY_),
          ranges_(description.depth.texture ? bins_.size() : 1)
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
            if (parts.size() < std::max(FewestParts, workers::threadCount())) continue;
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
        const uint32_t depthFormat = pass_.depth.texture ? pass_.depth.texture->format : 0;
        if (parts.size() == 1) {
            Draw& draw = continues(state, parts[0]) ? *draws_.back() : add(state);
            const size_t first = draw.triangles.size();
            setUp(parts[0], pass_.width, pass_.height, depthFormat, draw);
            bin(draw, first);
        } else {
            const size_t begin = draws_.size();
            for (size_t i = 0; i < parts.size(); ++i)
                add(state);
            workers::parallelFor(parts.size(), [&](size_t i) {
                setUp(parts[i], pass_.width, pass_.height, depthFormat, *draws_[begin + i]);
            });
            for (size_t d = begin; d < draws_.size(); ++d)
                bin(*draws_[d], 0);
            // What has nothing to show does not keep its memory until the tiles are drawn.
            const auto shown = std::stable_partition(draws_.begin() + static_cast<std::ptrdiff_t>(begin), draws_.end(),
                                                     [](const auto& draw) { return draw->triangles.size() != 0; });
            std::for_each(shown, draws_.end(), [](auto& draw) { giveBack(std::move(draw)); });
            draws_.erase(shown, draws_.end());
        }
        if (held_ > MostTriangles) flush();
    }

    Draw& add(const DrawState& state)
    {
        draws_.push_back(takeSpare());
        draws_.back()->state = state;
        return *draws_.back();
    }

    /// Whether the last draw can take the call's triangles too: then a tile need not begin anew with them.
    bool continues(const DrawState& state, const DrawCall& call) const
    {
        if (draws_.empty()) return false;
        const Draw& last = *draws_.back();
        return last.points == (call.primitive == 0) && last.triangles.size() < PrimitivesAPart &&
               std::memcmp(&last.state, &state, sizeof state) == 0;
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

    void bin(const Draw& draw, size_t first)
    {
        held_ += draw.triangles.size() - first;
        for (size_t i = first; i < draw.triangles.size(); ++i) {
            const Triangle& t = draw.triangles[i];
            const Binned binned{&draw, static_cast<uint32_t>(i)};
            for (uint32_t y = t.minY / TileSize; y <= t.maxY / TileSize; ++y)
                for (uint32_t x = t.minX / TileSize; x <= t.maxX / TileSize; ++x) {
                    const size_t tile = static_cast<size_t>(y) * tilesX_ + x;
                    if (bins_[tile].empty()) filled_.push_back(tile);
                    bins_[tile].push_back(binned);
                }
        }
    }

    void flush()
    {
        const bool first = !cleared_ && clears(pass_);
        auto work = [&](size_t tile) {
            auto x = static_cast<uint32_t>(tile % tilesX_) * TileSize,
                 y = static_cast<uint32_t>(tile / tilesX_) * TileSize;
            TileArea area{x, y, std::min(x + TileSize, pass_.width), std::min(y + TileSize, pass_.height)};
            DepthRanges& ranges = ranges_[pass_.depth.texture ? tile : 0];
            if (first) clearTile(pass_, area, ranges);
            drawTile(pass_, area, ranges, bins_[tile]);
            bins_[tile].clear();
        };
        // Tiles without a triangle are left alone, and a single one is drawn before another thread would have woken up.
        if (first)
            workers::parallelFor(bins_.size(), work);
        else if (filled_.size() <= FewTiles)
            std::for_each(filled_.begin(), filled_.end(), work);
        else
            workers::parallelFor(filled_.size(), [&](size_t i) { work(filled_[i]); });
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
    std::vector<DepthRanges> ranges_;          // of each tile; without a depth buffer one that nobody touches
    std::vector<size_t> filled_;               // tiles whose bins hold something
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
