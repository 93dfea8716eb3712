// SPDX-License-Identifier: Apache-2.0
// Sampling lane by lane: coordinates to a level of detail, to texels and weights, to a colour.
#include "texturing/Sampling.h"

#include "texturing/Cube.h"
#include "texturing/SamplingKernel.h"
#include "texturing/Texels.h"
#include "vectors/InstructionSet.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace softmetal::texturing {
namespace {

using abi::LodMode;
using abi::MaxLanes;
using abi::SampleCall;
using abi::Sampler;
using abi::Texture;
using abi::TextureLevel;

enum Address : uint8_t { ClampToEdge = 0, MirrorClampToEdge = 1, Repeat = 2, MirrorRepeat = 3, ClampToZero = 4, ClampToBorder = 5 };
constexpr uint8_t Linear = 1, MipNone = 0, MipLinear = 2;
constexpr int64_t Outside = -1;

/// A coordinate within a level: whole texel, or Outside where the border's colour counts.
int64_t wrap(int64_t i, int64_t size, uint8_t mode)
{
    switch (mode) {
    case Repeat: {
        int64_t r = i % size;
        return r < 0 ? r + size : r;
    }
    case MirrorRepeat: {
        int64_t r = i % (2 * size);
        if (r < 0) r += 2 * size;
        return r < size ? r : 2 * size - 1 - r;
    }
    case MirrorClampToEdge: return std::min(i < 0 ? -1 - i : i, size - 1);
    case ClampToZero:
    case ClampToBorder: return i < 0 || i >= size ? Outside : i;
    default: return std::clamp<int64_t>(i, 0, size - 1);
    }
}

/// Keeps wild coordinates in the range of whole numbers; not-a-number counts as zero.
double tame(double v) { return v == v ? std::clamp(v, -1e9, 1e9) : 0.0; }

/// Before the swizzle.
Texel plainBorder(const Sampler& sampler, bool zero)
{
    float alpha = zero || sampler.borderColor == 0 ? 0.0f : 1.0f, rgb = !zero && sampler.borderColor == 2 ? 1.0f : 0.0f;
    return {{rgb, rgb, rgb, alpha}};
}

Texel borderColor(const Texture& texture, const Sampler& sampler, bool zero)
{
    const Texel plain = plainBorder(sampler, zero);
    return texture.identity ? plain : swizzled(texture, plain.c);
}

/// One lane's access, with everything that is the same for its levels.
struct Lane
{
    const Texture& texture;
    const Access& access;
    const Sampler& sampler;
    double s, t, r; // normalised, or pixels
    int32_t offset[3];
    uint32_t slice;
    const Texel* border;
};

Texel faceTexel(const Lane& lane, const TextureLevel& level, int64_t x, int64_t y, uint32_t slice)
{
    return texelAt(lane.texture, level, static_cast<uint32_t>(x), static_cast<uint32_t>(y), 0, slice);
}

/// One step beyond an edge of a cube's face lies the neighbouring face's outermost texel.
Texel beyondEdge(const Lane& lane, const TextureLevel& level, int64_t x, int64_t y)
{
    auto size = static_cast<int64_t>(level.width);
    float scale = 1.0f / static_cast<float>(size);
    auto [dx, dy, dz] = directionOf({lane.slice % 6, (static_cast<float>(x) + 0.5f) * scale, (static_cast<float>(y) + 0.5f) * scale});
    FacePosition there = faceOf(dx, dy, dz);
    auto place = [&](float along) { return std::clamp(static_cast<int64_t>(along * static_cast<float>(size)), int64_t{0}, size - 1); };
    return faceTexel(lane, level, place(there.s), place(there.t), lane.slice - lane.slice % 6 + there.face);
}

/// Faces meet without a seam, whatever the address modes. Beyond a corner there is no texel: the mean of the three around it.
Texel cubeTexel(const Lane& lane, const TextureLevel& level, int64_t x, int64_t y)
{
    int64_t last = static_cast<int64_t>(level.width) - 1, nearX = std::clamp<int64_t>(x, 0, last), nearY = std::clamp<int64_t>(y, 0, last);
    if (x == nearX && y == nearY) return faceTexel(lane, level, x, y, lane.slice);
    if (x == nearX || y == nearY) return beyondEdge(lane, level, x, y);
    Texel result = faceTexel(lane, level, nearX, nearY, lane.slice);
    const Texel beside[] = {beyondEdge(lane, level, x, nearY), beyondEdge(lane, level, nearX, y)};
    for (int c = 0; c < 4; ++c) result.c[c] = (result.c[c] + beside[0].c[c] + beside[1].c[c]) / 3;
    return result;
}

Texel texel(const Lane& lane, const TextureLevel& level, int64_t x, int64_t y, int64_t z)
{
    if (lane.access.cube) return cubeTexel(lane, level, x, y);
    x = wrap(x, level.width, lane.sampler.sAddress);
    y = lane.access.dimensions > 1 ? wrap(y, level.height, lane.sampler.tAddress) : 0;
    z = lane.access.dimensions > 2 ? wrap(z, level.depth, lane.sampler.rAddress) : 0;
    if (x == Outside || y == Outside || z == Outside) return *lane.border;
    return texelAt(lane.texture, level, static_cast<uint32_t>(x), static_cast<uint32_t>(y), static_cast<uint32_t>(z), lane.slice);
}

/// Position in texels along one axis.
double scaled(double coordinate, uint32_t size, bool normalized) { return tame(normalized ? coordinate * size : coordinate); }

Texel nearest(const Lane& lane, const TextureLevel& level)
{
    bool n = lane.sampler.normalizedCoordinates != 0;
    auto x = static_cast<int64_t>(std::floor(scaled(lane.s, level.width, n))) + lane.offset[0];
    auto y = static_cast<int64_t>(std::floor(scaled(lane.t, level.height, n))) + lane.offset[1];
    auto z = static_cast<int64_t>(std::floor(scaled(lane.r, level.depth, n))) + lane.offset[2];
    if (lane.access.cube) return texel(lane, level, std::min<int64_t>(x, level.width - 1), std::min<int64_t>(y, level.height - 1), 0);
    return texel(lane, level, x, y, z);
}

Texel mix(const Texel& a, const Texel& b, float t)
{
    Texel result;
    for (int i = 0; i < 4; ++i) result.c[i] = a.c[i] + (b.c[i] - a.c[i]) * t;
    return result;
}

struct Axis
{
    int64_t first;
    float weight; // of the second
};

Axis axis(double position, int32_t offset)
{
    double p = position - 0.5, whole = std::floor(p);
    return {static_cast<int64_t>(whole) + offset, static_cast<float>(p - whole)};
}

Texel linear(const Lane& lane, const TextureLevel& level)
{
    bool n = lane.sampler.normalizedCoordinates != 0;
    Axis x = axis(scaled(lane.s, level.width, n), lane.offset[0]);
    Axis y = lane.access.dimensions > 1 ? axis(scaled(lane.t, level.height, n), lane.offset[1]) : Axis{0, 0};
    Axis z = lane.access.dimensions > 2 ? axis(scaled(lane.r, level.depth, n), lane.offset[2]) : Axis{0, 0};
    auto row = [&](int64_t v, int64_t w) { return mix(texel(lane, level, x.first, v, w), texel(lane, level, x.first + 1, v, w), x.weight); };
    auto plane = [&](int64_t w) { return lane.access.dimensions > 1 ? mix(row(y.first, w), row(y.first + 1, w), y.weight) : row(0, w); };
    return lane.access.dimensions > 2 ? mix(plane(z.first), plane(z.first + 1), z.weight) : plane(0);
}

Texel atLevel(const Lane& lane, uint32_t level, bool linearFilter)
{
    const TextureLevel& image = lane.texture.levels[std::min(level, lane.texture.levelCount - 1)];
    return linearFilter ? linear(lane, image) : nearest(lane, image);
}

/// What a level of detail means for a sampler: one level, or two with the weight of the second.
struct Levels
{
    uint32_t first;
    float weight;
    bool linearFilter;
};

Levels levelsOf(const Lane& lane, float lod)
{
    const Sampler& s = lane.sampler;
    bool linearFilter = (lod > 0 ? s.minFilter : s.magFilter) == Linear;
    if (s.mipFilter == MipNone) return {0, 0, linearFilter};
    float level = std::clamp(lod, 0.0f, static_cast<float>(lane.texture.levelCount - 1));
    if (s.mipFilter != MipLinear) return {static_cast<uint32_t>(std::ceil(level + 0.5f) - 1), 0, linearFilter};
    float whole = std::floor(level);
    return {static_cast<uint32_t>(whole), level - whole, linearFilter};
}

Texel filtered(const Lane& lane, float lod)
{
    Levels l = levelsOf(lane, lod);
    Texel near = atLevel(lane, l.first, l.linearFilter);
    return l.weight == 0 ? near : mix(near, atLevel(lane, l.first + 1, l.linearFilter), l.weight);
}

// ---- level of detail ---------------------------------------------------------------------------------------------------

struct Footprint
{
    float dx[3], dy[3]; // texels a pixel step covers on level 0, along x and along y
};

float log2Exact(float v)
{
    // Exponent, and a polynomial of the mantissa: the same bits on every machine.
    if (!(v > 0)) return -126.0f;
    int exponent = 0;
    float m = std::frexp(v, &exponent);
    if (m < 0.70710678f) {
        m *= 2;
        --exponent;
    }
    float s = (m - 1) / (m + 1), z = s * s;
    float p = 2.885390082f + z * (0.961796694f + z * (0.577078016f + z * (0.412198583f + z * 0.320598898f)));
    return static_cast<float>(exponent) + s * p;
}

float lengthSquared(const float* v) { return v[0] * v[0] + v[1] * v[1] + v[2] * v[2]; }

float lodOf(const Footprint& f) { return 0.5f * log2Exact(std::max(lengthSquared(f.dx), lengthSquared(f.dy))); }

void scaleToTexels(const Texture& texture, const Access& access, bool normalized, float* v)
{
    if (!normalized) return;
    const auto sizes = {static_cast<float>(texture.width), static_cast<float>(texture.height), static_cast<float>(texture.depth)};
    int i = 0;
    for (float size : sizes) {
        v[i] = i < access.dimensions ? v[i] * size : 0.0f;
        ++i;
    }
}

/// Differences between the lanes of a quad.
Footprint footprint(const SampleCall& call, uint32_t lane, const Texture& texture, const Access& access, const Sampler& sampler)
{
    Footprint f{};
    bool given = call.lodMode == LodMode::Gradient;
    uint32_t left = lane & ~1u, right = lane | 1u, up = lane & ~2u, down = lane | 2u;
    for (int i = 0; i < 3; ++i) {
        const float* c = call.coordinate[i].f;
        f.dx[i] = given ? call.gradientX[i].f[lane] : c[right] - c[left];
        f.dy[i] = given ? call.gradientY[i].f[lane] : c[down] - c[up];
    }
    if (access.cube) {
        // On the face of this lane: direction differences projected, as if the face went on.
        float c[3] = {call.coordinate[0].f[lane], call.coordinate[1].f[lane], call.coordinate[2].f[lane]};
        float major = std::max({std::fabs(c[0]), std::fabs(c[1]), std::fabs(c[2])});
        float scale = major > 0 ? 0.5f * static_cast<float>(texture.width) / major : 0.0f;
        for (int i = 0; i < 3; ++i) {
            f.dx[i] *= scale;
            f.dy[i] *= scale;
        }
        return f;
    }
    scaleToTexels(texture, access, sampler.normalizedCoordinates != 0, f.dx);
    scaleToTexels(texture, access, sampler.normalizedCoordinates != 0, f.dy);
    return f;
}

float levelOfDetail(const SampleCall& call, uint32_t lane, const Sampler& sampler, const Footprint* f)
{
    float lod = 0;
    if (call.lodMode == LodMode::Level) lod = call.lod.f[lane];
    else if (f) lod = lodOf(*f);
    if (call.lodMode == LodMode::Bias) lod += call.lod.f[lane];
    lod = std::max(lod, call.minLodClamp);
    lod = lod == lod ? lod : 0.0f;
    return std::max(std::min(lod, sampler.lodMaxClamp), sampler.lodMinClamp);
}

/// Several probes along the longer side of the footprint, each at the shorter side's level.
Texel anisotropic(Lane lane, const Footprint& f, const SampleCall& call, uint32_t at)
{
    float along = lengthSquared(f.dx), across = lengthSquared(f.dy);
    const float* major = along >= across ? f.dx : f.dy;
    float longer = std::sqrt(std::max(along, across)), shorter = std::sqrt(std::min(along, across));
    float level = std::max(shorter, longer / static_cast<float>(lane.sampler.maxAnisotropy));
    if (!(longer > 0 && longer < std::numeric_limits<float>::infinity())) return filtered(lane, levelOfDetail(call, at, lane.sampler, &f));
    // A footprint that is even but for rounding takes one probe: the count must not flicker between neighbouring pixels.
    constexpr float Even = 1.0f / 64;
    auto probes = static_cast<int>(std::ceil(longer / level - Even));
    if (probes <= 1) return filtered(lane, levelOfDetail(call, at, lane.sampler, &f));
    float lod = log2Exact(level) + (call.lodMode == LodMode::Bias ? call.lod.f[at] : 0.0f);
    lod = std::max(std::min(std::max(lod, call.minLodClamp), lane.sampler.lodMaxClamp), lane.sampler.lodMinClamp);
    bool n = lane.sampler.normalizedCoordinates != 0;
    double step[3] = {major[0] / (n ? lane.texture.width : 1.0), major[1] / (n ? lane.texture.height : 1.0), major[2] / (n ? lane.texture.depth : 1.0)};
    double s = lane.s, t = lane.t, r = lane.r;
    Texel sum{};
    for (int i = 0; i < probes; ++i) {
        double d = (i + 0.5) / probes - 0.5;
        lane.s = s + step[0] * d;
        lane.t = t + step[1] * d;
        lane.r = r + step[2] * d;
        Texel probe = filtered(lane, lod);
        for (int c = 0; c < 4; ++c) sum.c[c] += probe.c[c];
    }
    for (float& c : sum.c) c /= static_cast<float>(probes);
    return sum;
}

void setResult(SampleCall& call, uint32_t lane, const Texel& value)
{
    for (int i = 0; i < 4; ++i) call.result[i].f[lane] = value.c[i];
}

Lane laneAt(const Texture& texture, const Sampler& sampler, const SampleCall& call, uint32_t i, const Texel* border)
{
    const auto& access = *static_cast<const Access*>(texture.sampling);
    Lane lane{texture, access, sampler, call.coordinate[0].f[i], call.coordinate[1].f[i], call.coordinate[2].f[i],
              {call.offset[0], call.offset[1], call.offset[2]}, 0, border};
    uint32_t layer = access.array ? std::min(call.layer.u[i], std::max(texture.arrayLength, 1u) - 1) : 0;
    if (access.cube) {
        FacePosition face = faceOf(call.coordinate[0].f[i], call.coordinate[1].f[i], call.coordinate[2].f[i]);
        lane.s = face.s;
        lane.t = face.t;
        layer = layer * 6 + face.face;
    }
    lane.slice = layer;
    return lane;
}

bool nothingThere(const Texture* texture, const Sampler* sampler)
{
    return !texture || !sampler || texture->levelCount == 0 || !texture->sampling || !static_cast<const Access*>(texture->sampling)->format;
}

void zeros(SampleCall& call)
{
    for (uint32_t i = 0; i < MaxLanes; ++i)
        if (call.mask >> i & 1) setResult(call, i, Texel{});
}

/// Whether every texel of a level lies within the reach of a 32-bit offset.
bool fitsOffsets(const Texture& texture)
{
    const TextureLevel& first = texture.levels[0];
    return first.planePitch * std::max(first.depth, 1u) <= 0x7FFFFFFF;
}

/// Whether the call takes its level from differences, given or within quads.
bool hasFootprint(const SampleCall& call) { return call.lodMode == LodMode::Gradient || (call.stage == 1 && call.lodMode != LodMode::Level); }

bool choosesLevel(const Sampler& sampler) { return sampler.mipFilter != MipNone || sampler.minFilter != sampler.magFilter || sampler.maxAnisotropy > 1; }

/// Of the best set of instructions, by lanes.
struct Kernels
{
    SampleLanes four, eight, sixteen;
};

const Kernels& chosenKernels()
{
    static const Kernels kernels = [] {
        const auto made = vectors::pick(base::sampleLanesFor, avx2::sampleLanesFor, avx512::sampleLanesFor);
        return Kernels{made(4), made(8), made(16)};
    }();
    return kernels;
}

/// Takes the call when it is of a kind that all lanes can do at once.
bool sampledAtOnce(const Texture& texture, const Access& access, const Sampler& sampler, SampleCall& call)
{
    const TexelKind kind = texelKind(texture.format);
    const bool quads = hasFootprint(call), needsLod = choosesLevel(sampler);
    bool simple = !needsLod || ((!quads || sampler.normalizedCoordinates != 0) && sampler.maxAnisotropy <= 1);
    if (kind == TexelKind::None || access.cube || access.array || !simple || !fitsOffsets(texture)) return false;
    const Texel border = plainBorder(sampler, sampler.sAddress == ClampToZero); // red and blue are alike in every border
    SampleJob job{&texture, &sampler, access.dimensions, kind, access.format->bytes, needsLod, quads, {border.c[0], border.c[1], border.c[2], border.c[3]}, {}};
    constexpr uint8_t Red = 2, Blue = 4;
    for (int c = 0; c < 4; ++c) {
        const uint8_t from = texture.swizzle[c];
        job.order[c] = access.format->bgra && (from == Red || from == Blue) ? Red + Blue - from : from;
    }
    const Kernels& kernels = chosenKernels();
    (call.mask > 0xFF ? kernels.sixteen : call.mask > 0xF ? kernels.eight : kernels.four)(job, call);
    return true;
}

void sample(const Texture* texture, const Sampler* sampler, SampleCall* call)
{
    if (nothingThere(texture, sampler)) return zeros(*call);
    if (!sampledAtOnce(*texture, *static_cast<const Access*>(texture->sampling), *sampler, *call)) sampleLaneByLane(*texture, *sampler, *call);
}

// ---- comparison, gather, read --------------------------------------------------------------------------------------------

bool passes(uint8_t function, float reference, float value)
{
    switch (function) {
    case 0: return false;
    case 1: return reference < value;
    case 2: return reference == value;
    case 3: return reference <= value;
    case 4: return reference > value;
    case 5: return reference != value;
    case 6: return reference >= value;
    default: return true;
    }
}

/// The part of the texels around a place that pass, in one level.
float compared(const Lane& lane, uint32_t level, bool linearFilter, float reference)
{
    const TextureLevel& image = lane.texture.levels[std::min(level, lane.texture.levelCount - 1)];
    auto test = [&](const Texel& there) { return passes(lane.sampler.compareFunction, reference, there.c[0]) ? 1.0f : 0.0f; };
    if (!linearFilter) return test(nearest(lane, image));
    bool n = lane.sampler.normalizedCoordinates != 0;
    Axis x = axis(scaled(lane.s, image.width, n), lane.offset[0]), y = axis(scaled(lane.t, image.height, n), lane.offset[1]);
    auto row = [&](int64_t v) { return std::lerp(test(texel(lane, image, x.first, v, 0)), test(texel(lane, image, x.first + 1, v, 0)), x.weight); };
    float top = row(y.first), low = row(y.first + 1);
    return top + (low - top) * y.weight;
}

void sampleCompare(const Texture* texture, const Sampler* sampler, SampleCall* call)
{
    if (nothingThere(texture, sampler)) return zeros(*call);
    Texel border = borderColor(*texture, *sampler, false);
    const auto& access = *static_cast<const Access*>(texture->sampling);
    bool quads = call->lodMode == LodMode::Gradient || (call->stage == 1 && call->lodMode != LodMode::Level);
    for (uint32_t i = 0; i < MaxLanes; ++i) {
        if (!(call->mask >> i & 1)) continue;
        Lane lane = laneAt(*texture, *sampler, *call, i, &border);
        Footprint f{};
        if (quads) f = footprint(*call, i, *texture, access, *sampler);
        Levels l = levelsOf(lane, levelOfDetail(*call, i, *sampler, quads ? &f : nullptr));
        float result = compared(lane, l.first, l.linearFilter, call->compare.f[i]);
        if (l.weight != 0) result += (compared(lane, l.first + 1, l.linearFilter, call->compare.f[i]) - result) * l.weight;
        setResult(*call, i, Texel{{result, result, result, result}});
    }
}

/// In place of a component: the result of a comparison, whose reference is where the level stands otherwise.
constexpr uint32_t Compared = 4;
/// In place of a component: the level of detail of a sample there, as it would be taken and as it was found.
constexpr uint32_t LevelOfDetail = 5;

void setLevels(const Texture& texture, const Sampler& sampler, SampleCall& call, uint32_t lane)
{
    Footprint f{};
    const bool quads = hasFootprint(call);
    if (quads) f = footprint(call, lane, texture, *static_cast<const Access*>(texture.sampling), sampler);
    const float found = quads ? lodOf(f) : 0.0f, last = static_cast<float>(texture.levelCount - 1);
    call.result[0].f[lane] = std::clamp(levelOfDetail(call, lane, sampler, quads ? &f : nullptr), 0.0f, last);
    call.result[1].f[lane] = found == found ? found : 0.0f;
}

void gather(const Texture* texture, const Sampler* sampler, SampleCall* call, uint32_t component)
{
    if (nothingThere(texture, sampler)) return zeros(*call);
    Texel border = borderColor(*texture, *sampler, false);
    for (uint32_t i = 0; i < MaxLanes; ++i) {
        if (!(call->mask >> i & 1)) continue;
        if (component == LevelOfDetail) {
            setLevels(*texture, *sampler, *call, i);
            continue;
        }
        Lane lane = laneAt(*texture, *sampler, *call, i, &border);
        const TextureLevel& image = texture->levels[0];
        bool n = sampler->normalizedCoordinates != 0;
        Axis x = axis(scaled(lane.s, image.width, n), lane.offset[0]), y = axis(scaled(lane.t, image.height, n), lane.offset[1]);
        auto pick = [&](int64_t u, int64_t v) {
            Texel there = texel(lane, image, u, v, 0);
            if (component != Compared) return there.c[component & 3];
            return passes(sampler->compareFunction, call->lod.f[i], there.c[0]) ? 1.0f : 0.0f;
        };
        setResult(*call, i, Texel{{pick(x.first, y.first + 1), pick(x.first + 1, y.first + 1), pick(x.first + 1, y.first), pick(x.first, y.first)}});
    }
}

void (*outsideTexel)() = nullptr;

void read(const Texture* texture, abi::ReadCall* call)
{
    bool outside = false;
    bool there = texture && texture->sampling && static_cast<const Access*>(texture->sampling)->format;
    for (uint32_t i = 0; i < MaxLanes; ++i) {
        if (!(call->mask >> i & 1)) continue;
        Texel value{};
        bool inside = false;
        uint32_t level = call->level.u[i], x = call->coordinate[0].u[i], y = call->coordinate[1].u[i], z = call->coordinate[2].u[i], layer = call->layer.u[i];
        if (there && level < texture->levelCount) {
            const TextureLevel& image = texture->levels[level];
            uint32_t layers = std::max(texture->arrayLength, 1u) * (static_cast<const Access*>(texture->sampling)->cube ? 6 : 1);
            inside = x < image.width && y < image.height && z < image.depth && layer < layers;
            if (inside) value = texelAt(*texture, image, x, y, z, layer);
        }
        outside |= there && !inside && (call->counting >> i & 1);
        for (int c = 0; c < 4; ++c) call->result[c].f[i] = value.c[c];
    }
    if (outside && outsideTexel) outsideTexel();
}

} // namespace

