// SPDX-License-Identifier: Apache-2.0
// GPU capture: support at creation, the trace document at layer creation, the private capability, the end at release.
#include "Logged.h"
#include "ZALMetalContext.h"
#include "support/RunProgram.h"

#include <SoftMetal/SoftMetal.hpp>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
constexpr GLenum CaptureCapability = 0xFEAD;
constexpr int Bgra8 = MTL::PixelFormatBGRA8Unorm;

/// In a folder of its own, for the document lands in the working folder.
class GpuCapture : public testing::Test
{
protected:
    void SetUp() override
    {
        before_ = fs::current_path();
        folder = fs::temp_directory_path() / ("zal-capture-" + std::to_string(getpid()));
        fs::create_directories(folder);
        fs::current_path(folder);
        setenv("ZALMETAL_GPU_CAPTURE", "1", 1);
        SoftMetal::setCaptureSupported(true);
        pool_ = NS::AutoreleasePool::alloc()->init();
        view = SoftMetal::newView(8, 6);
    }

    void TearDown() override
    {
        if (context) ZALMetalContextDestroy(context);
        view->release();
        pool_->release();
        MTL::CaptureManager::sharedCaptureManager()->stopCapture();
        SoftMetal::setCaptureSupported(false);
        for (const char* name : {"ZALMETAL_GPU_CAPTURE", "ZALMETAL_GPU_CAPTURE_AT_START"}) unsetenv(name);
        fs::current_path(before_);
        fs::remove_all(folder);
    }

    void create() { ASSERT_EQ(ZALMetalContextInitFromMTLCommandQueue(context, nullptr, nullptr), 0); }
    int attach() { return ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, 0); }
    ZALMetalData& data() { return *context->metalData; }

    static bool said(const std::vector<std::string>& lines, const std::string& start)
    {
        return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) { return line.rfind(start, 0) == 0; });
    }

    fs::path folder;
    ZALMetalContext* context = nullptr;
    NSView* view = nullptr;

private:
    fs::path before_;
    NS::AutoreleasePool* pool_ = nullptr;
};

TEST_F(GpuCapture, SupportIsSaidAtCreation)
{
    contexts::Logged lines;
    create();
    auto texts = lines.take();
    EXPECT_TRUE(said(texts, "enableDebugGPUCapture is set :"));
    EXPECT_TRUE(said(texts, "- MTLCaptureManager supports MTLCaptureDestinationGPUTraceDocument"));
    EXPECT_EQ(context->glState->enableDebugGPUCapture, 1);
}

TEST_F(GpuCapture, WithoutSupportItIsSwitchedOffAndTheReasonSaid)
{
    SoftMetal::setCaptureSupported(false);
    contexts::Logged lines;
    create();
    auto texts = lines.take();
    for (const char* line : {"- [!] MTLCaptureManager does not support MTLCaptureDestinationGPUTraceDocument", "- enableDebugGPUCapture is disabled",
                             "- Did you forget to set 'Metal Capture Enabled' value set to YES in 'Info.plist' ?"})
        EXPECT_TRUE(said(texts, line)) << line;
    EXPECT_EQ(context->glState->enableDebugGPUCapture, 0);
    EXPECT_EQ(attach(), 0);
    EXPECT_EQ(data().captureScope, nullptr);
}

TEST_F(GpuCapture, ALayerStartsItAndTheCapabilityControlsTheScope)
{
    create();
    contexts::Logged lines;
    EXPECT_EQ(attach(), 0);
    auto texts = lines.take();
    EXPECT_TRUE(said(texts, "enableDebugGPUCapture: GPU tracing to ")) << testing::PrintToString(texts);
    EXPECT_FALSE(said(texts, "enableDebugGPUCapture: Capture started"));
    ASSERT_NE(data().captureScope, nullptr);
    EXPECT_STREQ(data().captureScope->label()->utf8String(), "ZAL Metal capture");
    EXPECT_FALSE(data().captureScopeActive);
    MTL::CaptureScope* scope = data().captureScope;
    glEnable(CaptureCapability);
    EXPECT_TRUE(data().captureScopeActive);
    glDisable(CaptureCapability);
    EXPECT_FALSE(data().captureScopeActive);
    EXPECT_EQ(data().captureScope, nullptr);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    scope->release(); // the library lets go of it without releasing
}

