// SPDX-License-Identifier: Apache-2.0
// A context with a vertex and a fragment program bound, and small draws with them.
#pragma once

#include "ZALGLContextObjects.h"
#include "support/ContextFixture.h"

#include <cstring>
#include <string>

namespace programs {

inline constexpr const char* PassVertex = "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], vertex.attrib[0];\nEND\n";
inline constexpr const char* PlainFragment = "!!ARBfp1.0\nMOV result.color, program.local[0];\nEND\n";
inline constexpr const char* TexturedFragment = "!!ARBfp1.0\nTEMP R0;\nTEX R0, fragment.texcoord[0], texture[0], 2D;\nMOV result.color, R0;\nEND\n";

/// What a host may hand in as ready Metal source, with its declarations in a comment.
inline std::string metalSource(const std::string& declarations)
{
    return "#include <metal_stdlib>\n/*\n" + declarations + "\n*/\nfragment float4 ShaderFunc() { return float4(1.0); }\n";
}

class ProgramTest : public support::ContextTest
{
protected:
    explicit ProgramTest(SoftMetal::DeviceOptions options = {}) : ContextTest(std::move(options)) {}

    void SetUp() override
    {
        ContextTest::SetUp();
        if (HasFatalFailure()) return;
        attachTextures(4, 4);
        glViewport(0, 0, 4, 4);
        glGenProgramsARB(2, programNames);
        glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programNames[0]);
        glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programNames[1]);
        clearLog();
    }

    static GLenum load(GLenum target, const std::string& text, GLenum format = GL_PROGRAM_FORMAT_ASCII_ARB)
    {
        glProgramStringARB(target, format, static_cast<GLsizei>(text.size()), text.data());
        return glGetError();
    }
    static GLenum loadMetal(const std::string& text) { return load(GL_FRAGMENT_PROGRAM_ARB, text, 0xF030); }

    /// A triangle over everything from a buffer with one position for each corner.
    void setUpTriangle()
    {
        const float corners[12] = {-1, -1, 0, 1, 3, -1, 0, 1, -1, 3, 0, 1};
        const uint16_t indices[3] = {0, 1, 2};
        GLuint buffers[2];
        glGenBuffers(2, buffers);
        glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
        glVertexAttribPointerARB(0, 4, GL_FLOAT, GL_FALSE, 16, nullptr);
        glEnableVertexAttribArrayARB(0);
    }
    static void draw() { glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, nullptr); }

    /// The first pixel, as bytes of red, green, blue, alpha.
    static std::string pixel()
    {
        uint8_t rgba[4 * 16] = {};
        glReadPixels(0, 0, 4, 4, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return std::to_string(rgba[0]) + " " + std::to_string(rgba[1]) + " " + std::to_string(rgba[2]) + " " + std::to_string(rgba[3]);
    }

    ZALGLProgramObject& program(GLenum target) { return *getBoundProgram(&gl(), target); }
    ZALGLProgramObject& fragment() { return program(GL_FRAGMENT_PROGRAM_ARB); }
    std::string errorString() { return reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB)); }
    GLint errorPosition()
    {
        GLint position = 99;
        glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
        return position;
    }

    GLuint programNames[2] = {};
};

} // namespace programs
