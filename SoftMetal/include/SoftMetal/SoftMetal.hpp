// SPDX-License-Identifier: Apache-2.0
// What a test or a tool may ask of the software device beyond Metal's own API: devices of a chosen kind, what they were
// told (the command log), which rules were broken (validation), failures on demand (faults), views in memory and the
// pixels presented in them, and what is still alive.
//
// It does not draw, and nothing here is needed to use Metal: a program that includes only <Metal/Metal.hpp> runs the
// same. All functions may be called from any thread. Objects whose name begins with "new" belong to the caller, who
// releases them; lists that are taken are emptied for the next caller.
#pragma once

#include <AppKit/AppKit.hpp>
#include <Metal/Metal.hpp>
#include <QuartzCore/QuartzCore.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace SoftMetal
{

// ---- devices -------------------------------------------------------------------------------------------------------
//
//     SoftMetal::DeviceOptions options;
//     options.depth24Stencil8 = false;
//     MTL::Device* device = SoftMetal::newDevice(options);
//     SoftMetal::setDevices({device}); // MTL::CreateSystemDefaultDevice() gives it from now on

struct DeviceOptions
{
    std::string name = "SoftMetal"; // what MTL::Device::name gives
    bool depth24Stencil8 = true; // whether textures of Depth24Unorm_Stencil8 can be made, as the device says when asked
    bool discards = false; // checks and records commands and throws them away: nothing is drawn or copied, command
                           // buffers complete at once, presents are counted. For measuring the caller's own time
};

/// A device of its own; the caller owns it. It is not among the machine's devices until setDevices names it.
SOFTMETAL_API MTL::Device* newDevice(const DeviceOptions& options);

/// The devices of this machine from now on, the first being the system's default; an empty list means that there is
/// none. They are retained.
SOFTMETAL_API void setDevices(const std::vector<MTL::Device*>& devices);

/// Back to one default device, called "SoftMetal (n threads)" or as SOFTMETAL_DEVICE_NAME says; none when
/// SOFTMETAL_NO_DEVICE is set to anything but 0.
SOFTMETAL_API void resetDevices();

// ---- validation ----------------------------------------------------------------------------------------------------
//
// A call that breaks a rule of Metal is reported with one sentence and then ignored, or carried out as far as it makes
// sense. It never crashes.

enum class Validation
{
    Off,    // nothing is checked that is not needed to stay safe, and nothing is said
    Report, // sentences are collected, and written to the log as errors: each at most ten times
    Abort,  // the process stops at the first
};

/// The start value comes from SOFTMETAL_VALIDATION (off, report, abort); without it, Report.
SOFTMETAL_API void setValidation(Validation mode);
SOFTMETAL_API Validation validation();

struct Message
{
    std::string rule;     // a short id, "draw.no-pipeline"
    std::string sentence; // names the call, the object's label, the value and the limit
};

/// Messages since the last call, the oldest first; beyond ten thousand they are dropped.
SOFTMETAL_API std::vector<Message> takeMessages();

/// The ids of all rules.
SOFTMETAL_API std::vector<std::string> validationRules();

// ---- command log ---------------------------------------------------------------------------------------------------
//
//     SoftMetal::setCommandLog(true);
//     … calls …
//     for (const SoftMetal::LogEntry& entry : SoftMetal::takeCommandLog())
//         if (entry.call == "setViewport") EXPECT_EQ(entry.number("width"), 64);

/// One argument of a call: one of the three is meant, by the kind of the argument.
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
    const void* receiver; // the API object, for comparison only: it may be gone
    std::vector<LogArgument> arguments;
    std::string label; // the receiver's, in quotes; "(no label)" when it has none

    /// The argument's number, 0 when there is none of that name.
    SOFTMETAL_API double number(const std::string& name) const;
    /// The argument's object, null when there is none of that name.
    SOFTMETAL_API const void* object(const std::string& name) const;
    /// The argument's text, empty when there is none of that name.
    SOFTMETAL_API std::string text(const std::string& name) const;
};

