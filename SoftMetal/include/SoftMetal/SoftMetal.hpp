// SPDX-License-Identifier: Apache-2.0
// What a test or a tool may ask of the software device beyond Metal's own API: devices of a chosen kind, the command log,
// validation messages, injected faults, views in memory and the pixels that were presented.
// All functions may be called from any thread.
#pragma once

#include <AppKit/AppKit.hpp>
#include <Metal/Metal.hpp>
#include <QuartzCore/QuartzCore.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace SoftMetal
{

// ---- devices ----------------------------------------------------------------------------------------------------------

struct DeviceOptions
{
    std::string name = "SoftMetal";
    bool depth24Stencil8 = true; // MTL::Device::depth24Stencil8PixelFormatSupported
    bool discards = false;       // records commands and throws them away: nothing is drawn, command buffers complete at once
};

/// A device of its own; the caller owns it.
SOFTMETAL_API MTL::Device* newDevice(const DeviceOptions& options);

/// The devices of this machine from now on, the first being the system's default; an empty list means that there is none.
/// The devices are retained.
SOFTMETAL_API void setDevices(const std::vector<MTL::Device*>& devices);
/// Back to one default device, named by SOFTMETAL_DEVICE_NAME, or none when SOFTMETAL_NO_DEVICE is set.
SOFTMETAL_API void resetDevices();

// ---- validation -------------------------------------------------------------------------------------------------------

enum class Validation
{
    Off,
    Report, // collected, and written to the log as errors
    Abort,  // the process stops at the first
};

/// The start value comes from SOFTMETAL_VALIDATION (off, report, abort); without it, Report.
SOFTMETAL_API void setValidation(Validation mode);

struct Message
{
    std::string rule;     // a short id, "draw.no-pipeline"
    std::string sentence; // the call, the object's label, the rule
};

/// Messages since the last call.
SOFTMETAL_API std::vector<Message> takeMessages();

// ---- command log --------------------------------------------------------------------------------------------------------

struct LogArgument
{
    std::string name;
    double number = 0;
    const void* object = nullptr;
    std::string text;
};

/// One call, in the order in which they were made.
struct LogEntry
{
    std::string call;     // "setViewport"
    const void* receiver; // the API object, for comparison only
    std::vector<LogArgument> arguments;

    /// The argument's number, 0 when there is none of that name.
    SOFTMETAL_API double number(const std::string& name) const;
    SOFTMETAL_API const void* object(const std::string& name) const;
    SOFTMETAL_API std::string text(const std::string& name) const;
};

SOFTMETAL_API void setCommandLog(bool on);
/// Entries since the last call.
SOFTMETAL_API std::vector<LogEntry> takeCommandLog();

// ---- faults ---------------------------------------------------------------------------------------------------------------

/// The n-th call from now (1 is the next) of the named point fails; persistent: all after it as well. Points: "newBuffer",
/// "newTexture", "newLibrary", "newFunction", "newRenderPipelineState", "newSamplerState", "newDepthStencilState",
/// "nextDrawable", "newCommandQueue"; "*" counts all of them together.
SOFTMETAL_API void injectFault(const std::string& point, uint64_t n, bool persistent);
SOFTMETAL_API void clearFaults();
/// Calls of the point that could have failed since the last clearFaults.
SOFTMETAL_API uint64_t failableCalls(const std::string& point);

// ---- views ----------------------------------------------------------------------------------------------------------------

/// A view in memory; the caller owns it. Sizes are in points.
SOFTMETAL_API NSView* newView(double width, double height);
/// Posts NSViewFrameDidChangeNotification when the view was asked to.
SOFTMETAL_API void setViewSize(NSView* view, double width, double height);
/// The layer the view carries, null for none.
SOFTMETAL_API CA::MetalLayer* layerOf(NSView* view);

struct Presented
{
    uint64_t count = 0; // frames presented so far
    uint32_t width = 0, height = 0;
    std::vector<uint8_t> rgba; // the last one, top row first; empty when there is none
};
SOFTMETAL_API Presented presented(CA::MetalLayer* layer);

// ---- the rest -------------------------------------------------------------------------------------------------------------

/// Objects alive in the process.
SOFTMETAL_API int64_t objectsAlive();

/// Where NSLog lines and the device's own messages go; an empty function means standard error.
SOFTMETAL_API void setLogSink(std::function<void(const std::string& line)> sink);

/// Worker threads that draw, the queue's own included.
SOFTMETAL_API uint32_t workerThreads();
/// Pixels or vertices that a shader works on at once.
SOFTMETAL_API uint32_t lanes();

}
