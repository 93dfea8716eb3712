// SPDX-License-Identifier: Apache-2.0
// Where the two libraries draw differently on purpose: each scene shows one row of docs/kept-behaviour.md.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <algorithm>

namespace scenes
{
namespace
{

void scissored(Stage& stage, const char*)
{
    stage.useColors();
    glEnable(GL_SCISSOR_TEST);
    glScissor(20, 30, 40, 25);
    stage.rectangle({}, Red);
}

void alphaTested(Stage& stage, const char*)
{
    stage.useColors();
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0.5f);
    const Corner corners[4] = {{{-1, -1, 0, 1}, {1, 0, 0, 0}, {}},
                               {{1, -1, 0, 1}, {0, 1, 0, 1}, {}},
                               {{-1, 1, 0, 1}, {0, 0, 1, 0}, {}},
                               {{1, 1, 0, 1}, {1, 1, 0, 1}, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

void clearUnderMask(Stage& stage, const char*)
{
    glColorMask(GL_TRUE, GL_FALSE, GL_FALSE, GL_TRUE);
    stage.clear({0.9f, 0.9f, 0.1f, 1});
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void clearWithoutTest(Stage& stage, const char*)
{
    glEnable(GL_DEPTH_TEST);
    glClearDepth(0.2);
    glClear(GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    glClearDepth(1);
    glClear(GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    stage.useColors();
    stage.rectangle({-0.8f, -0.8f, 0.8f, 0.8f, 0}, Red);
}

/// The same vertices again, so that nothing but the mask changes.
void maskAlone(Stage& stage, const char*)
{
    stage.useColors();
    glViewport(0, 0, Stage::Side / 2, Stage::Side);
    stage.rectangle({}, Ochre);
    glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
    glViewport(Stage::Side / 2, 0, Stage::Side / 2, Stage::Side);
    glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_SHORT, nullptr);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void cullBoth(Stage& stage, const char*)
{
    stage.useCurrentColors();
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT_AND_BACK);
    glBegin(GL_TRIANGLE_STRIP); // glDrawElements leaves such draws out, as GL does; this pair culls back faces only
    for (int i = 0; i < 4; ++i) {
        glColor4f(0.9f, 0.5f, 0.1f, 1);
        glVertexAttrib4fARB(0, i & 1 ? 0.8f : -0.8f, i & 2 ? 0.8f : -0.8f, 0, 1);
    }
    glEnd();
}

void offsetStays(Stage& stage, const char*)
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    stage.useColors();
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(0, 8e6f);
    stage.rectangle({-1, -1, 1, 0, -0.5f}, Red);
    glDisable(GL_POLYGON_OFFSET_FILL);
    stage.rectangle({-1, 0, 1, 1, 0}, Green);
    glPolygonOffset(0, 0);
    glEnable(GL_POLYGON_OFFSET_FILL);
    stage.rectangle({-0.6f, -0.6f, 0.6f, 0.6f, 0.3f}, Blue);
}

void modeOfOneFace(Stage& stage, const char*)
{
    stage.useColors();
    glPolygonMode(GL_BACK, GL_LINE); // the rectangle shows its front
    stage.rectangle({-0.7f, -0.6f, 0.8f, 0.7f}, Teal);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

void fiveVertices(Stage& stage, const char*)
{
    stage.useCurrentColors();
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i < 5; ++i) {
        glColor4f(0.2f * static_cast<float>(i), 0.9f, 0.3f, 1);
        glVertexAttrib4fARB(0, -0.9f + 0.4f * static_cast<float>(i), i & 1 ? 0.8f : -0.8f, 0, 1);
    }
    glEnd();
}

void oneColorForAll(Stage& stage, const char*)
{
    stage.useCurrentColors();
    glBegin(GL_TRIANGLE_STRIP);
    glColor4f(0.9f, 0.7f, 0.2f, 1);
    for (int i = 0; i < 4; ++i)
        glVertexAttrib4fARB(0, i & 1 ? 0.8f : -0.8f, i & 2 ? 0.8f : -0.8f, 0, 1);
    glEnd();
}

void immediatePoints(Stage& stage, const char*)
{
    stage.useCurrentColors();
    glBegin(GL_POINTS);
    for (int i = 0; i < 4; ++i) {
        glColor4f(1, 0, 0, 1);
        glVertexAttrib4fARB(0, -0.5f + 0.3f * static_cast<float>(i), 0.1f, 0, 1);
    }
    glEnd();
}

void immediateFan(Stage& stage, const char*)
{
    stage.useCurrentColors();
    glBegin(GL_QUADS);
    for (int i : {0, 1, 3, 2}) {
        glColor4f(0, 0.9f, 0.4f, 1);
        glVertexAttrib4fARB(0, i & 1 ? 0.8f : -0.8f, i & 2 ? 0.8f : -0.8f, 0, 1);
    }
    glEnd();
}

void plainVertices(Stage& stage, const char*)
{
    stage.useCurrentColors();
    glColor4f(0.9f, 0.2f, 0.2f, 1);
    glBegin(GL_TRIANGLES);
    glVertex2f(-0.8f, -0.7f);
    glVertex2f(0.9f, -0.6f);
    glVertex2f(0.1f, 0.8f);
    glEnd();
}

void byteIndices(Stage& stage, const char*)
{
    stage.useColors();
    stage.rectangle({-1, -1, -0.5f, 1}, Red);
    const GLubyte indices[4] = {0, 1, 2, 3};
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
    glViewport(40, 0, 96, 96);
    glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_BYTE, nullptr);
}

void disabledArray(Stage& stage, const char*)
{
    stage.useColors();
    glDisableVertexAttribArrayARB(3);
    stage.rectangle({}, Red);
}

void pointerNormalised(Stage& stage, const char*)
{
    stage.useColors();
    stage.rectangle({-1, -1, -0.9f, 1}, Red); // leaves colours behind
    const GLshort places[4][4] = {{-1, -1, 0, 1}, {1, -1, 0, 1}, {-1, 1, 0, 1}, {1, 1, 0, 1}};
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof places, places, GL_STATIC_DRAW);
    // With the position as the conventional array both libraries read it as attribute 0.
    glDisableVertexAttribArrayARB(0);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_SHORT, 8, nullptr);
    glViewport(0, 0, 48, 48);
    glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_SHORT, nullptr);
}

// ---- textures ------------------------------------------------------------------------------------------------------

void anyBorder(Stage& stage, const char*)
{
    const float teal[4] = {0.1f, 0.7f, 0.6f, 1};
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    for (GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glTexParameteri(GL_TEXTURE_2D, parameter, GL_CLAMP_TO_BORDER);
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, teal);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, -0.31f, -0.33f, 1.29f, 1.27f}, White);
}

