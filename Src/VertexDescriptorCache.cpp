// SPDX-License-Identifier: Apache-2.0
#include "VertexDescriptorCache.h"

#include "ZALGL.h"

#include <iterator>

namespace {

/// -1, 0 or 1. The normalised flag comes last although it stands before the stride in the record.
int compare(const GLVertexAttribDescription& a, const GLVertexAttribDescription& b)
{
    if (a.buffer != b.buffer) return a.buffer < b.buffer ? -1 : 1;
    if (a.size != b.size) return a.size < b.size ? -1 : 1;
    if (a.type != b.type) return a.type < b.type ? -1 : 1;
    if (a.stride != b.stride) return a.stride < b.stride ? -1 : 1;
    if (a.offset != b.offset) return a.offset < b.offset ? -1 : 1;
    if (a.normalized != b.normalized) return a.normalized < b.normalized ? -1 : 1;
    return 0;
}

} // namespace

bool operator<(const GLVertexAttribDescription& a, const GLVertexAttribDescription& b) { return compare(a, b) < 0; }

bool operator<(const GLVertexDescription& a, const GLVertexDescription& b)
{
    if (a.mask != b.mask) return a.mask < b.mask;
    for (uint32_t i = 0; i < 16 && a.mask >> i != 0; ++i) {
        if (!(a.mask >> i & 1)) continue;
        if (int order = compare(a.attributes[i], b.attributes[i])) return order < 0;
    }
    return false;
}