/// Logs the calls on all devices, or none any more. Off at the start.
SOFTMETAL_API void setCommandLog(bool on);
/// The same for one device and everything made from it.
SOFTMETAL_API void setCommandLog(MTL::Device* device, bool on);
/// Entries since the last call.
SOFTMETAL_API std::vector<LogEntry> takeCommandLog();

// ---- faults --------------------------------------------------------------------------------------------------------

/// The n-th call from now (1 is the next) of the named point fails as it does when there is no memory; persistent: all
/// after it as well. n = 0 takes the fault back. Points:
///     newBuffer newTexture newTextureView newSamplerState newDepthStencilState newFence newLibrary newFunction
///     newRenderPipelineState newCommandQueue nextDrawable       and "*" for all of these together;
///     commandBuffer renderCommandEncoder blitCommandEncoder     give nil, by name only;
///     commit                                                    the command buffer runs nothing and ends with an
///     error.
SOFTMETAL_API void injectFault(const std::string& point, uint64_t n, bool persistent);
/// Takes all faults back and sets the counts to 0.
SOFTMETAL_API void clearFaults();
/// Calls of the point that could have failed since the last clearFaults.
SOFTMETAL_API uint64_t failableCalls(const std::string& point);

/// Each command buffer waits this long before it runs: for tests of what happens meanwhile. 0 at the start.
SOFTMETAL_API void setCommandBufferDelay(double milliseconds);

// ---- views ---------------------------------------------------------------------------------------------------------

/// A view in memory; the caller owns it. Sizes are in points, and a point is a pixel.
SOFTMETAL_API NSView* newView(double width, double height);
/// Posts NSViewFrameDidChangeNotification to the local notification center when the view was asked to. A layer whose
/// drawable size was never set follows.
SOFTMETAL_API void setViewSize(NSView* view, double width, double height);
/// The layer that the view carries, null for none; it stays the view's.
SOFTMETAL_API CA::MetalLayer* layerOf(NSView* view);

struct Presented
{
    uint64_t count = 0;             // frames presented so far
    uint32_t width = 0, height = 0; // of the last one, in pixels
    std::vector<uint8_t> rgba;      // the last one, four bytes a pixel, top row first; empty when there is none
};

/// What was presented in a layer. A frame counts once its command buffer has run: wait for that first.
SOFTMETAL_API Presented presented(CA::MetalLayer* layer);

// ---- windows -------------------------------------------------------------------------------------------------------
//
//     NSView* view = SoftMetal::newWindow("Teapot", 1280, 720);
//     … a layer, as for any view; what is presented in it appears in the window …
//     for (const SoftMetal::WindowEvent& event : SoftMetal::pollEvents(view, 16))
//         if (event.kind == SoftMetal::EventKind::Closed) return;

/// A view in a window of its own on the X server that DISPLAY names; the caller owns it, and the window goes with it.
/// The client libraries (libxcb, and libxcb-shm where the server shares this machine's memory) are opened at run time.
/// Null, and a line to the log that says why, when they or the server are missing. setViewSize resizes the window.
SOFTMETAL_API NSView* newWindow(const std::string& title, uint32_t width, uint32_t height);

enum class EventKind
{
    MouseDown,
    MouseUp,
    MouseMoved,
    Scrolled,
    KeyDown, // again and again while the key is held
    KeyUp,
    Resized, // the view has its new size, and its observers were told
    Closed,  // the user wants to close the window, or the server is gone; the window stays until it is released
};

/// Keys without a character, numbered as AppKit numbers them.
enum Key : uint32_t
{
    KeyBackspace = 0x08,
    KeyTab = 0x09,
    KeyReturn = 0x0D,
    KeyEscape = 0x1B,
    KeyDelete = 0x7F,
    KeyUp = 0xF700,
    KeyDown = 0xF701,
    KeyLeft = 0xF702,
    KeyRight = 0xF703,
    KeyHome = 0xF729,
    KeyEnd = 0xF72B,
    KeyPageUp = 0xF72C,
    KeyPageDown = 0xF72D,
};