void partWithoutConversion(Stage& stage, const char*)
{
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    std::vector<uint8_t> red;
    for (int i = 0; i < 16; ++i)
        red.insert(red.end(), {0, 0, 255, 255});
    glTexSubImage2D(GL_TEXTURE_2D, 0, 3, 2, 4, 4, GL_BGRA, GL_UNSIGNED_BYTE, red.data());
    stage.useTexture();
    stage.rectangle({}, White);
}

void newBaseLevel(Stage& stage, const char*)
{
    stage.texture(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
    for (GLint level = 0; level < 4; ++level)
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, 8 >> level, 8 >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     patternTexels(8 >> level, 8 >> level).data());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 64, 64, 0, GL_RGBA, GL_UNSIGNED_BYTE, patternTexels(64, 64).data());
    stage.useTexture(); // the chain no longer fits: GL samples an incomplete texture
    stage.rectangle({}, White);
}

void storedAlpha(Stage& stage, const char*)
{
    stage.texture(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 16, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE, patternTexels(16, 16).data());
    Image picture(16, 16);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

void volumeRead(Stage& stage, const char*)
{
    stage.texture(GL_TEXTURE_3D);
    std::vector<float> texels;
    for (uint8_t byte : patternTexels(8, 8, 4))
        texels.push_back(static_cast<float>(byte) / 255);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA32F_ARB, 8, 8, 4, 0, GL_RGBA, GL_FLOAT, texels.data());
    Image picture(8, 32);
    glGetTexImage(GL_TEXTURE_3D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

void readBesideTheOrigin(Stage& stage, const char*)
{
    stage.useColors();
    const Corner corners[4] = {
        {{-1, -1, 0, 1}, Red, {}}, {{1, -1, 0, 1}, Green, {}}, {{-1, 1, 0, 1}, Blue, {}}, {{1, 1, 0, 1}, White, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
    Image picture(48, 40);
    glReadPixels(16, 24, 48, 40, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

void uploadBetweenDraws(Stage& stage, const char*)
{
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    stage.useTexture();
    stage.rectangle({-1, -1, 0, 1}, White);
    std::vector<uint8_t> teal;
    for (int i = 0; i < 64; ++i)
        teal.insert(teal.end(), {20, 160, 140, 255});
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 8, 8, GL_RGBA, GL_UNSIGNED_BYTE, teal.data());
    stage.rectangle({0, -1, 1, 1}, White);
}

void attachedLate(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 1, 0);
    stage.clear(Grey);
    stage.useColors();
    stage.rectangle({-1, -1, 0, 1}, Red);
    GLuint other = stage.texture(GL_TEXTURE_RECTANGLE_ARB);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, Stage::Side, Stage::Side, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, other, 0);
    stage.rectangle({0, -1, 1, 1}, Green);
    Image picture(Stage::Side, Stage::Side);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.colors[0]);
    glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

void noneInTheList(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 2, 0);
    stage.clear(Grey);
    const GLenum list[2] = {GL_NONE, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(2, list);
    stage.useFragment("!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], fragment.color;\nMOV "
                      "result.color[1], fragment.color;\nEND\n");
    stage.rectangle({-0.5f, -0.5f, 0.5f, 0.5f}, Red);
    Image picture(Stage::Side, Stage::Side);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.colors[1]);
    glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

// ---- programs ------------------------------------------------------------------------------------------------------

void vertexStatement(Stage& stage, const char* statement)
{
    stage.use(std::string("!!ARBvp1.0\nTEMP r;\nMOV result.position, vertex.attrib[0];\nMOV r, 0;\n") + statement +
                  "\nMAD result.texcoord[0], r, 0.25, 0.3;\nEND\n",
              "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n");
    const Corner corners[4] = {{{-1, -1, 0, 1}, White, {0.3f, -0.8f, 0.2f, 1}},
                               {{1, -1, 0, 1}, White, {1.9f, 0.4f, -0.6f, 1}},
                               {{-1, 1, 0, 1}, White, {-0.7f, 0.5f, 0.1f, 1}},
                               {{1, 1, 0, 1}, White, {0.2f, 0.6f, 0.8f, 1}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

void inverseRow(Stage& stage, const char* statement)
{
    const float turned[16] = {0.8f, 0.5f, 0, 0, -0.5f, 0.8f, 0, 0, 0, 0, 1.2f, 0, 0.1f, -0.05f, 0.25f, 1};
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(turned);
    vertexStatement(stage, statement);
}

void thirdTextureMatrix(Stage& stage, const char* statement)
{
    const float scaled[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    glActiveTextureARB(GL_TEXTURE0 + 2);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(scaled);
    vertexStatement(stage, statement);
}

void texturesStackStays(Stage& stage, const char* statement)
{
    const float scaled[16] = {3, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glActiveTextureARB(GL_TEXTURE0);
    glMatrixMode(GL_TEXTURE);
    glActiveTextureARB(GL_TEXTURE0 + 1);
    glLoadMatrixf(scaled);
    vertexStatement(stage, statement);
}

void secondText(Stage& stage, const char*)
{
    stage.useColors();
    glViewport(0, 0, Stage::Side / 2, Stage::Side);
    stage.rectangle({}, Ochre);
    const std::string_view text = "!!ARBfp1.0\nSUB result.color, 1, fragment.color;\nEND\n";
    glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()),
                       text.data());
    glViewport(Stage::Side / 2, 0, Stage::Side / 2, Stage::Side);
    glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_SHORT, nullptr);
}

void brightVertices(Stage& stage, const char*)
{
    stage.use("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMAD result.color, vertex.attrib[8], 4, -1.5;\nEND\n",
              "!!ARBfp1.0\nMAD result.color, fragment.color, 0.25, 0.4;\nEND\n");
    stage.rectangle({}, White);
}

// clang-format off
constexpr SceneRow Rows[] = {
    {"kept-scissor",              scissored,             "", 2, 0, "no-scissor-test", ""},
    {"kept-alpha-test",           alphaTested,           "", 2, 0, "unknown-capability-ignored", ""},
    {"kept-clear-under-mask",     clearUnderMask,        "", 2, 0, "clear-ignores-masks", ""},
    {"kept-clear-without-test",   clearWithoutTest,      "", 2, 0, "clear-needs-test", ""},
    {"kept-mask-alone",           maskAlone,             "", 2, 0, "color-mask-key", ""},
    {"kept-cull-both",            cullBoth,              "", 2, 0, "cull-mode-back", ""},
    {"kept-offset-stays",         offsetStays,           "", 2, 0, "polygon-offset-sticks", ""},
    {"kept-mode-of-one-face",     modeOfOneFace,         "", 2, 0, "polygon-face-ignored", ""},
    {"kept-five-vertices",        fiveVertices,          "", 2, 0, "four-vertices", ""},
    {"kept-one-color-for-all",    oneColorForAll,        "", 2, 0, "attributes-per-vertex", ""},
    {"kept-immediate-points",     immediatePoints,       "", 2, 0, "immediate-points", ""},
    {"kept-immediate-quads",      immediateFan,          "", 2, 0, "begin-modes", ""},
    {"kept-plain-vertices",       plainVertices,         "", 2, 0, "immediate-vertices-ignored", ""},
    {"kept-byte-indices",         byteIndices,           "", 2, 0, "byte-indices", ""},
    {"kept-disabled-array",       disabledArray,         "", 2, 0, "disabled-attribute-zero", ""},
    {"kept-pointer-normalized",   pointerNormalised,     "", 2, 0, "vertex-pointer-normalized", ""},
    {"kept-any-border",           anyBorder,             "", 2, 0, "border-colour-class", ""},
    {"kept-part-as-it-stands",    partWithoutConversion, "", 2, 0, "direct-upload-origin", ""},
    {"kept-levels-grow",          newBaseLevel,          "", 2, 0, "levels-only-grow", ""},
    {"kept-image-as-stored",      storedAlpha,           "", 2, 0, "image-unswizzled", ""},
    {"kept-volume-read",          volumeRead,            "", 2, 0, "read-3d-advance", ""},
    {"kept-read-beside-origin",   readBesideTheOrigin,   "", 2, 0, "converted-read-origin", ""},
    {"kept-upload-between-draws", uploadBetweenDraws,    "", 2, 0, "upload-before-commit", ""},
    {"kept-attached-late",        attachedLate,          "", 2, 0, "attach-keeps-pass", ""},
    {"kept-none-in-the-list",     noneInTheList,         "", 2, 0, "draw-buffers-none", ""},
    {"kept-exponential",          vertexStatement,       "EXP r, vertex.attrib[8].x;", 2, 0, "exp-is-ex2", ""},
    {"kept-short-parameter",      vertexStatement,       "PARAM p = { 0.5 };\nADD r, p, vertex.attrib[8];", 2, 0, "param-fill", ""},
    {"kept-inverse-row",          inverseRow,            "DP4 r, state.matrix.modelview.inverse.row[0], vertex.attrib[8];", 2, 0, "modelview-inverse-row", ""},
    {"kept-texture-matrix-2",     thirdTextureMatrix,    "DP4 r, state.matrix.texture[2].row[2], vertex.attrib[8];", 2, 0, "texture-matrix-2", ""},
    {"kept-texture-stack",        texturesStackStays,    "DP4 r, state.matrix.texture[1].row[0], vertex.attrib[8];", 2, 0, "texture-stack-fixed-by-mode", ""},
    {"kept-bright-vertices",      brightVertices,        "", 2, 0, "vertex-color-unclamped", ""},
    {"kept-second-text",          secondText,            "", 2, 0, "reload-keeps-pipeline", ""},
};
// clang-format on

} // namespace

const std::span<const SceneRow> KeptScenes(Rows);

} // namespace scenes