void sampleLaneByLane(const Texture& texture, const Sampler& sampler, SampleCall& call)
{
    const auto& access = *static_cast<const Access*>(texture.sampling);
    Texel border = borderColor(texture, sampler, sampler.sAddress == ClampToZero);
    const bool quads = hasFootprint(call), needsLod = choosesLevel(sampler);
    for (uint32_t i = 0; i < MaxLanes; ++i) {
        if (!(call.mask >> i & 1)) continue;
        Lane lane = laneAt(texture, sampler, call, i, &border);
        if (!needsLod) {
            setResult(call, i, atLevel(lane, 0, sampler.magFilter == Linear));
            continue;
        }
        Footprint f{};
        if (quads) f = footprint(call, i, texture, access, sampler);
        if (quads && sampler.maxAnisotropy > 1 && !access.cube) setResult(call, i, anisotropic(lane, f, call, i));
        else setResult(call, i, filtered(lane, levelOfDetail(call, i, sampler, quads ? &f : nullptr)));
    }
}

void setOutsideTexelHandler(void (*handler)()) { outsideTexel = handler; }

TexelKind texelKind(uint32_t format)
{
    constexpr uint32_t A8 = 1, R8 = 10, R16Float = 25, R32Float = 55, Rgba8 = 70, Bgra8 = 80, Rgba16Float = 115, Rgba32Float = 125, Depth16 = 250,
                       Depth32 = 252, Depth32Stencil8 = 260;
    switch (format) {
    case Rgba8:
    case Bgra8: return TexelKind::Bytes;
    case Rgba32Float: return TexelKind::Floats;
    case A8:
    case R8:
    case R16Float:
    case R32Float:
    case Rgba16Float:
    case Depth16:
    case Depth32:
    case Depth32Stencil8: return TexelKind::Other;
    default: return TexelKind::None;
    }
}

abi::RuntimeTable runtimeTable()
{
    abi::RuntimeTable table{};
    table.version = abi::Version;
    table.sample = sample;
    table.sampleCompare = sampleCompare;
    table.gather = gather;
    table.read = read;
    table.write = write;
    return table;
}

} // namespace softmetal::texturing
