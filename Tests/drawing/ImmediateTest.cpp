// SPDX-License-Identifier: Apache-2.0
// glBegin and glEnd.
#include "ZALGLBeginEnd.h"
#include "drawing/Drawing.h"

#include <cstdint>
#include <cstring>
#include <functional>

namespace {

using namespace drawing;

class Immediate : public Routes
{
protected:
    void SetUp() override
    {
        Routes::SetUp();
        load(GL_VERTEX_PROGRAM_ARB, "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.color, vertex.attrib[3];\nEND\n");
        load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, fragment.color;\nEND\n");
        clearLog();
    }

    ZALGLBeginEnd& collected() { return *gl().beginEnd; }
    const float* stored(uint32_t index) { return collected().vertices[collected().vertexCount][index]; }

    /// A strip over everything in one colour.
    static void quad(float r, float g, float b)
    {
        glBegin(GL_TRIANGLE_STRIP);
        for (int corner = 0; corner < 4; ++corner) {
            glColor4f(r, g, b, 1);
            glVertexAttrib4fARB(0, corner & 1 ? 1 : -1, corner & 2 ? 1 : -1, 0, 1);
        }
        glEnd();
    }
};
INSTANTIATE_TEST_SUITE_P(Devices, Immediate, testing::Values(false, true), routeName);

TEST_P(Immediate, FourVerticesMakeAQuad)
{
    quad(0, 1, 0);
    auto made = entries("drawPrimitives");
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].number("type"), MTL::PrimitiveTypeTriangleStrip);
    EXPECT_EQ(made[0].number("start"), 0);
    EXPECT_EQ(made[0].number("count"), 4);
    EXPECT_EQ(made[0].number("instances"), 1);
    EXPECT_EQ(made[0].number("baseInstance"), 0);
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(pixel(), "0 255 0 255");
}

TEST_P(Immediate, VerticesWithoutEndAreOneTooMany)
{
    glBegin(GL_TRIANGLES);
    collected().vertexCount = INT32_MAX; // as after so many calls
    for (int i = 0; i < 2; ++i) glVertexAttrib4fARB(0, 0, 0, 0, 1);
    EXPECT_EQ(collected().vertexCount, INT32_MAX);
    glEnd();
    EXPECT_TRUE(entries("drawPrimitives").empty());
}

TEST_P(Immediate, VerticesTravelInline)
{
    quad(1, 0, 0);
    auto bytes = entries("setVertexBytes");
    ASSERT_FALSE(bytes.empty());
    EXPECT_EQ(bytes[0].number("index"), 0);
    EXPECT_EQ(bytes[0].number("length"), 1024);
}

TEST_P(Immediate, EqualMasksShareALayout)
{
    quad(1, 0, 0);
    int64_t layouts = SoftMetal::objectsAlive("MTL::VertexDescriptor");
    quad(0, 1, 0);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::VertexDescriptor"), layouts);
    EXPECT_EQ(pixel(), "0 255 0 255");
}

TEST_P(Immediate, Kept_four_vertices)
{
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i < 5; ++i) glVertexAttrib4fARB(0, 0, 0, 0, 1);
    glEnd();
    EXPECT_TRUE(drewNothing());
    EXPECT_EQ(error(), NoError);
    gl().strictValidation = 1;
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i < 5; ++i) glVertexAttrib4fARB(0, 0, 0, 0, 1);
    glEnd();
    EXPECT_EQ(error(), InvalidOperation);
    quad(0, 0, 1); // the next pair draws
    EXPECT_FALSE(drewNothing());
}

/// Points are mode 0, which also means that no pair is open.
TEST_P(Immediate, Kept_immediate_points)
{
    glBegin(GL_POINTS);
    EXPECT_EQ(error(), NoError);
    glVertexAttrib4fARB(0, 0, 0, 0, 1);
    EXPECT_EQ(collected().vertexCount, 0);
    glEnd();
    EXPECT_TRUE(drewNothing());
}

TEST_P(Immediate, Kept_begin_modes)
{
    for (GLenum mode : {GL_LINE_LOOP, GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON}) {
        glBegin(mode);
        EXPECT_EQ(error(), InvalidValue);
        glVertexAttrib4fARB(0, 0, 0, 0, 1);
        EXPECT_EQ(collected().vertexCount, 0);
        glEnd();
        EXPECT_TRUE(drewNothing());
        EXPECT_EQ(error(), NoError);
    }
}

/// An attribute does not carry over to the vertices that follow: that is an error, said only on request, and drawn.
TEST_P(Immediate, Kept_attributes_per_vertex)
{
    auto triangle = [] {
        glBegin(GL_TRIANGLES);
        glColor4f(1, 1, 1, 1);
        for (float x : {-1.f, 3.f, -1.f}) glVertexAttrib4fARB(0, x, x, 0, 1);
        glEnd();
    };
    triangle();
    EXPECT_EQ(error(), NoError);
    EXPECT_FALSE(drewNothing());
    gl().strictValidation = 1;
    triangle();
    EXPECT_EQ(error(), InvalidOperation);
    EXPECT_EQ(collected().pendingError, 0u);
}

TEST_P(Immediate, Kept_attributes_left_over)
{
    glBegin(GL_TRIANGLES);
    glVertexAttrib4fARB(5, 1, 2, 3, 4); // no vertex follows
    glEnd();
    EXPECT_EQ(collected().currentMask, 1u << 5);
    EXPECT_EQ(collected().mode, 0u);
    EXPECT_EQ(collected().vertexMask, 0u);
}

