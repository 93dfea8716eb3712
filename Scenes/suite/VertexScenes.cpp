// SPDX-License-Identifier: Apache-2.0
// Immediate mode, layouts of vertex arrays, indices, and the matrices that programs see.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <algorithm>
#include <cmath>

namespace scenes
{
namespace
{

// ---- immediate mode ------------------------------------------------------------------------------------------------

void immediateStrip(Stage& stage, const char*)
{
    stage.useColors();
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i < 4; ++i) {
        glVertexAttrib4fARB(3, i & 1 ? 0.9f : 0.1f, i & 2 ? 0.8f : 0.3f, 0.5f, 1);
        glVertexAttrib2fARB(8, 0, 0);
        glVertexAttrib4fARB(0, i & 1 ? 0.83f : -0.71f, i & 2 ? 0.77f : -0.87f, 0, 1);
    }
    glEnd();
}

void immediateTriangles(Stage& stage, const char*)
{
    stage.useCurrentColors();
    for (int t = 0; t < 5; ++t) {
        glBegin(GL_TRIANGLES);
        for (int i = 0; i < 3; ++i) {
            float angle = 2.0944f * static_cast<float>(i) + 0.31f * static_cast<float>(t);
            const GLubyte color[4] = {static_cast<GLubyte>(50 * t), static_cast<GLubyte>(80 * i), 200, 255};
            glColor4ubv(color);
            const float place[4] = {0.2f * static_cast<float>(t) - 0.4f + 0.5f * std::cos(angle),
                                    0.55f * std::sin(angle), 0, 1};
            glVertexAttrib4fvARB(0, place);
        }
        glEnd();
    }
}

void immediateLines(Stage& stage, const char*)
{
    stage.useColors();
    for (int t = 0; t < 8; ++t) {
        float at = -0.9f + 0.23f * static_cast<float>(t) + 0.01f;
        glBegin(GL_LINES);
        glVertexAttrib4fARB(3, 0.1f * static_cast<float>(t), 0.9f, 0.3f, 1);
        glVertexAttrib4fARB(0, -0.935f, at, 0, 1);
        glVertexAttrib4fARB(3, 0.9f, 0.1f * static_cast<float>(t), 0.3f, 1);
        glVertexAttrib4fARB(0, 0.925f, at, 0, 1);
        glEnd();
    }
}

/// Every call for attributes gives the colour of one tile's corners.
void attributeCalls(Stage& stage, const char*)
{
    stage.use("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMAD result.texcoord[0], vertex.attrib[8], "
              "program.local[0].x, program.local[0].y;\nEND\n",
              "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n");
    constexpr GLdouble Doubles[4] = {0.1, 0.9, 0.4, 0.7};
    constexpr GLfloat Floats[4] = {0.8f, 0.2f, 0.6f, 0.3f};
    constexpr GLshort Shorts[4] = {12000, 3000, 30000, 20000};
    constexpr GLint Ints[4] = {1200000000, 300000000, 2000000000, 1000000000};
    constexpr GLubyte Bytes[4] = {200, 30, 120, 250};
    using Call = void (*)(const void*);
    struct Row
    {
        Call call;
        const void* data;
        float scale, bias;
    };
    const Row rows[] = {
        {[](const void* v) { glVertexAttrib1dvARB(8, static_cast<const GLdouble*>(v)); }, Doubles, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib2dvARB(8, static_cast<const GLdouble*>(v)); }, Doubles, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib3dvARB(8, static_cast<const GLdouble*>(v)); }, Doubles, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib4dvARB(8, static_cast<const GLdouble*>(v)); }, Doubles, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib1fvARB(8, static_cast<const GLfloat*>(v)); }, Floats, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib2fvARB(8, static_cast<const GLfloat*>(v)); }, Floats, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib3fvARB(8, static_cast<const GLfloat*>(v)); }, Floats, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib4fvARB(8, static_cast<const GLfloat*>(v)); }, Floats, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib1svARB(8, static_cast<const GLshort*>(v)); }, Shorts, 1 / 40000.0f, 0.1f},
        {[](const void* v) { glVertexAttrib2svARB(8, static_cast<const GLshort*>(v)); }, Shorts, 1 / 40000.0f, 0.1f},
        {[](const void* v) { glVertexAttrib3svARB(8, static_cast<const GLshort*>(v)); }, Shorts, 1 / 40000.0f, 0.1f},
        {[](const void* v) { glVertexAttrib4svARB(8, static_cast<const GLshort*>(v)); }, Shorts, 1 / 40000.0f, 0.1f},
        {[](const void* v) { glVertexAttrib4ubvARB(8, static_cast<const GLubyte*>(v)); }, Bytes, 1 / 300.0f, 0.1f},
        {[](const void* v) { glVertexAttrib4ivARB(8, static_cast<const GLint*>(v)); }, Ints, 1 / 2.5e9f, 0.1f},
        {[](const void* v) { glVertexAttrib4NsvARB(8, static_cast<const GLshort*>(v)); }, Shorts, 0.8f, 0.1f},
        {[](const void* v) { glVertexAttrib4NubvARB(8, static_cast<const GLubyte*>(v)); }, Bytes, 0.8f, 0.1f},
    };
    for (int i = 0; i < 16; ++i) {
        const Row& row = rows[i];
        const float local[4] = {row.scale, row.bias, 0, 0};
        glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, 0, local);
        Box box = tile(i, 4);
        glBegin(GL_TRIANGLE_STRIP);
        for (int corner = 0; corner < 4; ++corner) {
            row.call(row.data);
            glVertexAttrib4fARB(0, corner & 1 ? box.right : box.left, corner & 2 ? box.top : box.bottom, 0, 1);
        }
        glEnd();
    }
}

