// SPDX-License-Identifier: Apache-2.0
// Object names and the stores behind them.
#include "foundation/Allocate.h"
#include "support/BareContext.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace
{

using support::BareContext;

/// The four kinds, which follow one rule.
struct Kind
{
    const char* name;
    void (*generate)(GLsizei, GLuint*);
    void (*remove)(GLsizei, const GLuint*);
    size_t (*alive)(ZALGLContextObjects&);
    uint32_t& (*nextName)(ZALGLContextObjects&);
    size_t atStart; // objects that are there before any name is made
};

constexpr Kind Kinds[] = {
    {"buffers", glGenBuffers, glDeleteBuffers, [](ZALGLContextObjects& o) { return o.buffers.objects.size(); },
     [](ZALGLContextObjects& o) -> uint32_t& { return o.buffers.nextName; }, 0},
    {"framebuffers", glGenFramebuffers, glDeleteFramebuffers,
     [](ZALGLContextObjects& o) { return o.framebuffers.objects.size(); },
     [](ZALGLContextObjects& o) -> uint32_t& { return o.framebuffers.nextName; }, 1},
    {"programs", glGenProgramsARB, glDeleteProgramsARB,
     [](ZALGLContextObjects& o) { return o.programs.objects.size(); },
     [](ZALGLContextObjects& o) -> uint32_t& { return o.programs.nextName; }, 0},
    {"textures", glGenTextures, glDeleteTextures, [](ZALGLContextObjects& o) { return o.textures.objects.size(); },
     [](ZALGLContextObjects& o) -> uint32_t& { return o.textures.nextName; }, 0},
};

struct Names : ::testing::TestWithParam<Kind>
{
    BareContext bare;
    Kind kind = GetParam();

    std::vector<GLuint> generate(GLsizei count)
    {
        std::vector<GLuint> names(static_cast<size_t>(count), 0xDEAD);
        kind.generate(count, names.data());
        return names;
    }
    size_t alive() { return kind.alive(bare.objects()) - kind.atStart; }
};

INSTANTIATE_TEST_SUITE_P(All, Names, ::testing::ValuesIn(Kinds),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Names, CountUpFromOneAndMakeObjects)
{
    EXPECT_EQ(generate(3), (std::vector<GLuint>{1, 2, 3}));
    EXPECT_EQ(alive(), 3u);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_P(Names, Kept_names_never_reused)
{
    generate(3);
    GLuint second = 2;
    kind.remove(1, &second);
    EXPECT_EQ(alive(), 2u);
    EXPECT_EQ(generate(1), std::vector<GLuint>{4});
}

TEST_P(Names, Kept_negative_count_silent)
{
    GLuint name = 0xDEAD;
    for (GLsizei count : {0, -1, -2147483647}) {
        kind.generate(count, &name);
        kind.remove(count, &name);
    }
    EXPECT_EQ(name, 0xDEADu);
    EXPECT_EQ(alive(), 0u);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_P(Names, UnknownNamesAreDeletedInSilence)
{
    generate(1);
    const GLuint names[] = {99, 1, 1, 98};
    kind.remove(4, names);
    EXPECT_EQ(alive(), 0u);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_P(Names, TheCounterWrapsToNothing)
{
    kind.nextName(bare.objects()) = 0xFFFFFFFE;
    EXPECT_EQ(generate(4), (std::vector<GLuint>{0xFFFFFFFE, 0xFFFFFFFF, 0, 0}));
    EXPECT_EQ(alive(), 2u);
    EXPECT_EQ(generate(1), std::vector<GLuint>{0});
}

TEST_P(Names, ANameThatIsTakenGivesZero)
{
    generate(1);
    kind.nextName(bare.objects()) = 1;
    EXPECT_EQ(generate(2), (std::vector<GLuint>{0, 2}));
    EXPECT_EQ(alive(), 2u);
}

TEST_P(Names, SharingContextsContinueTheCount)
{
    generate(2);
    BareContext other(bare);
    EXPECT_EQ(generate(1), std::vector<GLuint>{3});
    bare.makeCurrent();
    EXPECT_EQ(generate(1), std::vector<GLuint>{4});
    EXPECT_EQ(alive(), 4u);
}

TEST_P(Names, ContextsWithoutSharingCountForThemselves)
{
    generate(2);
    BareContext other;
    EXPECT_EQ(generate(1), std::vector<GLuint>{1});
}

/// No memory for the containers while it lives.
class OutOfMemory
{
public:
    OutOfMemory()
    {
        ZALM::g_allocator.allocate = [](size_t) -> void* { return nullptr; };
        ZALM::g_allocator.reallocate = [](void*, size_t) -> void* { return nullptr; };
    }
    ~OutOfMemory() { ZALM::g_allocator = before_; }

private:
    ZALM::Allocator before_ = ZALM::g_allocator;
};

TEST_P(Names, AStoreWithoutMemoryHandsOutZeroAndGoesOn)
{
    kind.nextName(bare.objects()) = 10;
    std::vector<GLuint> names(8);
    {
        OutOfMemory none;
        kind.generate(8, names.data()); // a store may have cells left, never eight
    }
    EXPECT_EQ(names.back(), 0u);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(generate(1), std::vector<GLuint>{18}); // the names that failed are spent
}

TEST(ContextObjects, WithoutMemoryThereIsNoDefaultFramebuffer)
{
    OutOfMemory none;
    ZALGLContextObjects objects;
    EXPECT_EQ(objects.framebuffers.Find(0), nullptr);
}

struct ObjectNames : ::testing::Test
{
    BareContext bare;
    ZALGLState& gl = bare.state();
};

TEST_F(ObjectNames, KindsCountSeparately)
{
    std::array<GLuint, 4> names;
    glGenBuffers(1, &names[0]);
    glGenFramebuffers(1, &names[1]);
    glGenProgramsARB(1, &names[2]);
    glGenTextures(1, &names[3]);
    EXPECT_EQ(names, (std::array<GLuint, 4>{1, 1, 1, 1}));
}

TEST_F(ObjectNames, TheStoresStandInOrder)
{
    EXPECT_LT(static_cast<void*>(&bare.objects().buffers), static_cast<void*>(&bare.objects().framebuffers));
    EXPECT_LT(static_cast<void*>(&bare.objects().framebuffers), static_cast<void*>(&bare.objects().programs));
    EXPECT_LT(static_cast<void*>(&bare.objects().programs), static_cast<void*>(&bare.objects().textures));
}

TEST_F(ObjectNames, TheDefaultFramebufferIsThereFromTheStart)
{
    ZALGLFramebufferObject* framebuffer = bare.objects().framebuffers.Find(0);
    ASSERT_NE(framebuffer, nullptr);
    EXPECT_EQ(framebuffer->drawBuffersMask, 1u);
    EXPECT_EQ(bare.objects().framebuffers.nextName, 1u);
}

TEST_F(ObjectNames, Kept_default_framebuffer_deletable)
{
    const GLuint zero = 0;
    glDeleteFramebuffers(1, &zero);
    EXPECT_EQ(bare.objects().framebuffers.Find(0), nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(ObjectNames, NameZeroOfTheOtherKindsIsSkipped)
{
    const GLuint zero = 0;
    glDeleteBuffers(1, &zero);
    glDeleteProgramsARB(1, &zero);
    glDeleteTextures(1, &zero);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(ObjectNames, DeletingAnUnknownBufferDoesNothing)
{
    const GLuint name = 99;
    support::StateSnapshot before(gl);
    glDeleteBuffers(1, &name);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_TRUE(before.unchanged());
}

TEST_F(ObjectNames, Kept_delete_keeps_bindings)
{
    GLuint buffer = 0, texture = 0, program = 0, framebuffer = 0;
    glGenBuffers(1, &buffer);
    glGenTextures(1, &texture);
    glGenProgramsARB(1, &program);
    glGenFramebuffers(1, &framebuffer);
    gl.arrayBufferBinding = gl.elementArrayBufferBinding = gl.vertexAttribs[3].buffer = buffer;
    gl.textureBindings[0][1] = texture;
    gl.pipelineDescription.boundProgramVertex = gl.pipelineDescription.boundProgramFragment = program;
    gl.pipelineDescription.boundFramebuffer = framebuffer;

    support::StateSnapshot before(gl);
    glDeleteBuffers(1, &buffer);
    glDeleteTextures(1, &texture);
    glDeleteProgramsARB(1, &program);
    glDeleteFramebuffers(1, &framebuffer);
    EXPECT_TRUE(before.unchanged());
    EXPECT_EQ(bare.objects().buffers.Find(buffer), nullptr);
    EXPECT_EQ(bare.objects().programs.Find(program), nullptr);
}

TEST_F(ObjectNames, StoresAreWalkedInAscendingOrder)
{
    std::vector<GLuint> names(20);
    glGenTextures(20, names.data());
    const GLuint gone[] = {7, 1, 20};
    glDeleteTextures(3, gone);
    auto& objects = bare.objects().textures.objects;
    GLuint last = 0;
    for (auto* cell = objects.begin(); cell; cell = objects.next()) {
        EXPECT_GT(cell->key, last);
        last = cell->key;
    }
    EXPECT_EQ(last, 19u);
}

} // namespace