TEST_P(Immediate, WithoutAVertexProgramEndIsAnError)
{
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 0);
    clearLog();
    quad(1, 1, 1);
    EXPECT_EQ(error(), InvalidOperation);
    Names names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "renderCommandEncoder"), 1); // the pass is open by then
    EXPECT_EQ(collected().mode, 0u);
}

TEST_P(Immediate, WithoutAVertexNothingIsDrawn)
{
    glBegin(GL_TRIANGLES);
    glEnd();
    EXPECT_EQ(error(), NoError);
    EXPECT_TRUE(drewNothing());
}

TEST_P(Immediate, AttributesOutsideAPairAndBeyondTheLastAreIgnored)
{
    glVertexAttrib4fARB(0, 1, 2, 3, 4);
    EXPECT_EQ(collected().vertexCount, 0);
    glBegin(GL_LINES);
    glVertexAttrib4fARB(16, 1, 2, 3, 4);
    EXPECT_EQ(collected().currentMask, 0u);
    glVertexAttrib4fARB(15, 1, 2, 3, 4);
    EXPECT_EQ(collected().currentMask, 1u << 15);
    glEnd();
}

TEST_P(Immediate, ColoursNeverEmit)
{
    glBegin(GL_LINES);
    const GLubyte bytes[4] = {255, 0, 128, 255};
    glColor4ubv(bytes);
    EXPECT_EQ(collected().vertexCount, 0);
    const float* c = stored(3);
    EXPECT_EQ(c[0], 1);
    EXPECT_EQ(c[1], 0);
    EXPECT_NEAR(c[2], 0.50196f, 1e-5);
    EXPECT_EQ(c[3], 1);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_EQ(stored(3)[3], 0.4f);
    glEnd();
}

struct Variant
{
    const char* name;
    void (*call)();
    float wanted[4];
};

const Variant Variants[] = {
    {"1dv", [] { const double v[] = {0.1}; glVertexAttrib1dvARB(5, v); }, {0.1f, 0, 0, 1}},
    {"1fv", [] { const float v[] = {2}; glVertexAttrib1fvARB(5, v); }, {2, 0, 0, 1}},
    {"1sv", [] { const GLshort v[] = {-3}; glVertexAttrib1svARB(5, v); }, {-3, 0, 0, 1}},
    {"2dv", [] { const double v[] = {1, 2}; glVertexAttrib2dvARB(5, v); }, {1, 2, 0, 1}},
    {"2f", [] { glVertexAttrib2fARB(5, 3, 4); }, {3, 4, 0, 1}},
    {"2fv", [] { const float v[] = {5, 6}; glVertexAttrib2fvARB(5, v); }, {5, 6, 0, 1}},
    {"2sv", [] { const GLshort v[] = {7, 8}; glVertexAttrib2svARB(5, v); }, {7, 8, 0, 1}},
    {"3dv", [] { const double v[] = {1, 2, 3}; glVertexAttrib3dvARB(5, v); }, {1, 2, 3, 1}},
    {"3fv", [] { const float v[] = {4, 5, 6}; glVertexAttrib3fvARB(5, v); }, {4, 5, 6, 1}},
    {"3sv", [] { const GLshort v[] = {7, 8, 9}; glVertexAttrib3svARB(5, v); }, {7, 8, 9, 1}},
    {"4dv", [] { const double v[] = {1, 2, 3, 4}; glVertexAttrib4dvARB(5, v); }, {1, 2, 3, 4}},
    {"4f", [] { glVertexAttrib4fARB(5, 5, 6, 7, 8); }, {5, 6, 7, 8}},
    {"4fv", [] { const float v[] = {1, 0, 1, 0}; glVertexAttrib4fvARB(5, v); }, {1, 0, 1, 0}},
    {"4iv", [] { const GLint v[] = {100000, -2, 3, 4}; glVertexAttrib4ivARB(5, v); }, {100000, -2, 3, 4}},
    {"4sv", [] { const GLshort v[] = {32767, -2, 3, 4}; glVertexAttrib4svARB(5, v); }, {32767, -2, 3, 4}},
    {"4ubv", [] { const GLubyte v[] = {255, 2, 3, 4}; glVertexAttrib4ubvARB(5, v); }, {255, 2, 3, 4}},
    {"4Niv", [] { const GLint v[] = {2147483647, -2147483647 - 1, 0, 1073741824}; glVertexAttrib4NivARB(5, v); }, {1, -1, 0, 0.5f}},
    {"4Nsv", [] { const GLshort v[] = {32767, -32768, 0, -32767}; glVertexAttrib4NsvARB(5, v); }, {1, -1, 0, -1}},
    {"4Nubv", [] { const GLubyte v[] = {255, 0, 51, 102}; glVertexAttrib4NubvARB(5, v); }, {1, 0, 0.2f, 0.4f}},
};

TEST_P(Immediate, EveryVariantStoresFourFloats)
{
    for (const Variant& variant : Variants) {
        glBegin(GL_LINES);
        variant.call();
        for (int i = 0; i < 4; ++i) EXPECT_EQ(stored(5)[i], variant.wanted[i]) << variant.name << " component " << i;
        glEnd();
    }
}

} // namespace
