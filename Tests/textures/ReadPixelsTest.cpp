// SPDX-License-Identifier: Apache-2.0
// Reading the bound framebuffer: every layout from every target format, in private and in managed storage.
#include "textures/Client.h"
#include "textures/Reading.h"

namespace textures
{

constexpr GLsizei Width = 5, Height = 3;
constexpr size_t Pixels = size_t{Width} * Height;
constexpr UploadRow Source = {"Source", GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT, true}; // from -4 to 12, in sixteenths

class ReadPixels : public OnBothRoutes
{
protected:
    /// Draws the source image over the bound framebuffer.
    void drawSource()
    {
        bindNew(GL_TEXTURE_2D);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F_ARB, Width, Height, 0, GL_RGBA, GL_FLOAT, clientImage(Source, Pixels).data());
        glViewport(0, 0, Width, Height);
        drawQuad(GL_TEXTURE_2D, WholeImage);
    }

    /// A framebuffer object with a rectangle of that internal format as its only attachment.
    void bindFramebuffer(GLenum internalFormat, GLenum attachment = GL_COLOR_ATTACHMENT0)
    {
        GLuint framebuffer = 0, name = bindNew(GL_TEXTURE_RECTANGLE_ARB);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, static_cast<GLint>(internalFormat), Width, Height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, attachment, GL_TEXTURE_RECTANGLE_ARB, name, 0);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }

    static std::vector<Rgba> expected(MTL::PixelFormat format)
    {
        std::vector<Rgba> result;
        for (size_t i = 0; i < Pixels; ++i) result.push_back(kept(format, shown(Source, i)));
        return result;
    }

    void expectEveryRow(MTL::PixelFormat format)
    {
        for (const ReadRow& row : ReadRows)
            EXPECT_EQ(pixels(0, 0, Width, Height, row.format, row.type, row.client), clientBytes(row, expected(format))) << row.name << " of " << format;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
};

// One format to a context: the first textures of a default framebuffer fix it.
class ReadPixelsOf : public Textures, public ::testing::WithParamInterface<std::tuple<Route, MTL::PixelFormat>>
{
protected:
    ReadPixelsOf() : Textures(std::get<0>(GetParam())) {}
};

TEST_P(ReadPixelsOf, APrivateTarget)
{
    auto format = std::get<1>(GetParam());
    target(Width, Height, format);
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F_ARB, Width, Height, 0, GL_RGBA, GL_FLOAT, clientImage(Source, Pixels).data());
    drawQuad(GL_TEXTURE_2D, WholeImage);
    std::vector<Rgba> expected;
    for (size_t i = 0; i < Pixels; ++i) expected.push_back(kept(format, shown(Source, i)));
    for (const ReadRow& row : ReadRows)
        EXPECT_EQ(pixels(0, 0, Width, Height, row.format, row.type, row.client), clientBytes(row, expected)) << row.name;
}

INSTANTIATE_TEST_SUITE_P(Formats, ReadPixelsOf,
                         ::testing::Combine(::testing::Values(Route::Ordinary, Route::Intel),
                                            ::testing::Values(MTL::PixelFormatA8Unorm, MTL::PixelFormatR8Unorm, MTL::PixelFormatR16Float, MTL::PixelFormatR32Float,
                                                              MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatRGBA16Float,
                                                              MTL::PixelFormatRGBA32Float)));

TEST_P(ReadPixels, EveryRowOfEveryManagedTarget)
{
    constexpr std::pair<GLenum, MTL::PixelFormat> Internals[] = {
        {GL_ALPHA8, MTL::PixelFormatA8Unorm},           {GL_LUMINANCE8, MTL::PixelFormatR8Unorm},
        {GL_INTENSITY16F_ARB, MTL::PixelFormatR16Float}, {GL_INTENSITY32F_ARB, MTL::PixelFormatR32Float},
        {GL_FLOAT_R_NV, MTL::PixelFormatR32Float},      {GL_RGB8, MTL::PixelFormatRGBA8Unorm},
        {GL_RGBA8, MTL::PixelFormatBGRA8Unorm},         {GL_RGB16F_ARB, MTL::PixelFormatRGBA16Float},
        {GL_RGBA16F_ARB, MTL::PixelFormatRGBA16Float},  {GL_RGB32F_ARB, MTL::PixelFormatRGBA32Float},
        {GL_RGBA32F_ARB, MTL::PixelFormatRGBA32Float},
    };
    for (auto [internal, format] : Internals) {
        bindFramebuffer(internal);
        drawSource();
        expectEveryRow(format);
    }
}

TEST_P(ReadPixels, DropsAlphaAndPicksIt)
{
    target(2, 1, MTL::PixelFormatBGRA8Unorm);
    glClearColor(1, 0.6f, 0.2f, 0.8f);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(pixels(0, 0, 2, 1, GL_RGB, GL_UNSIGNED_BYTE, 3), (Bytes{255, 153, 51, 255, 153, 51}));
    EXPECT_EQ(pixels(0, 0, 2, 1, GL_ALPHA, GL_UNSIGNED_BYTE, 1), (Bytes{204, 204}));
}