// ---- arrays --------------------------------------------------------------------------------------------------------

struct ArrayLayout
{
    GLint size;
    GLenum type;
    GLboolean normalized;
    float scale, bias;
};

/// Colours from arrays of many types: what the program sees, scaled to what can be shown.
void arrayTypes(Stage& stage, const char*)
{
    constexpr ArrayLayout Layouts[] = {
        {4, GL_UNSIGNED_BYTE, GL_TRUE, 1, 0},     {4, GL_UNSIGNED_BYTE, GL_FALSE, 1 / 255.0f, 0},
        {3, GL_UNSIGNED_BYTE, GL_TRUE, 1, 0},     {4, GL_BYTE, GL_TRUE, 0.5f, 0.5f},
        {4, GL_BYTE, GL_FALSE, 1 / 256.0f, 0.5f}, {2, GL_SHORT, GL_TRUE, 0.5f, 0.5f},
        {4, GL_SHORT, GL_TRUE, 0.5f, 0.5f},       {4, GL_SHORT, GL_FALSE, 1 / 65536.0f, 0.5f},
        {4, GL_UNSIGNED_SHORT, GL_TRUE, 1, 0},    {4, GL_UNSIGNED_SHORT, GL_FALSE, 1 / 65535.0f, 0},
        {1, GL_FLOAT, GL_FALSE, 0.1f, 0.5f},      {2, GL_FLOAT, GL_FALSE, 0.1f, 0.5f},
        {3, GL_FLOAT, GL_FALSE, 0.1f, 0.5f},      {4, GL_FLOAT, GL_FALSE, 0.1f, 0.5f},
        {2, GL_UNSIGNED_SHORT, GL_TRUE, 1, 0},    {2, GL_BYTE, GL_TRUE, 0.5f, 0.5f},
    };
    stage.use("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMAD result.texcoord[0], vertex.attrib[3], "
              "program.local[0].x, program.local[0].y;\nEND\n",
              "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n");
    for (int i = 0; i < 16; ++i) {
        const ArrayLayout& layout = Layouts[i];
        const float local[4] = {layout.scale, layout.bias, 0, 0};
        glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, 0, local);
        Box box = tile(i, 4);
        struct Record
        {
            float place[4];
            uint8_t color[16];
        } records[4];
        for (int corner = 0; corner < 4; ++corner) {
            Record& record = records[corner];
            const float place[4] = {corner & 1 ? box.right : box.left, corner & 2 ? box.top : box.bottom, 0, 1};
            std::copy_n(place, 4, record.place);
            for (int b = 0; b < 16; ++b)
                record.color[b] = static_cast<uint8_t>(b * 53 + corner * 67 + i * 29);
            const float floats[4] = {0.5f * static_cast<float>(corner), -1.5f, 2.25f - static_cast<float>(corner), 3};
            if (layout.type == GL_FLOAT) std::copy_n(reinterpret_cast<const uint8_t*>(floats), 16, record.color);
        }
        GLuint buffers[2];
        glGenBuffers(2, buffers);
        glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, sizeof records, records, GL_STATIC_DRAW);
        glVertexAttribPointerARB(0, 4, GL_FLOAT, GL_FALSE, sizeof(Record), nullptr);
        glVertexAttribPointerARB(3, layout.size, layout.type, layout.normalized, sizeof(Record),
                                 reinterpret_cast<const void*>(uintptr_t{16}));
        glVertexAttribPointerARB(8, 4, GL_FLOAT, GL_FALSE, sizeof(Record), nullptr);
        const uint32_t indices[4] = {0, 1, 2, 3};
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
        glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_INT, nullptr);
    }
}

