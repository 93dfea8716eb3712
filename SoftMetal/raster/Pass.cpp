// SPDX-License-Identifier: Apache-2.0
#include "raster/Pass.h"

#include "inspect/Counters.h"
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

// Triangles are held back before tiles are drawn, but no more than a processor's cache holds beside the tile.
constexpr size_t MostTriangles = 1u << 12;
constexpr uint32_t PrimitivesAPart = 4096; // of a long list, which is set up in parts, several at a time
constexpr size_t FewestParts = 2, MostParts = 64;
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
          touched_(bins_.size()), ranges_(description.depth.texture ? bins_.size() : 1)
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
            if (parts.size() < std::clamp(workers::threadCount(), FewestParts, MostParts)) continue;
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
        while (stores_.size() < parts.size())
            stores_.push_back(takeSpare());
        size_t before[MostParts];
        for (size_t i = 0; i < parts.size(); ++i)
            before[i] = stores_[i]->triangles.size();
        if (parts.size() == 1) {
            if (!continues(state, parts[0])) addDraw(state, parts[0], *stores_[0]);
            setUp(parts[0], pass_.width, pass_.height, depthFormat, draws_.back());
        } else {
            const size_t begin = draws_.size();
            for (size_t i = 0; i < parts.size(); ++i)
                addDraw(state, parts[i], *stores_[i]);
            workers::parallelFor(parts.size(), [&](size_t i) {
                setUp(parts[i], pass_.width, pass_.height, depthFormat, draws_[begin + i]);
            });
        }
        for (size_t i = 0; i < parts.size(); ++i)
            bin(draws_.size() - parts.size() + i, before[i]);
        if (held_ > MostTriangles) flush();
    }

    void addDraw(const DrawState& state, const DrawCall& call, Store& store)
    {
        draws_.push_back(drawOf(state, call.primitive, store));
        noteHiding(pass_, draws_.back());
    }

    /// Whether the last draw can take the call's triangles too: then a tile need not begin anew with them.
    bool continues(const DrawState& state, const DrawCall& call) const
    {
        if (draws_.empty()) return false;
        const Draw& last = draws_.back();
        return last.state == &state && last.points == (call.primitive == 0) && last.store == stores_[0].get();
    }

    /// Stores of this thread whose memory is used again: fresh pages cost more than setting up the triangles in them.
    static std::vector<std::unique_ptr<Store>>& spares()
    {
        static thread_local std::vector<std::unique_ptr<Store>> kept;
        return kept;
    }

    static std::unique_ptr<Store> takeSpare()
    {
        if (spares().empty()) return std::make_unique<Store>();
        std::unique_ptr<Store> store = std::move(spares().back());
        spares().pop_back();
        return store;
    }

    static void giveBack(std::unique_ptr<Store> store)
    {
        if (spares().size() >= MostParts || store->triangles.capacity() > 4 * PrimitivesAPart) return;
        store->triangles.clear();
        store->planes.clear();
        spares().push_back(std::move(store));
    }

    void bin(size_t draw, size_t first)
    {
        const Grown<Triangle>& triangles = draws_[draw].store->triangles;
        held_ += triangles.size() - first;
        for (size_t i = first; i < triangles.size(); ++i) {
            const Triangle& t = triangles[i];
            const Binned binned{static_cast<uint32_t>(draw), static_cast<uint32_t>(i)};
            for (uint32_t y = t.minY / TileSize; y <= t.maxY / TileSize; ++y)
                for (uint32_t x = t.minX / TileSize; x <= t.maxX / TileSize; ++x) {
                    const size_t tile = static_cast<size_t>(y) * tilesX_ + x;
                    if (bins_[tile].empty())
                        filled_.push_back(tile);
                    else if (draws_[draw].hides != 0)
                        hide(draws_[draw], t, tile);
                    touched_[tile] |= draws_[draw].touches;
                    bins_[tile].push_back(binned);
                }
        }
    }

    /// Empties the tile when the triangle, which comes next, covers all that the others would do there.
    void hide(const Draw& draw, const Triangle& triangle, size_t tile)
    {
        if ((touched_[tile] & ~draw.hides) != 0 || !covers(triangle, areaOf(tile))) return;
        inspect::count(inspect::counters.trianglesHidden, bins_[tile].size());
        bins_[tile].clear();
        touched_[tile] = 0;
    }

    TileArea areaOf(size_t tile) const
    {
        const auto x = static_cast<uint32_t>(tile % tilesX_) * TileSize,
                   y = static_cast<uint32_t>(tile / tilesX_) * TileSize;
        return {x, y, std::min(x + TileSize, pass_.width), std::min(y + TileSize, pass_.height)};
    }

    void flush()
    {
        const bool first = !cleared_ && clears(pass_);
        auto work = [&](size_t tile) {
            const TileArea area = areaOf(tile);
            DepthRanges& ranges = ranges_[pass_.depth.texture ? tile : 0];
            if (first) clearTile(pass_, area, ranges);
            drawTile(pass_, area, ranges, draws_.data(), bins_[tile]);
            bins_[tile].clear();
            touched_[tile] = 0;
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
        for (auto& store : stores_)
            giveBack(std::move(store));
        stores_.clear();
        draws_.clear();
        held_ = 0;
    }

    PassDescription pass_;
    uint32_t tilesX_, tilesY_;
    std::vector<std::vector<Binned>> bins_;
    std::vector<uint32_t> touched_;   // by what each bin holds: see Draw
    std::vector<DepthRanges> ranges_; // of each tile; without a depth buffer one that nobody touches
    std::vector<size_t> filled_;      // tiles whose bins hold something
    std::vector<Draw> draws_;
    std::vector<std::unique_ptr<Store>>
        stores_; // the first takes calls that are set up alone, the others parts of calls
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