TEST_P(ReadPixels, APartOfTheTargetWhereNothingIsConverted)
{
    bindFramebuffer(GL_RGBA32F_ARB);
    drawSource();
    Bytes all = clientImage(Source, Pixels), part;
    for (size_t y = 1; y < 3; ++y) part.insert(part.end(), all.begin() + static_cast<long>((y * Width + 2) * 16), all.begin() + static_cast<long>((y * Width + 5) * 16));
    EXPECT_EQ(pixels(2, 1, 3, 2, GL_RGBA, GL_FLOAT, 16), part);
}

TEST_P(ReadPixels, Kept_converted_read_origin)
{
    bindFramebuffer(GL_RGBA8);
    drawSource();
    Bytes got = pixels(2, 1, 3, 2, GL_RGBA, GL_UNSIGNED_BYTE, 4); // BGRA to RGBA: drawn into a copy of 3 by 2
    EXPECT_EQ(broken(), Rules{"blit.region"});
    EXPECT_EQ(got, Bytes(24)); // the buffer that nothing was copied to
    clearLog();
    pixels(0, 0, 3, 2, GL_RGBA, GL_UNSIGNED_BYTE, 4);
    EXPECT_EQ(broken(), Rules{});
}

TEST_P(ReadPixels, AConvertedReadNamesItsOriginInTheCopy)
{
    bindFramebuffer(GL_RGBA8);
    drawSource();
    clearLog();
    pixels(2, 1, 3, 2, GL_RGBA, GL_UNSIGNED_BYTE, 4);
    for (const SoftMetal::LogEntry& entry : log()) {
        if (entry.call != "copyFromTexture") continue;
        EXPECT_EQ(entry.number("x"), 2);
        EXPECT_EQ(entry.number("y"), 1);
        EXPECT_EQ(entry.number("bytesPerRow"), 12);
    }
    broken();
}

TEST_P(ReadPixels, Kept_pack_ignored)
{
    bindFramebuffer(GL_RGB8);
    drawSource();
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    const ReadRow& row = ReadRows[4];
    EXPECT_EQ(pixels(0, 0, Width, Height, GL_RGB, GL_UNSIGNED_BYTE, 3), clientBytes(row, expected(MTL::PixelFormatRGBA8Unorm)));
    glGetError();
}

TEST_P(ReadPixels, WaitsForWhatWasDrawn)
{
    SoftMetal::setCommandBufferDelay(20);
    bindFramebuffer(GL_RGBA16F_ARB);
    drawSource();
    expectEveryRow(MTL::PixelFormatRGBA16Float);
    SoftMetal::setCommandBufferDelay(0);
}

TEST_P(ReadPixels, GivesMemoryBackAtOnce)
{
    bindFramebuffer(GL_RGBA8);
    drawSource();
    clearLog();
    pixels(0, 0, Width, Height, GL_BGRA, GL_UNSIGNED_BYTE, 4);
    EXPECT_EQ(count("setPurgeableState"), 1u);
    int64_t textures = SoftMetal::objectsAlive("MTL::Texture"), buffers = SoftMetal::objectsAlive("MTL::Buffer");
    clearLog();
    pixels(0, 0, Width, Height, GL_RGBA, GL_FLOAT, 16);
    EXPECT_EQ(count("setPurgeableState"), 2u);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Texture"), textures);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Buffer"), buffers);
}

// ---- depth ----

