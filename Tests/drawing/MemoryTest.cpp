// SPDX-License-Identifier: Apache-2.0
// What a frame of many draws takes: memory for the recorded commands, and no allocation for a draw once a frame of its
// kind has been drawn. An executable of its own, because it counts every allocation of the process.
#include "drawing/Drawing.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace
{

std::atomic<uint64_t> g_allocations{0};

} // namespace

void* operator new(size_t size)
{
    ++g_allocations;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void* operator new[](size_t size)
{
    return operator new(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept
{
    std::free(memory);
}

namespace
{

using namespace drawing;

constexpr int Draws = 10000;
constexpr size_t Mebibyte = 1 << 20;

size_t bytesTaken()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

class FrameMemory : public DrawTest
{
protected:
    void SetUp() override
    {
        DrawTest::SetUp();
        SoftMetal::setCommandLog(false); // it keeps what it is told
        SoftMetal::takeCommandLog();
    }

    /// Draws that each have their own program local and their own matrix.
    void drawMany()
    {
        glMatrixMode(GL_MODELVIEW);
        for (int i = 0; i < Draws; ++i) {
            const GLfloat value[4] = {static_cast<GLfloat>(i), 0, 0, 1};
            glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, value);
            glLoadIdentity();
            glMultMatrixf(Shift);
            draw();
        }
    }

    static constexpr GLfloat Shift[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.25f, 0, 0, 1};
};

TEST_F(FrameMemory, TenThousandDrawsStayUnder64MiB)
{
    draw();
    glFinish();
    const size_t before = bytesTaken();
    drawMany();
    const size_t taken = bytesTaken() - before;
    EXPECT_LT(taken, 64 * Mebibyte);
    EXPECT_GT(taken, Draws * sizeof(float)) << "that is not what ten thousand draws leave";
    glFinish();
}

TEST_F(FrameMemory, ADrawAllocatesNothingOnceAFrameLikeItHasBeenDrawn)
{
    for (int frame = 0; frame < 2; ++frame) {
        drawMany();
        glFinish();
    }
    draw(); // begins the pass
    const uint64_t before = g_allocations;
    drawMany();
    const uint64_t allocations = g_allocations - before;
    glFinish();
    EXPECT_LT(allocations, Draws / 100u) << "for " << Draws << " draws";
}

TEST_F(FrameMemory, FramesDoNotAddUp)
{
    for (int frame = 0; frame < 3; ++frame) {
        drawMany();
        glFinish();
    }
    const size_t before = bytesTaken();
    for (int frame = 0; frame < 5; ++frame) {
        drawMany();
        glFinish();
    }
    EXPECT_LT(bytesTaken(), before + Mebibyte);
}

} // namespace
