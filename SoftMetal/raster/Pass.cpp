// SPDX-License-Identifier: Apache-2.0
#include "raster/Pass.h"

#include "raster/Primitives.h"
#include "raster/Tiles.h"
#include "workers/Pool.h"

#include <algorithm>
#include <atomic>
#include <deque>

namespace softmetal::raster {
namespace {

constexpr size_t MostTriangles = 1u << 18; // held back before tiles are drawn

std::atomic<uint32_t> laneCount{4};

} // namespace

void setLanes(uint32_t count) { laneCount = count; }
uint32_t lanes() { return laneCount.load(std::memory_order_relaxed); }

class PassImplementation
{
public:
    explicit PassImplementation(const PassDescription& description)
        : pass_(description), tilesX_((description.width + TileSize - 1) / TileSize), tilesY_((description.height + TileSize - 1) / TileSize),
          bins_(static_cast<size_t>(tilesX_) * tilesY_)
    {
    }

    void draw(const DrawState& state, const DrawCall& call)
    {
        if (!state.pipeline || !state.pipeline->vertex || !state.pipeline->rasterizationEnabled || bins_.empty()) return;
        Draw& draw = draws_.emplace_back();
        draw.state = state;
        setUp(call, pass_.width, pass_.height, pass_.depth.texture ? pass_.depth.texture->format : 0, draw);
        for (uint32_t i = 0; i < draw.triangles.size(); ++i) bin(draw, i);
        held_ += draw.triangles.size();
        if (held_ > MostTriangles) flush();
    }

    void finish()
    {
        if (!finished_) flush();
        finished_ = true;
    }

private:
    void bin(const Draw& draw, uint32_t index)
    {
        const Triangle& t = draw.triangles[index];
        for (uint32_t y = static_cast<uint32_t>(t.minY) / TileSize; y <= static_cast<uint32_t>(t.maxY) / TileSize; ++y)
            for (uint32_t x = static_cast<uint32_t>(t.minX) / TileSize; x <= static_cast<uint32_t>(t.maxX) / TileSize; ++x)
                bins_[static_cast<size_t>(y) * tilesX_ + x].push_back({&draw, index});
    }

    void flush()
    {
        bool first = !cleared_;
        workers::parallelFor(bins_.size(), [&](size_t tile) {
            auto x = static_cast<uint32_t>(tile % tilesX_) * TileSize, y = static_cast<uint32_t>(tile / tilesX_) * TileSize;
            TileArea area{x, y, std::min(x + TileSize, pass_.width), std::min(y + TileSize, pass_.height)};
            if (first) clearTile(pass_, area);
            drawTile(pass_, area, bins_[tile]);
            bins_[tile].clear();
        });
        cleared_ = true;
        draws_.clear();
        held_ = 0;
    }

    PassDescription pass_;
    uint32_t tilesX_, tilesY_;
    std::vector<std::vector<Binned>> bins_;
    std::deque<Draw> draws_; // addresses stay valid
    size_t held_ = 0;
    bool cleared_ = false, finished_ = false;
};

Pass::Pass(const PassDescription& description) : implementation_(std::make_unique<PassImplementation>(description)) {}
Pass::~Pass() { finish(); }
void Pass::draw(const DrawState& state, const DrawCall& call) { implementation_->draw(state, call); }
void Pass::finish() { implementation_->finish(); }

} // namespace softmetal::raster
