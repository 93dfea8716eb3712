// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class CaptureDescriptor;
class CaptureManager;
class CaptureScope;
class CommandQueue;
class Device;

enum CaptureError : NS::Integer
{
    CaptureErrorNotSupported = 1,
    CaptureErrorAlreadyCapturing = 2,
    CaptureErrorInvalidDescriptor = 3,
};

enum CaptureDestination : NS::Integer
{
    CaptureDestinationDeveloperTools = 1,
    CaptureDestinationGPUTraceDocument = 2,
};

class SOFTMETAL_API CaptureDescriptor : public NS::Copying<CaptureDescriptor>
{
public:
    static CaptureDescriptor* alloc();
    CaptureDescriptor* init();
    id captureObject() const;
    void setCaptureObject(id captureObject);
    CaptureDestination destination() const;
    void setDestination(CaptureDestination destination);
    NS::URL* outputURL() const;
    void setOutputURL(const NS::URL* outputURL);
};

class SOFTMETAL_API CaptureManager : public NS::Referencing<CaptureManager>
{
public:
    static CaptureManager* alloc();
    static CaptureManager* sharedCaptureManager();
    CaptureManager* init();
    CaptureScope* newCaptureScope(const Device* device);
    CaptureScope* newCaptureScope(const CommandQueue* commandQueue);
    bool supportsDestination(CaptureDestination destination);
    bool startCapture(const CaptureDescriptor* descriptor, NS::Error** error);
    void startCapture(const Device* device);
    void startCapture(const CommandQueue* commandQueue);
    void startCapture(const CaptureScope* captureScope);
    void stopCapture();
    CaptureScope* defaultCaptureScope() const;
    void setDefaultCaptureScope(const CaptureScope* defaultCaptureScope);
    bool isCapturing() const;
};

} // namespace MTL