namespace ZALMetal {

VertexDescriptorCache::~VertexDescriptorCache()
{
    for (auto* cell = _map.begin(); cell; cell = _map.next())
        if (cell->value.descriptor) cell->value.descriptor->release();
}

namespace {

GLVertexDescription keyOf(uint32_t mask, const GLVertexDescription& description)
{
    GLVertexDescription key = description;
    key.mask = mask;
    return key;
}

} // namespace

MTL::VertexDescriptor* VertexDescriptorCache::get(uint32_t& mask, const GLVertexDescription& description)
{
    auto* cell = _map.find(keyOf(mask, description));
    if (!cell) return nullptr;
    mask = cell->value.mask;
    return cell->value.descriptor;
}

int VertexDescriptorCache::set(uint32_t mask, const GLVertexDescription& description, MTL::VertexDescriptor* descriptor)
{
    bool inserted = false;
    int status = _map.insert(inserted, description, {mask, descriptor});
    if (inserted && descriptor) descriptor->retain();
    return status;
}

MTL::VertexDescriptor* VertexDescriptorCache::getOrCreate(uint32_t& mask, const GLVertexDescription& description)
{
    GLVertexDescription key = keyOf(mask, description);
    if (auto* cell = _map.find(key)) {
        mask = cell->value.mask;
        return cell->value.descriptor;
    }
    MTL::VertexDescriptor* descriptor = nullptr;
    convertVertexDescription(descriptor, mask, key); // a failure is remembered as null
    bool inserted = false;
    if (_map.insert(inserted, key, {mask, descriptor}) == ZALM::Success && inserted) return descriptor;
    if (descriptor) descriptor->release();
    return nullptr;
}

// ---- conversion ------------------------------------------------------------------------------------------------------------

namespace {

/// Bytes of a component by type, from GL_UNSIGNED_BYTE to GL_HALF_FLOAT.
// Kept on purpose: [unsigned-stride] packed arrays of bytes, unsigned shorts and unsigned ints get a stride of 0: give one.
constexpr uint32_t TypeSizes[] = {1, 2, 0, 4, 0, 4, 0, 0, 0, 8, 2};

uint64_t typeSize(uint32_t type)
{
    uint32_t index = type - GL_UNSIGNED_BYTE;
    return index < std::size(TypeSizes) ? TypeSizes[index] : 0;
}

struct FormatRow
{
    uint32_t type;
    bool normalized;
    MTL::VertexFormat bySize[4];
};

constexpr FormatRow RealFormats[] = {
    {GL_HALF_FLOAT, false, {MTL::VertexFormatHalf, MTL::VertexFormatHalf2, MTL::VertexFormatHalf3, MTL::VertexFormatHalf4}},
    {GL_FLOAT, false, {MTL::VertexFormatFloat, MTL::VertexFormatFloat2, MTL::VertexFormatFloat3, MTL::VertexFormatFloat4}},
};

constexpr FormatRow IntegerFormats[] = {
    {GL_BYTE, true, {MTL::VertexFormatCharNormalized, MTL::VertexFormatChar2Normalized, MTL::VertexFormatChar3Normalized, MTL::VertexFormatChar4Normalized}},
    {GL_UNSIGNED_BYTE, true, {MTL::VertexFormatUCharNormalized, MTL::VertexFormatUChar2Normalized, MTL::VertexFormatUChar3Normalized, MTL::VertexFormatUChar4Normalized}},
    {GL_SHORT, true, {MTL::VertexFormatShortNormalized, MTL::VertexFormatShort2Normalized, MTL::VertexFormatShort3Normalized, MTL::VertexFormatShort4Normalized}},
    {GL_UNSIGNED_SHORT, true, {MTL::VertexFormatUShortNormalized, MTL::VertexFormatUShort2Normalized, MTL::VertexFormatUShort3Normalized, MTL::VertexFormatUShort4Normalized}},
    {GL_BYTE, false, {MTL::VertexFormatChar, MTL::VertexFormatChar2, MTL::VertexFormatChar3, MTL::VertexFormatChar4}},
    {GL_UNSIGNED_BYTE, false, {MTL::VertexFormatUChar, MTL::VertexFormatUChar2, MTL::VertexFormatUChar3, MTL::VertexFormatUChar4}},
    {GL_SHORT, false, {MTL::VertexFormatShort, MTL::VertexFormatShort2, MTL::VertexFormatShort3, MTL::VertexFormatShort4}},
    {GL_UNSIGNED_SHORT, false, {MTL::VertexFormatUShort, MTL::VertexFormatUShort2, MTL::VertexFormatUShort3, MTL::VertexFormatUShort4}},
    {GL_INT, false, {MTL::VertexFormatInt, MTL::VertexFormatInt2, MTL::VertexFormatInt3, MTL::VertexFormatInt4}},
    {GL_UNSIGNED_INT, false, {MTL::VertexFormatUInt, MTL::VertexFormatUInt2, MTL::VertexFormatUInt3, MTL::VertexFormatUInt4}},
};

} // namespace

MTL::VertexFormat convertVertexFormat(const GLVertexAttribDescription& a)
{
    if (a.size < 1 || a.size > 4) return MTL::VertexFormatInvalid;
    for (const FormatRow& row : RealFormats)
        if (row.type == a.type) return row.bySize[a.size - 1];
    for (const FormatRow& row : IntegerFormats)
        if (row.type == a.type && row.normalized == a.normalized) return row.bySize[a.size - 1];
    return MTL::VertexFormatInvalid;
}

uint64_t convertVertexStride(const GLVertexAttribDescription& a)
{
    if (a.stride != 0) return static_cast<uint64_t>(static_cast<int64_t>(a.stride));
    return static_cast<uint64_t>(static_cast<int64_t>(a.size)) * typeSize(a.type);
}

int convertVertexDescription(MTL::VertexDescriptor*& out, uint32_t& mask, const GLVertexDescription& description)
{
    MTL::VertexDescriptor* descriptor = MTL::VertexDescriptor::alloc()->init();
    uint32_t wanted = mask;
    mask = 0;
    for (uint32_t i = 0; i < 16 && wanted >> i != 0; ++i) {
        if (!(wanted >> i & 1)) continue;
        MTL::VertexFormat format = convertVertexFormat(description.attributes[i]);
        // Kept on purpose: [attribute-dropped] an array that Metal cannot read is left out, and the program reads 0.
        if (format == MTL::VertexFormatInvalid) continue;
        MTL::VertexAttributeDescriptor* attribute = descriptor->attributes()->object(i);
        attribute->setFormat(format);
        attribute->setOffset(0);
        attribute->setBufferIndex(i);
        descriptor->layouts()->object(i)->setStride(convertVertexStride(description.attributes[i]));
        mask |= 1u << i;
    }
    out = descriptor;
    if (mask & 1) return 0;
    // Kept on purpose: [position-needed] without attribute 0 there is no layout, and its draws are left out without an error.
    descriptor->release();
    out = nullptr;
    return 1;
}

} // namespace ZALMetal
