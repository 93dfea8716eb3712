// SPDX-License-Identifier: Apache-2.0
#include "differential/programs/PointRunner.h"

#include <algorithm>
#include <cstddef>

namespace differential
{
namespace
{

struct Point
{
    float place[4];
    float attributes[4][4];
};

const void* offset(size_t bytes)
{
    return reinterpret_cast<const void*>(bytes);
}

} // namespace

PointRunner::PointRunner()
{
    GLuint framebuffer = 0, indices = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenTextures(ColorsPerPoint, targets_);
    GLenum buffers[ColorsPerPoint];
    for (int i = 0; i < ColorsPerPoint; ++i) {
        buffers[i] = GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(i);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, targets_[i]);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA32F_ARB, PointsPerPair, Rows, 0, GL_RGBA, GL_FLOAT, nullptr);
        glFramebufferTexture2D(GL_FRAMEBUFFER, buffers[i], GL_TEXTURE_RECTANGLE_ARB, targets_[i], 0);
    }
    glDrawBuffers(ColorsPerPoint, buffers);
    glViewport(0, 0, PointsPerPair, Rows);
    uint16_t numbers[PointsPerPair];
    for (uint16_t i = 0; i < PointsPerPair; ++i)
        numbers[i] = i;
    glGenBuffers(1, &indices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof numbers, numbers, GL_STATIC_DRAW);
    glGenBuffers(1, &buffer_);
    glBindBuffer(GL_ARRAY_BUFFER, buffer_);
    glEnable(GL_VERTEX_PROGRAM_ARB);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    for (GLuint attribute : {0u, 8u, 9u, 10u, 11u}) {
        size_t at = attribute == 0 ? 0 : offsetof(Point, attributes) + 16 * (attribute - 8);
        glVertexAttribPointerARB(attribute, 4, GL_FLOAT, GL_FALSE, sizeof(Point), offset(at));
        glEnableVertexAttribArrayARB(attribute);
    }
    clear();
}

void PointRunner::clear()
{
    row_ = 0;
    glClearColor(Untouched, Untouched, Untouched, Untouched);
    glClear(GL_COLOR_BUFFER_BIT);
}

bool PointRunner::load(GLenum target, const std::string& text, const Inputs& inputs, std::string& error)
{
    GLuint& name = programs_[target == GL_FRAGMENT_PROGRAM_ARB];
    if (name) glDeleteProgramsARB(1, &name); // with its pipelines
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
    for (GLuint i = 0; i < inputs.locals.size(); ++i)
        glProgramLocalParameter4fvARB(target, i, inputs.locals[i].data());
    if (glGetError() == GL_NO_ERROR) return true;
    const GLubyte* words = glGetString(GL_PROGRAM_ERROR_STRING_ARB);
    error = std::string("refused: ") + (words ? reinterpret_cast<const char*>(words) : "") + "\n" + text;
    return false;
}

bool PointRunner::run(const std::string& vertex, const std::string& fragment,
                      const std::array<Inputs, PointsPerPair>& points, std::string& error)
{
    if (!load(GL_VERTEX_PROGRAM_ARB, vertex, points[0], error) ||
        !load(GL_FRAGMENT_PROGRAM_ARB, fragment, points[0], error))
        return false;
    Point data[PointsPerPair];
    for (int i = 0; i < PointsPerPair; ++i) {
        const float place[4] = {(2 * static_cast<float>(i) + 1) / PointsPerPair - 1,
                                (2 * static_cast<float>(row_) + 1) / Rows - 1, 0, 1};
        std::copy_n(place, 4, data[i].place);
        for (size_t a = 0; a < 4; ++a)
            std::copy_n(points[static_cast<size_t>(i)].attributes[a].begin(), 4, data[i].attributes[a]);
    }
    glBufferData(GL_ARRAY_BUFFER, sizeof data, data, GL_STATIC_DRAW);
    glDrawElements(GL_POINTS, PointsPerPair, GL_UNSIGNED_SHORT, nullptr);
    ++row_;
    if (glGetError() == GL_NO_ERROR) return true;
    error = "the draw is refused\n" + vertex + fragment;
    return false;
}

std::vector<Drawn> PointRunner::results()
{
    std::vector<Drawn> drawn(static_cast<size_t>(row_));
    std::vector<float> pixels(static_cast<size_t>(PointsPerPair) * Rows * 4);
    for (size_t color = 0; color < ColorsPerPoint; ++color) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, targets_[color]);
        glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_FLOAT, pixels.data());
        for (size_t row = 0; row < drawn.size(); ++row)
            for (size_t point = 0; point < PointsPerPair; ++point)
                std::copy_n(&pixels[(row * PointsPerPair + point) * 4], 4, drawn[row][point][color].begin());
    }
    clear();
    return drawn;
}

} // namespace differential
