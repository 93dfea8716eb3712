// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLArgument.hpp"
#include <Foundation/Foundation.hpp>

#include <functional>

namespace MTL
{
class CompileOptions;
class Device;
class Function;
class FunctionConstantValues;

/// A vertex attribute that a vertex function declares.
class SOFTMETAL_API VertexAttribute : public NS::Referencing<VertexAttribute>
{
public:
    static VertexAttribute* alloc();
    VertexAttribute* init();
    NS::String* name() const;
    NS::UInteger attributeIndex() const;
    DataType attributeType() const;
    bool active() const; // false where a function constant switches it off
    bool patchData() const;
    bool patchControlPointData() const;
};

enum FunctionType : NS::UInteger
{
    FunctionTypeVertex = 1,
    FunctionTypeFragment = 2,
    FunctionTypeKernel = 3,
    FunctionTypeVisible = 5,
    FunctionTypeIntersection = 6,
    FunctionTypeMesh = 7,
    FunctionTypeObject = 8,
};

/// A function constant that a function declares.
class SOFTMETAL_API FunctionConstant : public NS::Referencing<FunctionConstant>
{
public:
    static FunctionConstant* alloc();
    FunctionConstant* init();
    NS::String* name() const;
    DataType type() const;
    NS::UInteger index() const;
    bool required() const;
};

enum LanguageVersion : NS::UInteger
{
    LanguageVersion1_0 = 65536,
    LanguageVersion1_1 = 65537,
    LanguageVersion1_2 = 65538,
    LanguageVersion2_0 = 131072,
    LanguageVersion2_1 = 131073,
    LanguageVersion2_2 = 131074,
    LanguageVersion2_3 = 131075,
    LanguageVersion2_4 = 131076,
    LanguageVersion3_0 = 196608,
    LanguageVersion3_1 = 196609,
};

enum LibraryError : NS::UInteger
{
    LibraryErrorUnsupported = 1,
    LibraryErrorInternal = 2,
    LibraryErrorCompileFailure = 3,
    LibraryErrorCompileWarning = 4,
    LibraryErrorFunctionNotFound = 5,
    LibraryErrorFileNotFound = 6,
};

class SOFTMETAL_API Function : public NS::Referencing<Function>
{
public:
    NS::String* label() const;
    void setLabel(const NS::String* label);
    Device* device() const;
    FunctionType functionType() const;
    NS::Array* vertexAttributes() const; // of VertexAttribute; null when there are none
    NS::String* name() const;
    NS::Dictionary* functionConstantsDictionary() const; // FunctionConstant by name
};

class SOFTMETAL_API CompileOptions : public NS::Copying<CompileOptions>
{
public:
    static CompileOptions* alloc();
    CompileOptions* init();
    NS::Dictionary* preprocessorMacros() const;
    void setPreprocessorMacros(const NS::Dictionary* preprocessorMacros);
    bool fastMathEnabled() const;
    void setFastMathEnabled(bool fastMathEnabled);
    LanguageVersion languageVersion() const;
    void setLanguageVersion(LanguageVersion languageVersion);
    bool preserveInvariance() const;
    void setPreserveInvariance(bool preserveInvariance);
};

class SOFTMETAL_API Library : public NS::Referencing<Library>
{
public:
    NS::String* label() const;
    void setLabel(const NS::String* label);
    Device* device() const;
    Function* newFunction(const NS::String* functionName);
    Function* newFunction(const NS::String* name, const FunctionConstantValues* constantValues, NS::Error** error);
    void newFunction(const NS::String* name, const FunctionConstantValues* constantValues,
                     const std::function<void(Function* function, NS::Error* error)>& completionHandler);
    NS::Array* functionNames() const;
};

} // namespace MTL