TEST_F(GpuCapture, AtStartItTracesAtOnce)
{
    setenv("ZALMETAL_GPU_CAPTURE_AT_START", "1", 1);
    create();
    contexts::Logged lines;
    EXPECT_EQ(attach(), 0);
    EXPECT_TRUE(said(lines.take(), "enableDebugGPUCapture: Capture started"));
    EXPECT_TRUE(data().captureScopeActive);
}

TEST_F(GpuCapture, ACaptureThatDoesNotStartLeavesTheLayer)
{
    create();
    auto* manager = MTL::CaptureManager::sharedCaptureManager();
    auto* d = MTL::CaptureDescriptor::alloc()->init(); // somebody else captures already
    d->setCaptureObject(reinterpret_cast<id>(data().device));
    d->setDestination(MTL::CaptureDestinationGPUTraceDocument);
    d->setOutputURL(NS::URL::fileURLWithPath(NS::String::string("other.gputrace", NS::UTF8StringEncoding)));
    ASSERT_TRUE(manager->startCapture(d, nullptr));
    d->release();
    contexts::Logged lines;
    EXPECT_EQ(attach(), 0);
    EXPECT_TRUE(said(lines.take(), "enableDebugGPUCapture: Failed to start capture, error "));
    EXPECT_EQ(data().captureScope, nullptr);
    EXPECT_NE(context->drawable->layer, nullptr);
}

TEST_F(GpuCapture, ReleaseEndsTheTraceAndTheDocumentHoldsTheFrame)
{
    setenv("ZALMETAL_GPU_CAPTURE_AT_START", "1", 1);
    create();
    ASSERT_EQ(attach(), 0);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    ZALMetalContextSwapBuffers(context);
    contexts::Logged lines;
    EXPECT_EQ(ZALMetalContextDestroy(context), 0);
    context = nullptr;
    EXPECT_TRUE(said(lines.take(), "enableDebugGPUCapture: Ending GPU trace"));
    fs::path document = folder / "ZALMetal.m.gputrace";
    std::ifstream file(document / "trace.json");
    std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(text.find("\"draws\": 1, \"attachments\": [{\"name\": \"color0\", \"width\": 8, \"height\": 6"), std::string::npos); // of the copy to the drawable
    EXPECT_TRUE(fs::exists(document / "index.html"));
    auto files = fs::directory_iterator(document);
    EXPECT_EQ(std::count_if(begin(files), end(files), [](const auto& entry) { return entry.path().extension() == ".png"; }), 2); // after the clear and after the copy
    for (const char* call : {"\"renderCommandEncoder\"", "\"drawPrimitives\"", "\"presentDrawable\""}) EXPECT_NE(text.find(call), std::string::npos) << call;
}

/// Opened from disk by a browser, where there is one.
TEST_F(GpuCapture, ThePageShowsEveryDraw)
{
    if (support::runProgram("command -v chromium").status != 0) GTEST_SKIP() << "no chromium to open the page with";
    setenv("ZALMETAL_GPU_CAPTURE_AT_START", "1", 1);
    create();
    ASSERT_EQ(attach(), 0);
    constexpr int Frames = 3;
    for (int i = 0; i < Frames; ++i) {
        glClear(GL_COLOR_BUFFER_BIT);
        ZALMetalContextSwapBuffers(context); // draws once
    }
    ZALMetalContextDestroy(context);
    context = nullptr;
    std::string page = (folder / "ZALMetal.m.gputrace" / "index.html").string();
    auto shown = support::runProgram("timeout 60 chromium --headless --no-sandbox --disable-gpu --user-data-dir=" + (folder / "browser").string() +
                                     " --dump-dom 'file://" + page + "' 2>/dev/null");
    EXPECT_NE(shown.output.find("data-draws=\"" + std::to_string(Frames) + "\""), std::string::npos);
    EXPECT_NE(shown.output.find("triangle strip, 4 vertices"), std::string::npos);
}

TEST_F(GpuCapture, WithoutTheSwitchTheCapabilityDoesNothing)
{
    unsetenv("ZALMETAL_GPU_CAPTURE");
    create();
    ASSERT_EQ(attach(), 0);
    EXPECT_EQ(data().captureScope, nullptr);
    glEnable(CaptureCapability);
    glDisable(CaptureCapability);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_FALSE(data().captureScopeActive);
}

} // namespace