/// Parts of one index buffer, 16 and 32 bits wide, over one vertex buffer that is changed in between.
void indexParts(Stage& stage, const char*)
{
    stage.useColors();
    std::vector<Corner> corners;
    for (int i = 0; i < 16; ++i)
        corners.push_back(
            {{-0.87f + 0.57f * static_cast<float>(i % 4), -0.91f + 0.61f * static_cast<float>(i / 4), 0, 1},
             {static_cast<float>(i % 3) / 2, static_cast<float>(i % 5) / 4, 0.4f, 1},
             {}});
    const uint16_t few[3] = {0, 1, 4};
    stage.draw(GL_TRIANGLES, corners, few);
    const uint32_t wide[9] = {99, 99, 99, 5, 6, 9, 15, 10, 14};
    GLuint indices = 0;
    glGenBuffers(1, &indices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof wide, wide, GL_STATIC_DRAW);
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, reinterpret_cast<const void*>(uintptr_t{12}));
    glFinish();
    const float moved[4] = {0.95f, -0.95f, 0, 1};
    glBufferSubData(GL_ARRAY_BUFFER, 3 * sizeof(Corner), sizeof moved, moved);
    const uint32_t again[3] = {3, 7, 2};
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, sizeof again, again);
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_INT, nullptr);
}

// ---- matrices ------------------------------------------------------------------------------------------------------

constexpr float Turned[16] = {0.8f, 0.5f, 0, 0, -0.5f, 0.8f, 0, 0, 0, 0, 1.2f, 0, 0.1f, -0.05f, 0.25f, 1};
constexpr float Sheared[16] = {0.9f, 0, 0.2f, 0, 0.3f, 0.95f, 0, 0, 0, 0.1f, 0.7f, 0, 0.05f, 0, 0.1f, 1.25f};

void boxes(Stage& stage)
{
    for (int i = 0; i < 9; ++i) {
        Box box = tile(i, 3);
        box.right -= 0.17f;
        box.top -= 0.13f;
        box.depth = 0.1f * static_cast<float>(i % 4) - 0.2f;
        stage.rectangle(box, {static_cast<float>(i % 3) / 2, static_cast<float>(i / 3) / 2, 0.6f, 1});
    }
}

void modelview(Stage& stage, const char*)
{
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(Turned);
    glMultMatrixf(Sheared);
    stage.useColors();
    boxes(stage);
}

void frustum(Stage& stage, const char*)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-0.5, 0.7, -0.6, 0.5, 1, 5);
    glMatrixMode(GL_MODELVIEW);
    const float back[16] = {1, 0, 0.4f, 0, 0, 1, 0.3f, 0, 0, 0, 1, 0, 0, 0, -1.9f, 1};
    glLoadMatrixf(back);
    stage.useColors();
    boxes(stage);
}

void ortho(Stage& stage, const char*)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1.3, 1.1, -0.9, 1.4, -1, 2);
    stage.useColors();
    boxes(stage);
}

void pushed(Stage& stage, const char*)
{
    stage.useColors();
    glMatrixMode(GL_MODELVIEW);
    const double half[16] = {0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0, 0.4, 0.3, 0, 1};
    glLoadIdentity();
    for (int i = 0; i < 4; ++i) {
        glPushMatrix();
        glMultMatrixf(Turned);
        stage.rectangle({-0.6f, -0.6f, 0.4f, 0.4f}, {0.2f * static_cast<float>(i), 0.8f, 0.3f, 1});
        glPopMatrix();
        stage.rectangle({-0.3f, -0.7f, 0.5f, -0.4f}, {0.8f, 0.2f * static_cast<float>(i), 0.3f, 1});
        glMultMatrixd(half);
    }
}

