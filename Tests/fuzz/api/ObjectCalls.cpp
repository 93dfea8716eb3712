// SPDX-License-Identifier: Apache-2.0
// Names, buffers, framebuffers, programs.
#include "fuzz/api/Arguments.h"

#include <iterator>
#include <string>

namespace fuzz::api
{

namespace
{

using Generator = void (*)(GLsizei, GLuint*);
using Deleter = void (*)(GLsizei, const GLuint*);

template <Generator Generate>
void generate(Arguments& a)
{
    GLsizei count = a.input.byte() % 6 - 1;
    Generate(count, reinterpret_cast<GLuint*>(a.world.memory(count > 0 ? static_cast<size_t>(count) * 4 : 0, a.input)));
}

template <Deleter Delete>
void erase(Arguments& a)
{
    GLsizei count = a.input.byte() % 4 - 1;
    std::vector<GLuint> names;
    for (GLsizei i = 0; i < count; ++i) {
        uint32_t name = a.name();
        bool stays =
            Delete == static_cast<Deleter>(glDeleteProgramsARB) && name <= LoadedPrograms && !a.world.mayDeletePrograms;
        names.push_back(stays ? name + LoadedPrograms : name);
    }
    Delete(count, names.data());
}

void bindBuffer(Arguments& a)
{
    GLenum target = a.input.byte() & 15 ? GL_ARRAY_BUFFER + (a.input.byte() & 1u) : a.word();
    glBindBuffer(target, a.name());
}

/// A size of storage, or one that no buffer can have.
GLsizeiptr bufferSize(Arguments& a)
{
    uint8_t choice = a.input.byte();
    if (choice < 200) return choice * 4;
    if (choice < 248) return 1025 + choice;
    constexpr GLsizeiptr Others[] = {0, -1, INT64_MIN, INT64_MAX, GLsizeiptr{1} << 48};
    return Others[choice % std::size(Others)];
}

void bufferData(Arguments& a)
{
    GLenum target = GL_ARRAY_BUFFER + (a.input.byte() & 1u);
    GLsizeiptr size = bufferSize(a);
    bool data = size >= 0 && size < 4096 && a.input.byte() & 3;
    glBufferData(target, size, data ? a.world.memory(static_cast<size_t>(size), a.input) : nullptr, GL_STATIC_DRAW);
}

void bufferSubData(Arguments& a)
{
    GLenum target = GL_ARRAY_BUFFER + (a.input.byte() & 1u);
    GLsizeiptr offset = bufferSize(a), size = bufferSize(a);
    bool any = size >= 0 && size < 4096; // larger ones are beyond every buffer here
    glBufferSubData(target, offset, size, a.world.memory(any ? static_cast<size_t>(size) : 0, a.input));
}

void drawBuffers(Arguments& a)
{
    GLsizei count = a.input.byte() % 10 - 1;
    glDrawBuffers(count, a.array<const GLenum>(count > 0 ? static_cast<size_t>(count) : 0));
}

void bindFramebuffer(Arguments& a)
{
    glBindFramebuffer(GL_FRAMEBUFFER, a.name());
}

void framebufferTexture(Arguments& a)
{
    GLenum attachment = a.input.byte() & 3 ? GL_COLOR_ATTACHMENT0 + a.input.byte() % 9u : a.word();
    GLenum target = a.input.byte() & 15 ? GL_TEXTURE_RECTANGLE_ARB : a.word();
    uint32_t name = a.name();
    glFramebufferTexture2D(GL_FRAMEBUFFER, attachment, target, name, a.input.byte() & 15 ? 0 : a.integer());
}

GLenum programTarget(Arguments& a)
{
    uint8_t choice = a.input.byte();
    return choice < 120 ? GL_VERTEX_PROGRAM_ARB : choice < 240 ? GL_FRAGMENT_PROGRAM_ARB : a.word();
}

void bindProgram(Arguments& a)
{
    GLenum target = programTarget(a);
    uint32_t name = a.name();
    // mostly one of the kind
    bool other = a.input.byte() < 32 || name == 0 || name > LoadedPrograms;
    glBindProgramARB(target, other ? name : ((name - 1) | 1u) + (target == GL_VERTEX_PROGRAM_ARB ? 0u : 1u));
}

/// One of the texts, perhaps with some of its characters replaced.
std::string programText(Arguments& a, const ProgramText& chosen)
{
    std::string text(chosen.text);
    for (int changes = a.input.byte() % 4; changes > 0 && !text.empty(); --changes) {
        size_t at = (a.input.byte() * 256u + a.input.byte()) % text.size();
        const std::string_view with = a.input.take(a.input.byte() % 5);
        text.replace(at, a.input.byte() % 4, with);
    }
    return text;
}

/// The programs that stay from run to run are loaded once.
void programString(Arguments& a)
{
    GLenum target = programTarget(a);
    const ProgramText& chosen = ProgramTexts[a.input.byte() % ProgramTexts.size()];
    bool metal = a.input.byte() < 16 ? !chosen.metal : chosen.metal;
    const std::string text = programText(a, chosen);
    ZALGLState* gl = GetCurrentGLState();
    if (!gl || --a.world.loads < 0) return;
    uint32_t name = target == GL_VERTEX_PROGRAM_ARB ? gl->pipelineDescription.boundProgramVertex
                                                    : gl->pipelineDescription.boundProgramFragment;
    if (name <= LoadedPrograms) return;
    auto* exact = a.world.memory(text.size(), a.input);
    std::memcpy(exact, text.data(), text.size());
    glProgramStringARB(target, metal ? GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL : GL_PROGRAM_FORMAT_ASCII_ARB,
                       static_cast<GLsizei>(text.size()), exact);
}

template <auto Set>
void local(Arguments& a)
{
    GLenum target = programTarget(a);
    uint32_t index = a.input.byte() < 200 ? a.input.byte() : a.word();
    using Number =
        std::conditional_t<std::is_same_v<decltype(Set), void (*)(GLenum, GLuint, const GLdouble*)>, GLdouble, GLfloat>;
    Set(target, index, a.array<const Number>(4));
}

constexpr Call Calls[] = {
    {"glBindBuffer", bindBuffer},
    {"glBindFramebuffer", bindFramebuffer},
    {"glBindProgramARB", bindProgram},
    {"glBufferData", bufferData},
    {"glBufferSubData", bufferSubData},
    {"glCheckFramebufferStatus", plain<glCheckFramebufferStatus>},
    {"glDeleteBuffers", erase<glDeleteBuffers>},
    {"glDeleteFramebuffers", erase<glDeleteFramebuffers>},
    {"glDeleteProgramsARB", erase<glDeleteProgramsARB>},
    {"glDeleteTextures", erase<glDeleteTextures>},
    {"glDrawBuffer", plain<glDrawBuffer>},
    {"glDrawBuffers", drawBuffers},
    {"glFramebufferTexture2D", framebufferTexture},
    {"glGenBuffers", generate<glGenBuffers>},
    {"glGenFramebuffers", generate<glGenFramebuffers>},
    {"glGenProgramsARB", generate<glGenProgramsARB>},
    {"glGenTextures", generate<glGenTextures>},
    {"glProgramLocalParameter4dvARB", local<glProgramLocalParameter4dvARB>},
    {"glProgramLocalParameter4fvARB", local<glProgramLocalParameter4fvARB>},
    {"glProgramStringARB", programString},
};

} // namespace

const Chapter ObjectChapter{Calls, std::size(Calls)};

} // namespace fuzz::api
