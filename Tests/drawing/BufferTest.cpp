// SPDX-License-Identifier: Apache-2.0
// Buffer objects.
#include "ZALGLBufferObject.h"
#include "ZALGLContextObjects.h"
#include "drawing/Drawing.h"

#include <numeric>

namespace {

using namespace drawing;

class Buffer : public Routes
{
protected:
    void SetUp() override
    {
        Routes::SetUp();
        glGenBuffers(1, &name);
        glBindBuffer(GL_ARRAY_BUFFER, name);
        std::iota(bytes.begin(), bytes.end(), uint8_t{1});
        clearLog();
    }

    MTL::Buffer* metal() { return gl().contextObjects->buffers.Find(name)->GetMTLBuffer(); }
    std::vector<uint8_t> contents()
    {
        glFinish();
        const auto* data = static_cast<const uint8_t*>(metal()->contents());
        return std::vector<uint8_t>(data, data + metal()->length());
    }
    void fill(GLsizeiptr size) { glBufferData(GL_ARRAY_BUFFER, size, nullptr, GL_DYNAMIC_DRAW); }

    GLuint name = 0;
    std::vector<uint8_t> bytes = std::vector<uint8_t>(4096);
};
INSTANTIATE_TEST_SUITE_P(Devices, Buffer, testing::Values(false, true), routeName);

/// A name that was never generated can be bound; using it is the error.
TEST_P(Buffer, Kept_bind_any_buffer)
{
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 777);
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(gl().elementArrayBufferBinding, 777u);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, name);
    EXPECT_EQ(error(), InvalidEnum);
    glBufferData(GL_PIXEL_PACK_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    EXPECT_EQ(error(), InvalidEnum);
    glBufferSubData(GL_PIXEL_PACK_BUFFER, 0, 4, bytes.data());
    EXPECT_EQ(error(), InvalidEnum);
}

TEST_P(Buffer, DataGoesIntoManagedStorage)
{
    glBufferData(GL_ARRAY_BUFFER, 100, bytes.data(), GL_STATIC_DRAW);
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(metal()->length(), 100u);
    EXPECT_EQ(metal()->storageMode(), MTL::StorageModeManaged);
    EXPECT_EQ(contents(), std::vector<uint8_t>(bytes.begin(), bytes.begin() + 100));
    auto all = log();
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& e) { return e.call == "didModifyRange"; }), isIntel() ? 1 : 0);
}

TEST_P(Buffer, WithoutDataThereIsStorage)
{
    fill(64);
    EXPECT_EQ(metal()->length(), 64u);
    EXPECT_EQ(error(), NoError);
}

TEST_P(Buffer, Kept_empty_buffer)
{
    fill(64);
    for (GLsizeiptr size : {GLsizeiptr{0}, GLsizeiptr{-1}}) {
        fill(64);
        glBufferData(GL_ARRAY_BUFFER, size, bytes.data(), GL_STATIC_DRAW);
        EXPECT_EQ(error(), OutOfMemory);
        EXPECT_EQ(metal(), nullptr);
    }
}

TEST_P(Buffer, WithoutMemoryTheOldStorageIsGone)
{
    fill(64);
    SoftMetal::injectFault("newBuffer", 1, false);
    fill(32);
    SoftMetal::clearFaults();
    EXPECT_EQ(error(), OutOfMemory);
    EXPECT_EQ(metal(), nullptr);
    fill(32);
    EXPECT_EQ(error(), NoError);
}

TEST_P(Buffer, NewStorageLeavesQueuedWorkAlone)
{
    draw(); // reads the triangle's buffers
    const float nothing[12] = {};
    glBindBuffer(GL_ARRAY_BUFFER, gl().vertexAttribs[0].buffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof nothing, nothing, GL_STATIC_DRAW);
    EXPECT_EQ(error(), NoError);
    glFinish();
    EXPECT_TRUE(SoftMetal::takeMessages().empty());
}

TEST_P(Buffer, NamesThatAreNotThereAreInvalidOperation)
{
    for (GLuint missing : {0u, 777u}) {
        glBindBuffer(GL_ARRAY_BUFFER, missing);
        fill(4);
        EXPECT_EQ(error(), InvalidOperation);
        glBufferSubData(GL_ARRAY_BUFFER, 0, 4, bytes.data());
        EXPECT_EQ(error(), InvalidOperation);
    }
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glDeleteBuffers(1, &name); // does not unbind
    EXPECT_EQ(gl().arrayBufferBinding, name);
    fill(4);
    EXPECT_EQ(error(), InvalidOperation);
}