struct WindowEvent
{
    EventKind kind = EventKind::MouseMoved;
    double x = 0, y = 0;           // mouse and keys: where the mouse is, in pixels from the upper left
    double deltaX = 0, deltaY = 0; // Scrolled: steps to the right and upwards
    double width = 0, height = 0;  // Resized
    uint32_t button = 0;           // MouseDown, MouseUp: 1 left, 2 middle, 3 right
    uint32_t key = 0;              // KeyDown, KeyUp: a Key, or the character (Unicode) with Shift as it was held
};

/// What the user of a window did since the last call, the oldest first, after waiting at most so long for something to
/// happen. Resizes the view and shows the last frame again where that is needed, so call it regularly, from one thread
/// at a time. Nothing for a view that is in no window.
SOFTMETAL_API std::vector<WindowEvent> pollEvents(NSView* window, double milliseconds = 0);

// ---- capture -------------------------------------------------------------------------------------------------------

/// Whether MTL::CaptureManager writes trace documents: folders with "trace.json" (every call made while it captured,
/// the objects they used, the passes), a small picture of each attachment after each pass, and "index.html", a page
/// that shows all of it from disk. What a document of that name held before is written over. It does not at the start,
/// unless SOFTMETAL_CAPTURE is set to anything but 0.
SOFTMETAL_API void setCaptureSupported(bool supported);

// ---- the rest ------------------------------------------------------------------------------------------------------

/// Objects alive in the process, of all classes or of one ("MTL::Buffer").
SOFTMETAL_API int64_t objectsAlive();
SOFTMETAL_API int64_t objectsAlive(const std::string& className);
/// All classes that have had objects, by name.
SOFTMETAL_API std::vector<std::pair<std::string, int64_t>> objectsAliveByClass();

/// Where NSLog lines and the device's own messages go; an empty function means standard error.
SOFTMETAL_API void setLogSink(std::function<void(const std::string& line)> sink);

/// How much the device itself says, NSLog lines left alone: nothing, broken rules and failures (at the start), and with
/// "debug" what it builds and how long that took. The start value comes from SOFTMETAL_LOG_LEVEL (none, error, warn,
/// info, debug).
enum class LogLevel
{
    None,
    Error,
    Warn,
    Info,
    Debug
};
SOFTMETAL_API void setLogLevel(LogLevel level);

/// What all devices have done since the process began. For each frame: subtract those of the frame before.
struct Counters
{
    uint64_t draws, passes;      // as encoded, when their encoder ends
    uint64_t commandBuffers;     // committed
    uint64_t pipelines;          // pipeline states made
    double pipelineMilliseconds; // spent on them, on functions and on libraries
    uint64_t
        bytesUploaded; // handed to new buffers and to replaceRegion; what is written into buffers directly is not seen
    uint64_t trianglesHidden; // left out of a tile that an opaque one covers whole later in the pass
    int64_t objects;   // alive now, as objectsAlive tells
};
SOFTMETAL_API Counters counters();

/// Threads that draw, the queue's own included.
SOFTMETAL_API uint32_t workerThreads();
/// Pixels or vertices that a shader works on at once.
SOFTMETAL_API uint32_t lanes();

/// Work on shaders since the process began. What was compiled before, in this process or another, is kept in a folder
/// (SOFTMETAL_CACHE_DIR) and taken from there.
struct ShaderWork
{
    uint64_t parsed = 0;         // program texts that were parsed
    uint64_t generated = 0;      // functions that machine code was generated for
    uint64_t librariesFound = 0; // texts that were known
    uint64_t functionsFound = 0; // functions that were known
};
SOFTMETAL_API ShaderWork shaderWork();

} // namespace SoftMetal