TEST_P(ReadPixels, DepthOfEveryDepthFormat)
{
    constexpr std::pair<GLenum, float> Internals[] = {
        {GL_DEPTH_COMPONENT16, 16384.0f / 65535.0f}, {GL_DEPTH_COMPONENT24, 4194304.0f / 16777215.0f}, {GL_DEPTH_COMPONENT32, 0.25f}, {GL_DEPTH24_STENCIL8, 4194304.0f / 16777215.0f}};
    for (auto [internal, value] : Internals) {
        bindFramebuffer(internal, GL_DEPTH_ATTACHMENT);
        glDrawBuffer(GL_NONE);
        glEnable(GL_DEPTH_TEST);
        glClearDepth(0.25);
        glClear(GL_DEPTH_BUFFER_BIT);
        EXPECT_EQ(pixels(0, 0, Width, Height, GL_DEPTH_COMPONENT, GL_FLOAT, 4), bytesOf(std::vector<float>(Pixels, value))) << internal;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
}

TEST_P(ReadPixels, DepthOfAPackedAttachmentIsConvertedFirst)
{
    attachTextures(Width, Height, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatDepth32Float_Stencil8);
    glEnable(GL_DEPTH_TEST);
    glClearDepth(0.625);
    glClear(GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT);
    clearLog();
    EXPECT_EQ(pixels(0, 0, Width, Height, GL_DEPTH_COMPONENT, GL_FLOAT, 4), bytesOf(std::vector<float>(Pixels, 0.625f)));
    EXPECT_EQ(count("newTexture"), 1u);
}

TEST_P(ReadPixels, WithoutDepthOrColourThereIsNothingToRead)
{
    target(4, 4);
    EXPECT_EQ(pixels(0, 0, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, 4), Bytes(4, 0xEE));
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    EXPECT_EQ(pixels(0, 0, 1, 1, GL_RGBA, GL_FLOAT, 16), Bytes(16, 0xEE));
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

// ---- refusals ----

TEST_P(ReadPixels, Kept_read_format_error)
{
    target(1, 1);
    EXPECT_EQ(pixels(0, 0, 1, 1, GL_LUMINANCE, GL_UNSIGNED_BYTE, 4), Bytes(4, 0xEE));
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_P(ReadPixels, EveryOtherLayoutIsRefused)
{
    target(1, 1);
    const auto known = [](GLenum format, GLenum type) {
        if (format == DepthRow.format && type == DepthRow.type) return true;
        return std::any_of(std::begin(ReadRows), std::end(ReadRows), [&](const ReadRow& row) { return row.format == format && row.type == type; });
    };
    const auto expectRefusal = [&](GLenum format, GLenum type) {
        if (known(format, type)) return true;
        uint8_t memory[32] = {};
        glReadPixels(0, 0, 1, 1, format, type, memory);
        bool refused = glGetError() == GL_INVALID_OPERATION && std::all_of(std::begin(memory), std::end(memory), [](uint8_t b) { return b == 0; });
        EXPECT_TRUE(refused) << format << " " << type;
        return refused;
    };
    for (uint32_t value = 0; value <= 0xFFFF; ++value) {
        for (GLenum type : {GL_UNSIGNED_BYTE, GL_HALF_FLOAT, GL_FLOAT}) ASSERT_TRUE(expectRefusal(value, type));
        for (GLenum format : {GL_RED, GL_ALPHA, GL_RGB, GL_RGBA, GL_BGRA, GL_DEPTH_COMPONENT}) ASSERT_TRUE(expectRefusal(format, value));
    }
}

TEST_P(ReadPixels, BeyondTheTargetIsReportedAndIgnored)
{
    bindFramebuffer(GL_RGBA32F_ARB);
    drawSource();
    for (auto [x, y, w, h] : {std::array{0, 0, Width + 1, 1}, {0, 0, 1, Height + 1}, {-1, 0, 1, 1}, {0, -1, 1, 1}, {Width, 0, 1, 1}}) {
        EXPECT_EQ(pixels(x, y, w, h, GL_RGBA, GL_FLOAT, 16), Bytes(static_cast<size_t>(w * h) * 16));
        EXPECT_EQ(broken(), Rules{"blit.region"});
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(ReadPixels, NoSizeOrAnImpossibleOneWritesNothing)
{
    bindFramebuffer(GL_RGBA32F_ARB);
    drawSource();
    constexpr GLsizei Huge = 0x40000000, Largest = 0x7FFFFFFF;
    for (auto [w, h] : {std::pair{0, 1}, {1, 0}, {-1, 1}, {1, -5}, {Huge, Huge}, {Largest, Largest}}) {
        for (GLenum type : {GL_UNSIGNED_BYTE, GL_FLOAT}) {
            uint8_t memory[64] = {};
            glReadPixels(0, 0, w, h, GL_RGB, type, memory);
            EXPECT_TRUE(std::all_of(std::begin(memory), std::end(memory), [](uint8_t b) { return b == 0; }));
            EXPECT_EQ(glGetError(), GL_NO_ERROR);
        }
    }
    broken();
}

TEST_P(ReadPixels, ARefusedSizeStillCommitsWhatWasDrawn)
{
    bindFramebuffer(GL_RGBA32F_ARB);
    drawSource();
    clearLog();
    glReadPixels(0, 0, 0, 0, GL_RGBA, GL_FLOAT, nullptr);
    EXPECT_EQ(count("commit"), 1u);
}

TEST_P(ReadPixels, WithoutMemoryNothingIsWritten)
{
    bindFramebuffer(GL_RGBA8);
    drawSource();
    for (const char* point : {"newBuffer", "newTexture"}) {
        SoftMetal::injectFault(point, 1, false);
        EXPECT_EQ(pixels(0, 0, Width, Height, GL_RGBA, GL_FLOAT, 16), Bytes(Pixels * 16, 0xEE)) << point;
        SoftMetal::clearFaults();
    }
    expectEveryRow(MTL::PixelFormatBGRA8Unorm);
}

INSTANTIATE_TEST_SUITE_P(Routes, ReadPixels, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
