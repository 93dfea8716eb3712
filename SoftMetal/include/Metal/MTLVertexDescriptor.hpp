// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class VertexAttributeDescriptor;
class VertexAttributeDescriptorArray;
class VertexBufferLayoutDescriptor;
class VertexBufferLayoutDescriptorArray;
class VertexDescriptor;

enum VertexFormat : NS::UInteger
{
    VertexFormatInvalid = 0,
    VertexFormatUChar2 = 1,
    VertexFormatUChar3 = 2,
    VertexFormatUChar4 = 3,
    VertexFormatChar2 = 4,
    VertexFormatChar3 = 5,
    VertexFormatChar4 = 6,
    VertexFormatUChar2Normalized = 7,
    VertexFormatUChar3Normalized = 8,
    VertexFormatUChar4Normalized = 9,
    VertexFormatChar2Normalized = 10,
    VertexFormatChar3Normalized = 11,
    VertexFormatChar4Normalized = 12,
    VertexFormatUShort2 = 13,
    VertexFormatUShort3 = 14,
    VertexFormatUShort4 = 15,
    VertexFormatShort2 = 16,
    VertexFormatShort3 = 17,
    VertexFormatShort4 = 18,
    VertexFormatUShort2Normalized = 19,
    VertexFormatUShort3Normalized = 20,
    VertexFormatUShort4Normalized = 21,
    VertexFormatShort2Normalized = 22,
    VertexFormatShort3Normalized = 23,
    VertexFormatShort4Normalized = 24,
    VertexFormatHalf2 = 25,
    VertexFormatHalf3 = 26,
    VertexFormatHalf4 = 27,
    VertexFormatFloat = 28,
    VertexFormatFloat2 = 29,
    VertexFormatFloat3 = 30,
    VertexFormatFloat4 = 31,
    VertexFormatInt = 32,
    VertexFormatInt2 = 33,
    VertexFormatInt3 = 34,
    VertexFormatInt4 = 35,
    VertexFormatUInt = 36,
    VertexFormatUInt2 = 37,
    VertexFormatUInt3 = 38,
    VertexFormatUInt4 = 39,
    VertexFormatInt1010102Normalized = 40,
    VertexFormatUInt1010102Normalized = 41,
    VertexFormatUChar4Normalized_BGRA = 42,
    VertexFormatUChar = 45,
    VertexFormatChar = 46,
    VertexFormatUCharNormalized = 47,
    VertexFormatCharNormalized = 48,
    VertexFormatUShort = 49,
    VertexFormatShort = 50,
    VertexFormatUShortNormalized = 51,
    VertexFormatShortNormalized = 52,
    VertexFormatHalf = 53,
    VertexFormatFloatRG11B10 = 54,
    VertexFormatFloatRGB9E5 = 55,
};

enum VertexStepFunction : NS::UInteger
{
    VertexStepFunctionConstant = 0,
    VertexStepFunctionPerVertex = 1,
    VertexStepFunctionPerInstance = 2,
    VertexStepFunctionPerPatch = 3,
    VertexStepFunctionPerPatchControlPoint = 4,
};

class SOFTMETAL_API VertexBufferLayoutDescriptor : public NS::Copying<VertexBufferLayoutDescriptor>
{
public:
    static VertexBufferLayoutDescriptor* alloc();
    VertexBufferLayoutDescriptor* init();
    NS::UInteger stride() const;
    void setStride(NS::UInteger stride);
    VertexStepFunction stepFunction() const;
    void setStepFunction(VertexStepFunction stepFunction);
    NS::UInteger stepRate() const;
    void setStepRate(NS::UInteger stepRate);
};

class SOFTMETAL_API VertexBufferLayoutDescriptorArray : public NS::Referencing<VertexBufferLayoutDescriptorArray>
{
public:
    static VertexBufferLayoutDescriptorArray* alloc();
    VertexBufferLayoutDescriptorArray* init();
    VertexBufferLayoutDescriptor* object(NS::UInteger index);
    void setObject(const VertexBufferLayoutDescriptor* bufferDesc, NS::UInteger index);
};

class SOFTMETAL_API VertexAttributeDescriptor : public NS::Copying<VertexAttributeDescriptor>
{
public:
    static VertexAttributeDescriptor* alloc();
    VertexAttributeDescriptor* init();
    VertexFormat format() const;
    void setFormat(VertexFormat format);
    NS::UInteger offset() const;
    void setOffset(NS::UInteger offset);
    NS::UInteger bufferIndex() const;
    void setBufferIndex(NS::UInteger bufferIndex);
};

class SOFTMETAL_API VertexAttributeDescriptorArray : public NS::Referencing<VertexAttributeDescriptorArray>
{
public:
    static VertexAttributeDescriptorArray* alloc();
    VertexAttributeDescriptorArray* init();
    VertexAttributeDescriptor* object(NS::UInteger index);
    void setObject(const VertexAttributeDescriptor* attributeDesc, NS::UInteger index);
};

class SOFTMETAL_API VertexDescriptor : public NS::Copying<VertexDescriptor>
{
public:
    static VertexDescriptor* alloc();
    VertexDescriptor* init();
    static VertexDescriptor* vertexDescriptor();
    VertexBufferLayoutDescriptorArray* layouts() const;
    VertexAttributeDescriptorArray* attributes() const;
    void reset();
};

} // namespace MTL
