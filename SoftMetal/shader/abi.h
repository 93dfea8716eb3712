// SPDX-License-Identifier: Apache-2.0
// Plain structs shared between generated shader code, the sampling room and the rasteriser. Generated code reads and
// writes them by offset, so every field is fixed-size, and the offsets that code generation uses are static_asserted there.
//
// A compiled entry function works on a batch of W lanes at once, W = 4, 8 or 16. Per-lane data is an array of MaxLanes
// values for each scalar component (lane i at element i); lanes at and above W are neither read nor written.
// Fragment lanes come in 2x2 quads: lanes 4q .. 4q+3 are the pixels (x, y), (x+1, y), (x, y+1), (x+1, y+1).
#pragma once

#include <cstddef>
#include <cstdint>

namespace softmetal::abi {

inline constexpr uint32_t Version = 4; // raised whenever a layout below changes

inline constexpr uint32_t MaxLanes = 16;
inline constexpr uint32_t MaxBuffers = 31;
inline constexpr uint32_t MaxTextures = 128;
inline constexpr uint32_t MaxSamplers = 16;
inline constexpr uint32_t MaxVertexAttributes = 31;
inline constexpr uint32_t MaxColorOutputs = 8;
inline constexpr uint32_t MaxVertexOutputComponents = 128; // position included
inline constexpr uint32_t MaxLevels = 15;
inline constexpr uint32_t MaxClipDistances = 8;

/// One value per lane, as raw 32-bit words: float, int and uint alike; half is widened to float, bool is 0 or 1.
union Lanes
{
    float f[MaxLanes];
    int32_t i[MaxLanes];
    uint32_t u[MaxLanes];
};

// ---- resources ---------------------------------------------------------------------------------------------------

/// One mip level in memory: rows top to bottom, tightly addressed by the pitches. Cube faces and array layers follow
/// one another at slicePitch; the planes of a 3D level at planePitch.
struct TextureLevel
{
    uint8_t* data;
    uint32_t width, height, depth; // in texels
    uint32_t rowPitch;             // bytes
    uint64_t planePitch;           // bytes
    uint64_t slicePitch;           // bytes
};

/// What a shader sees of a texture. Built once per texture or view and constant while work that uses it is in flight.
struct Texture
{
    uint32_t type;   // MTL::TextureType
    uint32_t format; // MTL::PixelFormat
    uint32_t width, height, depth, arrayLength, levelCount, sampleCount;
    uint8_t swizzle[4];  // MTL::TextureSwizzle for r, g, b, a
    uint32_t identity;   // 1 when the swizzle is red, green, blue, alpha
    uint32_t usage;      // MTL::TextureUsage: what calls may do with it, 0 for anything
    const void* sampling; // owned by the texturing room: functions chosen for this type and format, see texturing/
    TextureLevel levels[MaxLevels];
};

/// A sampler state, by Metal's enumerators.
struct Sampler
{
    uint8_t minFilter, magFilter, mipFilter; // MTL::SamplerMinMagFilter, MTL::SamplerMipFilter
    uint8_t sAddress, tAddress, rAddress;    // MTL::SamplerAddressMode
    uint8_t borderColor;                     // MTL::SamplerBorderColor
    uint8_t normalizedCoordinates;           // 1 or 0
    uint8_t compareFunction;                 // MTL::CompareFunction
    uint8_t maxAnisotropy;                   // 1 to 16
    uint8_t reserved[6];
    float lodMinClamp, lodMaxClamp;
};

/// How a sample chooses its level of detail.
enum class LodMode : uint32_t
{
    Implicit = 0, // from the differences between the lanes of each quad (level 0 in vertex functions)
    Bias = 1,     // implicit plus lod[]
    Level = 2,    // lod[] as it stands
    Gradient = 3, // from gradientX / gradientY
};

/// One texture access for all lanes of a batch. Written by generated code, result filled by the callee.
struct SampleCall
{
    uint32_t mask;       // active lanes; inactive lanes are left untouched. Coordinates of all lanes of live quads are valid
    LodMode lodMode;
    uint32_t stage;      // 0 vertex, 1 fragment
    int32_t offset[3];   // constant texel offset
    float minLodClamp;   // lower bound from the access itself (min_lod_clamp), else 0
    float compareValueUsed; // reserved, 0
    Lanes coordinate[3]; // s, t, r (floats; pixels when the sampler is unnormalised)
    Lanes layer;         // array layer (unsigned), 0 when the type has none
    Lanes lod;           // bias or level (floats)
    Lanes gradientX[3], gradientY[3];
    Lanes compare;       // reference value of a depth comparison
    Lanes result[4];     // r, g, b, a: float bits for float and depth textures, integer bits for int and uint ones
};

/// One texel read by integer coordinates (texture.read). Out of range gives zeros.
struct ReadCall
{
    uint32_t mask;
    uint32_t counting;   // lanes that are neither helpers nor discarded: what they read outside is worth a message
    Lanes coordinate[3]; // unsigned
    Lanes layer, level;  // unsigned
    Lanes result[4];
};

/// One texel written by integer coordinates (texture.write). Out of range nothing happens.
struct WriteCall
{
    uint32_t mask;
    uint32_t reserved;
    Lanes coordinate[3]; // unsigned
    Lanes layer, level;  // unsigned
    Lanes value[4];      // as ReadCall's results
};

enum class AtomicOperation : uint32_t
{
    Load, Exchange, Add, Subtract, And, Or, Xor, SignedMin, SignedMax, UnsignedMin, UnsignedMax, CompareExchange,
};
inline constexpr uint32_t AtomicOperations = 12;

/// One operation on a 32-bit number in a buffer for each lane of the mask, lane after lane. Addresses were checked.
struct AtomicCall
{
    uint32_t mask;
    AtomicOperation operation;
    uint64_t address[MaxLanes];
    Lanes operand, expected;
    Lanes before; // what was there
};

/// Everything a stage has bound, by Metal's indices. Null where nothing is bound.
struct Resources
{
    const uint8_t* buffers[MaxBuffers];
    uint64_t bufferLengths[MaxBuffers]; // bytes that may be read from buffers[i]
    const Texture* textures[MaxTextures];
    const Sampler* samplers[MaxSamplers];
};

// ---- vertex functions --------------------------------------------------------------------------------------------

struct VertexInput
{
    uint32_t mask; // active lanes
    uint32_t baseVertex, baseInstance;
    uint32_t reserved;
    Lanes vertexId;
    Lanes instanceId; // includes the base instance, as Metal's [[instance_id]] does
    /// Fetched and converted attributes: attributes[a * 4 + c]. Attributes the function does not declare are not filled.
    const Lanes* attributes;
};

/// component[0..3] is the clip-space position; the others as the function's reflection numbers them.
struct VertexOutput
{
    Lanes component[MaxVertexOutputComponents];
};

using VertexFunction = void (*)(const VertexInput*, VertexOutput*, const Resources*);

// ---- fragment functions ------------------------------------------------------------------------------------------

/// A varying component over one primitive: at pixel centre (x, y) its value is
///     value = origin + (x - originX) * dx + (y - originY) * dy         (flat and linear components)
///     value = (that) * w                                               (perspective components: the plane holds a / w_clip)
/// evaluated in exactly this order, without contraction. Flat components (any type) have their bits in origin, dx = dy = 0.
struct Plane
{
    float origin, dx, dy;
};

struct FragmentInput
{
    uint32_t mask;        // covered lanes
    uint32_t live;        // all lanes of quads with a covered lane: these run, uncovered ones as helpers
    uint32_t frontFacing; // 1 or 0, for the whole batch
    uint32_t primitiveId;
    uint32_t sampleMask;
    float originX, originY; // reference point of the planes
    float reserved;
    const Plane* planes; // one per input component, in the function's reflection order
    Lanes x, y;          // pixel centres (n + 0.5) in pixels
    Lanes z;             // window depth
    Lanes invW;          // interpolated 1 / w_clip: the w of [[position]]
    Lanes w;             // 1 / invW
    Lanes pointX, pointY; // [[point_coord]], filled only when the function's reflection says so
};

struct FragmentOutput
{
    uint32_t mask; // covered lanes that survive discard_fragment()
    uint32_t reserved[3];
    Lanes color[MaxColorOutputs][4];
    Lanes depth;
    Lanes stencil;
    Lanes coverage;
};

using FragmentFunction = void (*)(const FragmentInput*, FragmentOutput*, const Resources*);

inline constexpr uint64_t OutsideTable = uint64_t{1} << 63;

// ---- what generated code calls -------------------------------------------------------------------------------------

/// Handed to the compiler when it is opened; generated code calls these for whole batches.
struct RuntimeTable
{
    uint32_t version; // abi::Version
    uint32_t reserved;
    void (*sample)(const Texture*, const Sampler*, SampleCall*);        // texture may be null: zeros
    void (*sampleCompare)(const Texture*, const Sampler*, SampleCall*); // depth textures with a comparison
    /// A component of the texels around a place; 4 compares them with lod, 5 gives the level of detail, clamped and
    /// not.
    void (*gather)(const Texture*, const Sampler*, SampleCall*, uint32_t component);
    void (*read)(const Texture*, ReadCall*);
    void (*loopLimitReached)(); // a shader ran past the iteration limit
    /// A shader read or wrote outside the buffers whose bits are set (OutsideTable: a table of its own), once for a batch.
    void (*outside)(uint64_t buffers, uint32_t stage); // 0 vertex, 1 fragment
    void (*write)(const Texture*, const WriteCall*);
    void (*atomic)(AtomicCall*);
};

} // namespace softmetal::abi
