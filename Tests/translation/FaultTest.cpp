// SPDX-License-Identifier: Apache-2.0
// Translations that run out of memory.
#include "Translate.h"
#include "foundation/Allocate.h"

#include <cstdlib>

namespace
{

using namespace ZALMetal;

long g_untilFailure = -1; // allocations that still succeed; negative: all of them
bool g_stayDown = false;  // every later allocation fails too

bool failsNow()
{
    if (g_untilFailure < 0) return false;
    if (g_untilFailure > 0) {
        --g_untilFailure;
        return false;
    }
    if (!g_stayDown) g_untilFailure = -1;
    return true;
}

void* allocate(size_t bytes)
{
    return failsNow() ? nullptr : std::malloc(bytes);
}

void* reallocate(void* memory, size_t bytes)
{
    return failsNow() ? nullptr : std::realloc(memory, bytes);
}

class FailingAllocator
{
public:
    FailingAllocator(long after, bool forGood) : before(ZALM::g_allocator)
    {
        g_untilFailure = after;
        g_stayDown = forGood;
        ZALM::g_allocator = {allocate, reallocate, std::free};
    }
    ~FailingAllocator()
    {
        ZALM::g_allocator = before;
        g_untilFailure = -1;
    }
    // Whether the failure was never asked for: the run made fewer allocations.
    static bool wasSpared() { return g_untilFailure >= 0 && !(g_stayDown && g_untilFailure == 0); }

private:
    ZALM::Allocator before;
};

constexpr const char* kProgram = "!!NVfp4.0\n"
                                 "PARAM c[3] = { { 1, 2 }, program.local[0..1] };\n"
                                 "PARAM d = { -program.local[3].x, 2 };\nPARAM e = 3;\n"
                                 "TEMP a, b;\nUINT TEMP u, v;\n"
                                 "TEX a.xyz, -fragment.texcoord[1], texture[3], CUBE;\n"
                                 "MAD_SAT b.x, |a.x|, c[1].y, d;\nMOVC b.y, a;\n"
                                 "IF NE.y;\nPK4UB.U u.x, a;\nREP 2;\nCMP b.x, a.x, b.x, 1;\nENDREP;\nENDIF;\n"
                                 "LIT a, b;\nKIL a;\nMOV result.color, a;\nMOV result.depth.z, b.x;\n";

// Fails each allocation in turn. What a translation then returns may be a failure or not; it must not harm anything,
// and the next one must be as if nothing had happened.
void failEachAllocation(bool forGood, bool emptyTable)
{
    const std::string clean = translation::translate(kProgram).source;
    ASSERT_NE(clean, "");

    ShaderString shader;
    shader.Append(ZALM::String(kProgram));
    bool spared = false;
    long failures = 0;
    for (; !spared; ++failures) {
        ASSERT_LT(failures, 20000);
        if (emptyTable) ShaderString::ReleaseGLSLTranslation();

        int status = 0;
        ZALM::String source;
        ShaderBindings bindings;
        TranslationReport report;
        {
            const FailingAllocator failing(failures, forGood);
            status = shader.GLSLTranslation(source, bindings, &report);
            spared = FailingAllocator::wasSpared();
        }
        EXPECT_TRUE(!spared || (status == 0 && translation::textOf(source) == clean)) << "allocation " << failures;
        if (failures % 50 == 0) {
            ASSERT_TRUE(translation::translate(kProgram).source == clean) << "allocation " << failures;
        }
    }
    EXPECT_GT(failures, 100);
}

TEST(Fault, OneFailedAllocationHarmsNothing)
{
    failEachAllocation(false, false);
}

TEST(Fault, MemoryThatStaysAwayFailsTheTranslation)
{
    failEachAllocation(true, false);

    ShaderString shader;
    shader.Append(ZALM::String(kProgram));
    ZALM::String source("before");
    ShaderBindings bindings;
    int status = 0;
    {
        const FailingAllocator failing(0, true);
        status = shader.GLSLTranslation(source, bindings);
    }
    EXPECT_NE(status, 0);
    EXPECT_EQ(translation::textOf(source), "before");
}

TEST(Fault, AFailureWhileTheTableIsFilledLeavesNoHalfTable)
{
    failEachAllocation(false, true);
}

} // namespace