TEST_P(Buffer, SubDataIsWrittenInPlace)
{
    glBufferData(GL_ARRAY_BUFFER, 8, bytes.data(), GL_STATIC_DRAW);
    clearLog();
    const uint8_t more[3] = {200, 201, 202};
    glBufferSubData(GL_ARRAY_BUFFER, 2, 3, more);
    auto modified = entries("didModifyRange");
    ASSERT_EQ(modified.size(), 1u);
    EXPECT_EQ(modified[0].number("location"), 2);
    EXPECT_EQ(modified[0].number("length"), 3);
    EXPECT_EQ(contents(), (std::vector<uint8_t>{1, 2, 200, 201, 202, 6, 7, 8}));
}

/// Ranges outside are INVALID_OPERATION, where GL says INVALID_VALUE.
TEST_P(Buffer, Kept_sub_data_range)
{
    glBufferSubData(GL_ARRAY_BUFFER, 0, 4, bytes.data()); // no storage yet
    EXPECT_EQ(error(), InvalidOperation);
    glBufferData(GL_ARRAY_BUFFER, 8, bytes.data(), GL_STATIC_DRAW);
    constexpr GLintptr Most = std::numeric_limits<GLintptr>::max();
    constexpr std::pair<GLintptr, GLsizeiptr> Bad[] = {{-1, 4}, {0, -1}, {5, 4}, {9, 0}, {0, 9}, {Most, Most}, {Most, 1}, {1, Most}};
    for (auto [offset, size] : Bad) {
        glBufferSubData(GL_ARRAY_BUFFER, offset, size, bytes.data());
        EXPECT_EQ(error(), InvalidOperation) << offset << ", " << size;
    }
    glBufferSubData(GL_ARRAY_BUFFER, 8, 0, bytes.data());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(contents(), std::vector<uint8_t>(bytes.begin(), bytes.begin() + 8));
}

/// One byte more than a kilobyte, at a multiple of four, goes through the GPU where it has memory of its own.
TEST_P(Buffer, Kept_staged_update_size)
{
    fill(4096);
    constexpr std::tuple<GLintptr, GLsizeiptr, bool> Updates[] = {{0, 1024, false}, {4, 1025, true}, {2, 1025, false}, {0, 4096, true}};
    for (auto [offset, size, staged] : Updates) {
        clearLog();
        glBufferSubData(GL_ARRAY_BUFFER, offset, size, bytes.data());
        EXPECT_EQ(error(), NoError);
        auto all = log();
        auto made = [&](const char* call) { return std::count_if(all.begin(), all.end(), [&](const auto& e) { return e.call == call; }); };
        EXPECT_EQ(made("newBuffer"), staged && isIntel() ? 1 : 0) << offset << ", " << size;
        EXPECT_EQ(made("didModifyRange"), staged && isIntel() ? 0 : 1) << offset << ", " << size;
        commands().commandBufferWaitUntilCompleted();
        auto now = contents();
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + size, now.begin() + offset)) << offset << ", " << size;
    }
    for (const auto& message : SoftMetal::takeMessages()) EXPECT_EQ(message.rule, "blit.alignment"); // Metal asks for sizes of four, too
}

/// Nothing waits: what is queued may see the new contents.
TEST_P(Buffer, Kept_sub_data_in_use)
{
    draw();
    glBindBuffer(GL_ARRAY_BUFFER, gl().vertexAttribs[0].buffer);
    clearLog();
    const float moved[12] = {9, 9, 0, 1, 9, 9, 0, 1, 9, 9, 0, 1};
    glBufferSubData(GL_ARRAY_BUFFER, 0, sizeof moved, moved);
    Names names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "commit"), 0);
    EXPECT_EQ(std::count(names.begin(), names.end(), "waitUntilCompleted"), 0);
    EXPECT_EQ(pixel(), "0 0 0 0");
}

TEST(BufferObject, OwnsOneReference)
{
    MTL::Device* device = SoftMetal::newDevice({});
    {
        ZALGLBufferObject object;
        EXPECT_EQ(object.GetMTLBuffer(), nullptr);
        MTL::Buffer *first = device->newBuffer(4, MTL::ResourceStorageModeShared), *second = device->newBuffer(4, MTL::ResourceStorageModeShared);
        object.SetMTLBuffer(first);
        EXPECT_EQ(first->retainCount(), 1u); // taken over, not retained
        object.SetMTLBuffer(second);
        EXPECT_EQ(object.GetMTLBuffer(), second);
        object.ReleaseMTLBuffer();
        object.ReleaseMTLBuffer();
        EXPECT_EQ(object.GetMTLBuffer(), nullptr);
        object.SetMTLBuffer(device->newBuffer(4, MTL::ResourceStorageModeShared));
    }
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Buffer"), 0);
    device->release();
}

} // namespace