/// Rows of the matrices and of what is derived from them as colours of the vertices. No row has to do with depth, which
/// goes from 0 to 1 here and from -1 to 1 elsewhere; the matrices keep it apart from the rest.
void matrixRows(Stage& stage, const char* rows)
{
    glMatrixMode(GL_PROJECTION);
    const float projection[16] = {0.9f, 0.1f, 0, 0, -0.2f, 0.95f, 0, 0, 0, 0, 0.5f, 0, 0.1f, 0, 0, 1};
    glLoadMatrixf(projection);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(Turned);
    glActiveTextureARB(GL_TEXTURE0 + 1);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(Sheared);
    glActiveTextureARB(GL_TEXTURE0);
    stage.use(std::string("!!ARBvp1.0\nTEMP r;\nMOV result.position, vertex.attrib[0];\nMOV r, 0;\n") + rows +
                  "\nMAD result.texcoord[0], r, 0.25, 0.5;\nEND\n",
              "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n");
    const Corner corners[4] = {{{-1, -1, 0, 1}, White, {0.3f, -0.8f, 0.2f, 1}},
                               {{1, -1, 0, 1}, White, {0.9f, 0.4f, -0.6f, 1}},
                               {{-1, 1, 0, 1}, White, {-0.7f, 0.5f, 0.1f, 1}},
                               {{1, 1, 0, 1}, White, {0.2f, 0.6f, 0.8f, 1}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

constexpr const char* Rounding = "values in the middle between two bytes are rounded either way";

// clang-format off
constexpr SceneRow Rows[] = {
    {"immediate-strip",     immediateStrip,     "", 1, 0, nullptr, Rounding},
    {"immediate-triangles", immediateTriangles, "", 1, 0, nullptr, Rounding},
    {"immediate-lines",     immediateLines,     "", 1, 0, nullptr, Rounding},
    {"attribute-calls",     attributeCalls,     "", 1, 0, nullptr, Rounding},
    {"array-types",         arrayTypes,         "", 1, 0, nullptr, Rounding},
    {"index-parts",         indexParts,         "", 1, 0, nullptr, Rounding},
    {"matrix-modelview",    modelview,          "", 1, 0, nullptr, Rounding},
    {"matrix-frustum",      frustum,            "", 1, 0, nullptr, Rounding},
    {"matrix-ortho",        ortho,              "", 1, 0, nullptr, Rounding},
    {"matrix-pushed",       pushed,             "", 1, 0, nullptr, Rounding},
    {"matrix-rows", matrixRows,
     "DP4 r.x, state.matrix.modelview.row[0], vertex.attrib[8];\nDP4 r.y, state.matrix.projection.row[1], vertex.attrib[8];\nDP4 r.z, state.matrix.mvp.row[0], vertex.attrib[8];\nDP4 r.w, state.matrix.texture[1].row[2], vertex.attrib[8];",
     1, 0, nullptr, Rounding},
    {"matrix-inverse-rows", matrixRows,
     "DP4 r.x, state.matrix.projection.inverse.row[0], vertex.attrib[8];\nDP4 r.y, state.matrix.projection.inverse.row[1], vertex.attrib[8];\nDP4 r.z, state.matrix.mvp.inverse.row[1], vertex.attrib[8];\nDP4 r.w, state.matrix.texture[1].inverse.row[1], vertex.attrib[8];",
     1, 0, nullptr, Rounding},
    {"matrix-transposed-rows", matrixRows,
     "DP4 r.x, state.matrix.modelview.transpose.row[0], vertex.attrib[8];\nDP4 r.y, state.matrix.modelview.transpose.row[3], vertex.attrib[8];\nDP4 r.z, state.matrix.mvp.transpose.row[1], vertex.attrib[8];\nDP4 r.w, state.matrix.texture[1].transpose.row[0], vertex.attrib[8];",
     1, 0, nullptr, Rounding},
    {"matrix-inverse-transposed-rows", matrixRows,
     "DP4 r.x, state.matrix.modelview.invtrans.row[0], vertex.attrib[8];\nDP4 r.y, state.matrix.modelview.invtrans.row[1], vertex.attrib[8];\nDP4 r.z, state.matrix.modelview.invtrans.row[2], vertex.attrib[8];\nDP4 r.w, state.matrix.texture[1].invtrans.row[3], vertex.attrib[8];",
     1, 0, nullptr, Rounding},
    {"matrix-whole", matrixRows,
     "PARAM m[4] = { state.matrix.modelview };\nPARAM i[4] = { state.matrix.modelview.inverse };\nDP4 r.x, m[0], vertex.attrib[8];\nDP4 r.y, m[3], vertex.attrib[8];\nDP4 r.z, i[0], vertex.attrib[8];\nDP4 r.w, i[2], vertex.attrib[8];",
     1, 0, nullptr, Rounding},
};
// clang-format on

} // namespace

const std::span<const SceneRow> VertexScenes(Rows);

} // namespace scenes
