// SPDX-License-Identifier: Apache-2.0
// The names between the front end and the widening pass. The front end hands over a scalar LLVM module with one
// function "softmetal_entry" (void, no arguments) that does one lane's work and reaches everything outside through
// calls to the declared functions below; after widening none of them is left, only calls into the runtime. Functions
// marked U give the same value in all lanes.
#pragma once

#include <string_view>

namespace softmetal::shader::intrinsic
{

inline constexpr std::string_view Entry = "softmetal_entry";

// ---- stage inputs ----
inline constexpr std::string_view Attribute = "softmetal_attribute";        // i32 (i32 attribute, i32 component): bits
inline constexpr std::string_view VertexId = "softmetal_vertex_id";         // i32 ()
inline constexpr std::string_view InstanceId = "softmetal_instance_id";     // i32 ()
inline constexpr std::string_view BaseVertex = "softmetal_base_vertex";     // i32 ()  U
inline constexpr std::string_view BaseInstance = "softmetal_base_instance"; // i32 ()  U
inline constexpr std::string_view Varying =
    "softmetal_varying"; // float (i32 plane, i32 interpolation): shader::Interpolation
inline constexpr std::string_view Position = "softmetal_position"; // float (i32 component): pixel x, y, depth z, 1/w
inline constexpr std::string_view FrontFacing = "softmetal_front_facing"; // i32 ()  U
inline constexpr std::string_view PrimitiveId = "softmetal_primitive_id"; // i32 ()  U
inline constexpr std::string_view SampleMask = "softmetal_sample_mask";   // i32 ()  U
inline constexpr std::string_view PointCoord = "softmetal_point_coord";   // float (i32 component)

// ---- stage outputs (always called at most once per component, at the end of the entry function) ----
inline constexpr std::string_view StoreOutput =
    "softmetal_store_output"; // void (i32 component, float)   vertex; integers as bits
inline constexpr std::string_view StoreColor = "softmetal_store_color";       // void (i32 output, i32 component, float)
inline constexpr std::string_view StoreDepth = "softmetal_store_depth";       // void (float)
inline constexpr std::string_view StoreStencil = "softmetal_store_stencil";   // void (i32)
inline constexpr std::string_view StoreCoverage = "softmetal_store_coverage"; // void (i32)

// ---- resources, all U ----
inline constexpr std::string_view Buffer =
    "softmetal_buffer"; // ptr (i32 index), or (i32 index, i64 bytes that it has at least)
inline constexpr std::string_view Texture = "softmetal_texture"; // ptr (i32 index): abi::Texture
inline constexpr std::string_view Sampler = "softmetal_sampler"; // ptr (i32 index): abi::Sampler

// ptr (i64, i64, i64)  U: the 24 bytes of an abi::Sampler written in the program; all arguments are constants
inline constexpr std::string_view ConstantSampler = "softmetal_constant_sampler";

// ---- operations ----
inline constexpr std::string_view Discard = "softmetal_discard"; // void ()
inline constexpr std::string_view Dfdx = "softmetal_dfdx";       // float (float)
inline constexpr std::string_view Dfdy = "softmetal_dfdy";       // float (float)
// <4 x float> (ptr texture, ptr sampler, i32 lodMode, float s, float t, float r, i32 layer, float lod,
//              float gx0, gx1, gx2, float gy0, gy1, gy2, i32 ox, i32 oy, i32 oz, float minLod)
// All arguments from lodMode on except coordinates, layer, lod, gradients are constants.
inline constexpr std::string_view Sample = "softmetal_sample";
// as Sample with a float compare value appended; result in component 0
inline constexpr std::string_view SampleCompare = "softmetal_sample_compare";
// as Sample with a constant i32 component appended; 4: whether lod compares with red, by the sampler's function
inline constexpr std::string_view Gather = "softmetal_gather";
// <4 x float> (ptr texture, i32 x, i32 y, i32 z, i32 layer, i32 level)
inline constexpr std::string_view Read = "softmetal_read";
// void (ptr texture, i32 x, i32 y, i32 z, i32 layer, i32 level, float r, g, b, a)
inline constexpr std::string_view Write = "softmetal_write";
// i32 (ptr, i32 operation, i32 operand, i32 expected): what was there; the operation is a constant abi::AtomicOperation
inline constexpr std::string_view Atomic = "softmetal_atomic";
// i32 (ptr texture, i32 what, i32 level)  U: 0 width, 1 height, 2 depth, 3 array size, 4 mip levels, 5 samples
inline constexpr std::string_view TextureSize = "softmetal_texture_size";

// ---- what widened code calls instead: the functions of abi::RuntimeTable ----
inline constexpr std::string_view RuntimeSample = "softmetal_runtime_sample";
inline constexpr std::string_view RuntimeSampleCompare = "softmetal_runtime_sample_compare";
inline constexpr std::string_view RuntimeGather = "softmetal_runtime_gather";
inline constexpr std::string_view RuntimeRead = "softmetal_runtime_read";
inline constexpr std::string_view RuntimeLoopLimit = "softmetal_runtime_loop_limit";
inline constexpr std::string_view RuntimeOutside = "softmetal_runtime_outside";
inline constexpr std::string_view RuntimeWrite = "softmetal_runtime_write";
inline constexpr std::string_view RuntimeAtomic = "softmetal_runtime_atomic";

} // namespace softmetal::shader::intrinsic
